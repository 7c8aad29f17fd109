#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <thread>
#include <vector>

#include "tests/daemon/daemon_process.h"
#include "tests/support/scenes.h"

namespace {

using Lines = std::vector<std::string>;

TEST_F(TrustedDaemon, AnswersEveryCommand) {
  RunningProgram& daemon = start(NotificationCenterScene(kThreeBanners));
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
  EXPECT_EQ(ask("self-check\n"), "nothing|0|0\n");
  EXPECT_EQ(ask("dismiss\n"), "success|3|0\n");
  EXPECT_EQ(ask("dismiss\n"), "nothing|0|0\n");
  EXPECT_EQ(ask("quit-daemon\n"), "success|0|0\n");
  EXPECT_EQ(ended(daemon), 0);
  EXPECT_FALSE(std::filesystem::exists(socketPath()));
  EXPECT_FALSE(DaemonClient(socketPath()).isConnected());
}

#ifdef __linux__  // macOS allows no stack that is larger than the memory
TEST_F(TrustedDaemon, DismissesWithoutThreads) {
  const std::vector<std::string> command = WithoutThreads({HUSHLET_SIM, "--daemon"});
  start(NotificationCenterScene(kThreeBanners), command);
  EXPECT_EQ(ask("dismiss\n"), "success|3|0\n");
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
}
#endif

TEST_F(TrustedDaemon, ReportsMissingTrust) {
  start(NotificationCenterScene(kThreeBanners, R"(,"trusted": false)"));
  EXPECT_EQ(ask("ping\n"), "accessDenied|0|0\n");
  EXPECT_EQ(ask("self-check\n"), "accessDenied|0|0\n");
  EXPECT_EQ(ask("dismiss\n"), "accessDenied|0|0\n");
}

TEST_F(TrustedDaemon, TrimsCommands) {
  start("{}");
  EXPECT_EQ(ask("ping\r\n"), "nothing|0|0\n");
  EXPECT_EQ(ask(" \t ping\xE2\x80\x83\n"), "nothing|0|0\n");
  EXPECT_EQ(ask("ping"), "nothing|0|0\n") << "the end of the stream ends the line too";
  EXPECT_EQ(ask("ping\nquit-daemon\n"), "nothing|0|0\n") << "one connection is one request";
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
}

TEST_F(TrustedDaemon, AnswersAnythingElseWithFailed) {
  start("{}");
  for (const std::string request :
       {"Dismiss\n", "PING\n", "dismiss now\n", "\n", "", "dismiss,\n", "quit\n", "\xFF\xFE\n", "ping\xC0\x80\n"}) {
    EXPECT_EQ(ask(request), "failed|0|0\n") << request;
  }
  EXPECT_EQ(ask(std::string("ping\0\n", 6)), "failed|0|0\n");
}

TEST_F(TrustedDaemon, AnswersAnOverlongLine) {
  start("{}");
  EXPECT_EQ(ask(std::string(2000, 'x')), "failed|0|0\n");
  const DaemonClient open(socketPath());
  open.send(std::string(1025, 'x'));  // neither a line feed nor an end: the limit alone ends it
  EXPECT_EQ(open.receive(), "failed|0|0\n");
}

TEST_F(TrustedDaemon, OutlivesClientsThatLeaveEarly) {
  start("{}");
  for (int i = 0; i < 50; ++i) {
    { const DaemonClient silent(socketPath()); }
    { DaemonClient(socketPath()).send("ping\n"); }  // a reply that nobody reads
    { DaemonClient(socketPath()).send("pi"); }
  }
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
}

TEST_F(TrustedDaemon, WaitsForAnIdleClient) {
  start("{}");
  auto silent = std::make_unique<DaemonClient>(socketPath());
  const DaemonClient other(socketPath());
  other.send("ping\n");
  EXPECT_FALSE(other.hasReplyWithin(std::chrono::milliseconds(200)));
  silent = nullptr;
  EXPECT_EQ(other.receive(), "nothing|0|0\n");
}

TEST_F(TrustedDaemon, ServesQueuedClientsInOrder) {
  start(NotificationCenterScene(
      R"({"id": "a", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": "Mail, a",
          "actions": ["Name:Close"], "onAction": {"Name:Close": {"seconds": 0.3, "effects": [{"remove": "a"}]}}})",
      R"(,"clock": "real")"));
  const DaemonClient dismissing(socketPath());
  dismissing.send("dismiss\n");
  std::vector<std::string> replies(10);
  std::vector<std::thread> clients;
  for (std::string& reply : replies) clients.emplace_back([this, &reply] { reply = ask("ping\n"); });
  EXPECT_EQ(dismissing.receive(), "success|1|0\n");
  for (std::thread& client : clients) client.join();
  EXPECT_EQ(replies, std::vector<std::string>(10, "nothing|0|0\n"));
}

// What the kernel counts for a process.
std::size_t openFilesOf(int pid) {
  const auto files = std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/fd");
  return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}
long residentPagesOf(int pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/statm");
  long total = 0;
  long resident = 0;
  file >> total >> resident;
  return resident;
}

