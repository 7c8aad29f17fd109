#include "base/paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/log.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

class StateDirectory : public testing::Test {
 protected:
  StateDirectory() : mask_(umask(022)) {}
  ~StateDirectory() override { umask(mask_); }

  SimulatedDesktop desktop_{"{}"};
  std::string path_ = desktop_.home() + "/.local/state/hushlet";

 private:
  mode_t mask_;
};

TEST_F(StateDirectory, IsMadeForThisUserAlone) {
  HLEnsureStateDirectory();
  EXPECT_EQ(FileMode(path_), 0700U);
}

TEST_F(StateDirectory, KeepsAnExistingOne) {
  std::filesystem::create_directories(path_);
  chmod(path_.c_str(), 0755);
  HLEnsureStateDirectory();
  EXPECT_EQ(FileMode(path_), 0755U);
}

TEST_F(StateDirectory, HasDefaultPermissionsFromALog) {
  HLAppendDiagnostics("first line");
  EXPECT_EQ(FileMode(path_), 0755U);
  HLEnsureStateDirectory();
  EXPECT_EQ(FileMode(path_), 0755U);
}

TEST_F(StateDirectory, IgnoresFailures) {
  std::ofstream(desktop_.home() + "/.local") << "a file";
  HLEnsureStateDirectory();
  HLAppendDiagnostics("lost");
  EXPECT_EQ(FileContent(desktop_.home() + "/.local"), "a file");
}

TEST_F(StateDirectory, CreatesParents) {
  HLCreateDirectories(desktop_.home() + "/a/b/c");
  EXPECT_EQ(FileMode(desktop_.home() + "/a"), 0755U);
  EXPECT_EQ(FileMode(desktop_.home() + "/a/b/c"), 0755U);
  HLCreateDirectories(desktop_.home() + "/a/b/c");
  HLCreateDirectories("/dev/null/x");
  HLCreateDirectories("");
}

}  // namespace
