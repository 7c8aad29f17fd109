#include "platform/linux/session/activation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/temporary_directory.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class Activation : public testing::Test {
 protected:
  void write(const std::string& file, const std::string& content) {
    std::filesystem::create_directories((root_ / file).parent_path());
    std::ofstream(root_ / file) << content;
  }

  std::vector<std::vector<std::string>> commands() {
    return HLActivationCommands({root_ / "missing", root_ / "first", root_ / "second"}, "org.example.Service");
  }

  const TemporaryDirectory directory_;
  const std::filesystem::path root_ = directory_.path();
};

constexpr const char* kHead = "[D-BUS Service]\nName=org.example.Service\n";

TEST_F(Activation, FindsServicesByNameNotFile) {
  write("first/org.example.Service.service", "[D-BUS Service]\nName=org.example.Other\nExec=/bin/other\n");
  write("first/unlike.service",
        "# a comment\n[D-BUS Service]\nExec = /bin/server --flag\nName = org.example.Service\n");
  EXPECT_THAT(commands(), ElementsAre(ElementsAre("/bin/server", "--flag")));
}

TEST_F(Activation, PrefersTheFirstDirectoryWithService) {
  write("first/a.service", std::string(kHead) + "Exec=/bin/first\n");
  write("second/a.service", std::string(kHead) + "Exec=/bin/second\n");
  EXPECT_THAT(commands(), ElementsAre(ElementsAre("/bin/first")));
}

TEST_F(Activation, ReturnsAllContendersInOneDirectory) {
  write("second/a.service", std::string(kHead) + "Exec=/bin/one\n");
  write("second/b.service", std::string(kHead) + "Exec=/bin/two\n");
  EXPECT_THAT(commands(), UnorderedElementsAre(ElementsAre("/bin/one"), ElementsAre("/bin/two")));
}

TEST_F(Activation, QuotesHoldWordsTogether) {
  write("first/a.service", std::string(kHead) + "Exec=\"/opt/my server/run\" 'a b'  c\n");
  EXPECT_THAT(commands(), ElementsAre(ElementsAre("/opt/my server/run", "a b", "c")));
}

TEST_F(Activation, IgnoresOtherFilesAndSections) {
  write("first/a.service.bak", std::string(kHead) + "Exec=/bin/one\n");
  write("first/b.service", "[Other]\nName=org.example.Service\nExec=/bin/two\n");
  write("first/c.service", "Name=org.example.Service\nExec=/bin/three\n");
  EXPECT_THAT(commands(), IsEmpty());
}

}  // namespace