TEST_F(TrustedDaemon, LeaksNothingOver10000Requests) {
  RunningProgram& daemon = start("{}");
  for (int i = 0; i < 1000; ++i) ASSERT_EQ(ask("ping\n"), "nothing|0|0\n") << i;
  const std::size_t files = openFilesOf(daemon.pid());
  const long pages = residentPagesOf(daemon.pid());
  for (int i = 0; i < 9000; ++i) ASSERT_EQ(ask(i % 2 == 0 ? "ping\n" : "nonsense\n").back(), '\n') << i;
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
  EXPECT_EQ(openFilesOf(daemon.pid()), files);
  EXPECT_LE(residentPagesOf(daemon.pid()), pages + 128);
  EXPECT_EQ(ask("quit-daemon\n"), "success|0|0\n");
  EXPECT_EQ(ended(daemon), 0) << "where leaks are looked for, they are found now";
}

TEST_F(TrustedDaemon, RestrictsItsSocketToTheUser) {
  start("{}");
  EXPECT_EQ(FileMode(socketPath()), 0600U);
  EXPECT_EQ(FileMode(home() + "/.local/state/hushlet"), 0700U);
}

TEST_F(TrustedDaemon, LogsOnlyItsStart) {
  start("{}");
  (void)ask("ping\n");
  (void)ask("nonsense\n");
  EXPECT_EQ(diagnostics(),
            Lines{"trusted daemon starting trusted=true pid=500 ppid=1 parentBundle=none parentName=none"});
}

TEST_F(TrustedDaemon, ReplacesAStaleSocket) {
  RunningProgram& killed = start("{}");
  ::kill(killed.pid(), SIGKILL);
  (void)ended(killed);
  EXPECT_TRUE(std::filesystem::exists(socketPath()));
  EXPECT_FALSE(DaemonClient(socketPath()).isConnected());
  start("{}");
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
}

TEST_F(TrustedDaemon, TakesOverTheSocketPath) {
  RunningProgram& first = start(R"({"trusted": false})");
  const DaemonClient kept(socketPath());
  ASSERT_TRUE(kept.isConnected());
  launch("{}");
  ASSERT_TRUE(WaitFor([this] { return diagnostics().size() == 2; })) << "the second one has started";
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n") << "and is trusted";
  EXPECT_EQ(kept.ask("quit-daemon\n"), "success|0|0\n");
  EXPECT_EQ(ended(first), 0);
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n") << "the socket file of the second one stays";
}

TEST_F(TrustedDaemon, LeavesSocketFileOfSuccessor) {
  RunningProgram& daemon = start("{}");
  const DaemonClient kept(socketPath());
  ASSERT_TRUE(kept.isConnected());
  std::filesystem::remove(socketPath());
  std::ofstream(socketPath()) << "somebody else's";
  EXPECT_EQ(kept.ask("quit-daemon\n"), "success|0|0\n");
  EXPECT_EQ(ended(daemon), 0);
  EXPECT_EQ(FileContent(socketPath()), "somebody else's");
}

TEST_F(TrustedDaemon, IgnoresHangUpButNotTermination) {
  RunningProgram& daemon = start("{}");
  ::kill(daemon.pid(), SIGHUP);
  ::kill(daemon.pid(), SIGPIPE);
  EXPECT_EQ(ask("ping\n"), "nothing|0|0\n");
  ::kill(daemon.pid(), SIGTERM);
  EXPECT_EQ(ended(daemon), 128 + SIGTERM);
  EXPECT_TRUE(std::filesystem::exists(socketPath()));
}

TEST_F(TrustedDaemon, CutsALongSocketPath) {
  const std::string deep = home() + "/" + std::string(100, 'd');
  const std::string path = deep + "/.local/state/hushlet/daemon.sock";
  const std::string scene = R"({"home": ")" + deep + "\"}";
  std::filesystem::create_directories(deep + "/.local/state/hushlet");
  const std::string cut = path.substr(0, 103);
  RunningProgram& daemon = launch(scene);
  ASSERT_TRUE(WaitFor([&] { return DaemonClient(path).ask("ping\n") == "nothing|0|0\n"; }));
  EXPECT_TRUE(std::filesystem::is_socket(cut));
  EXPECT_NE(FileMode(cut), 0600U) << "the permissions go by the whole path";
  EXPECT_EQ(DaemonClient(path).ask("quit-daemon\n"), "success|0|0\n");
  EXPECT_EQ(ended(daemon), 0);
  EXPECT_TRUE(std::filesystem::is_socket(cut)) << "the removal too";
  RunningProgram& next = launch(scene);
  EXPECT_EQ(ended(next), 1) << "the name is taken";
}

TEST_F(TrustedDaemon, ExitsWithOneWhenBindingFails) {
  std::filesystem::create_directories(socketPath() + "/in the way");
  RunningProgram& daemon = launch("{}");
  EXPECT_EQ(ended(daemon), 1);
  EXPECT_TRUE(diagnostics().empty());
}

}  // namespace
