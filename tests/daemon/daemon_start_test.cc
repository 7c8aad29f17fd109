// A daemon whose system refuses to listen. This program's own listen() stands before the C library's.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "base/paths.h"
#include "daemon/trusted_daemon.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"

namespace {
std::function<void()> beforeFailing;
int backlogAskedFor = 0;
}  // namespace

extern "C" int listen(int, int backlog) noexcept {
  backlogAskedFor = backlog;
  if (beforeFailing) beforeFailing();
  errno = EADDRINUSE;
  return -1;
}

namespace {

TEST(DaemonStart, RemovesItsSocketWhenListeningFails) {
  SimulatedDesktop desktop("{}");
  EXPECT_EQ(InChildProcess([] {
              const int code = HLRunTrustedDaemon();
              return std::to_string(code) + " " + std::to_string(backlogAskedFor);
            }),
            "1 8");
  EXPECT_FALSE(std::filesystem::exists(HLLocalSocketPath().value()));
  EXPECT_TRUE(std::filesystem::exists(HLStateDirectoryPath().value()));
  EXPECT_TRUE(desktop.diagnostics().empty());
}

TEST(DaemonStart, KeepsAnotherDaemonsSocket) {
  const SimulatedDesktop desktop("{}");
  EXPECT_EQ(InChildProcess([] {
              beforeFailing = [] {
                std::filesystem::remove(HLLocalSocketPath().value());
                std::ofstream(HLLocalSocketPath().value()) << "another daemon's";
              };
              return std::to_string(HLRunTrustedDaemon());
            }),
            "1");
  EXPECT_EQ(FileContent(HLLocalSocketPath().value()), "another daemon's");
}

}  // namespace
