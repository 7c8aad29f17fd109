// The program on its own host, where there is no desktop.
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "daemon/local_socket.h"
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

TEST(HostProgram, KeepsItsPathsWhenItsBundleGoes) {
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
