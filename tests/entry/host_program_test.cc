// The program on its own host, where there is no desktop.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "daemon/local_socket.h"
#include "platform/linux/linux_conventions.h"
#include "platform/sockets.h"
#include "tests/support/processes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

namespace fs = std::filesystem;

// The daemon's reply, or an empty text.
std::string ask(const std::string& socketPath, const std::string& command) {
  const HLSocket socket(HLOpenLocalSocket());
  std::string reply;
  if (HLConnectLocalSocket(socket.descriptor(), socketPath) && HLWriteSocketRequest(socket.descriptor(), command)) {
    (void)HLReadSocketResponse(socket.descriptor(), reply);
  }
  return reply;
}

bool answers(const std::string& socketPath) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (ask(socketPath, "ping").empty()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::yield();
  }
  return true;
}

// What a terminal shows of the standard error of a dismissal that has no desktop.
std::string shownOnTerminal(const std::string& redirection) {
  const TemporaryDirectory home;
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_EQ(grantpt(terminal), 0);
  EXPECT_EQ(unlockpt(terminal), 0);
  const std::string device = ptsname(terminal);
  const int held = open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);  // keeps what is written readable
  const ProgramRun run = RunProgram({"/bin/sh", "-c", HUSHLET " --dismiss-now " + redirection + device},
                                    {{"HOME", home.path().c_str()},
                                     {"XDG_DATA_HOME", home.path().c_str()},
                                     {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"},
                                     {"XDG_RUNTIME_DIR", nullptr}});
  EXPECT_EQ(run.exitCode, 0);
  fcntl(terminal, F_SETFL, O_NONBLOCK);
  std::array<char, 1024> shown{};
  const ssize_t count = read(terminal, shown.data(), shown.size());
  close(held);
  close(terminal);
  return run.out + "|" + std::string(shown.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))) + "|" +
         run.err;
}

TEST(HostProgram, AdvisesAtATerminal) {
  const std::string advice(HLLinuxCommandAdvice(nullptr).accessDenied);
  EXPECT_EQ(shownOnTerminal("2>"), "accessDenied|0|0\n|" + advice + "\r\n|");
}

TEST(HostProgram, AdvisesNotThroughAPipe) { EXPECT_EQ(shownOnTerminal(">"), "|accessDenied|0|0\r\n|"); }

TEST(HostProgram, KeepsItsPathsWithoutItsBundle) {
  const TemporaryDirectory home;
  const fs::path prefix = home.path() + "/prefix";
  fs::create_directories(prefix / "bin");
  fs::create_directories(prefix / "share/hushlet");
  fs::copy_file(HUSHLET, prefix / "bin/hushlet");
  std::ofstream(prefix / "share/hushlet/Info.plist")
      << "<plist><dict><key>HLProductFlavor</key><string>product</string>"
         "<key>CFBundleIdentifier</key><string>org.example.one</string></dict></plist>";
  RunningProgram daemon({(prefix / "bin/hushlet").string(), "--daemon"},
                        {{"HOME", home.path().c_str()},
                         {"XDG_DATA_HOME", home.path().c_str()},
                         {"XDG_RUNTIME_DIR", nullptr},
                         {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent"}});
  const std::string state = home.path() + "/org.example.one";
  if (!answers(state + "/daemon.sock")) {
    kill(daemon.pid(), SIGKILL);
    FAIL() << "no daemon";
  }
  fs::remove_all(prefix / "share");
  EXPECT_EQ(ask(state + "/daemon.sock", "dismiss"), "accessDenied|0|0\n");
  EXPECT_EQ(ask(state + "/daemon.sock", "quit-daemon"), "success|0|0\n");
  EXPECT_EQ(daemon.wait().exitCode, 0);
  EXPECT_FALSE(fs::exists(state + "/daemon.sock"));
  EXPECT_FALSE(fs::exists(home.path() + "/dismiss"));
  EXPECT_EQ(LogMessages(FileContent(state + "/hushlet_detailed_diagnostics.log")).size(), 2U)
      << "its start and the preflight of the dismissal";
}

}  // namespace
