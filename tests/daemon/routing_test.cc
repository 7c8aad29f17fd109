// Where a dismissal runs, with real processes: a caller on one scene, a daemon on another.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "tests/daemon/daemon_process.h"
#include "tests/support/listener.h"
#include "tests/support/scenes.h"

namespace {

using Lines = std::vector<std::string>;

const std::string kUntrusted = R"({"trusted": false})";
const std::string kContext = "pid=500 ppid=1 parentBundle=none parentName=none";
const std::string kNeitherTrusted = "dismiss failed because neither process nor daemon is trusted " + kContext;

class Routing : public TrustedDaemon {
 protected:
  // What the caller logged, behind what the daemon did.
  [[nodiscard]] Lines lastLines(std::size_t count) const {
    const Lines all = diagnostics();
    return {all.end() - static_cast<std::ptrdiff_t>(std::min(count, all.size())), all.end()};
  }

  // Stands in for a daemon: takes one connection, and answers whatever it is asked.
  [[nodiscard]] std::thread answerOnce(const std::string& reply) const {
    std::filesystem::create_directories(std::filesystem::path(socketPath()).parent_path());
    return std::thread([listener = std::make_unique<Listener>(socketPath()), reply] {
      const int connection = listener->accept();
      std::array<char, 64> request{};
      while (::read(connection, request.data(), request.size()) > 0) {
      }
      (void)::send(connection, reply.data(), reply.size(), MSG_NOSIGNAL);
      ::close(connection);
    });
  }
};

TEST_F(Routing, PrefersATrustedCaller) {
  start(NotificationCenterScene(kThreeBanners));
  const ProgramRun caller = run(NotificationCenterScene(""), {"--daemon-dismiss"});
  EXPECT_EQ(caller.out, "nothing|0|0\n");
  EXPECT_EQ(caller.exitCode, 0);
  EXPECT_EQ(lastLines(3),
            (Lines{"dismiss using in-process trusted path " + kContext, "dismiss preflight trusted=true " + kContext,
                   "notification center pid=400 bundle=com.apple.notificationcenterui"}));
  EXPECT_EQ(ask("dismiss\n"), "success|3|0\n") << "the daemon's banners were left alone";
}

TEST_F(Routing, UsesATrustedDaemon) {
  start(NotificationCenterScene(kThreeBanners));
  const ProgramRun caller = run(kUntrusted, {"--daemon-dismiss"});
  EXPECT_EQ(caller.out, "success|3|0\n");
  EXPECT_EQ(caller.exitCode, 0);
  EXPECT_EQ(lastLines(2), (Lines{"socket client command=dismiss response=success|3|0",
                                 "dismiss using trusted daemon status=success dismissed=3 remaining=0 " + kContext}));
}

TEST_F(Routing, ReturnsAnUntrustedDaemonsAnswer) {
  start(kUntrusted);
  const ProgramRun caller = run(kUntrusted, {"--daemon-dismiss"});
  EXPECT_EQ(caller.out, "accessDenied|0|0\n");
  EXPECT_EQ(caller.exitCode, 0);
  EXPECT_EQ(lastLines(1),
            Lines{"dismiss using trusted daemon status=accessDenied dismissed=0 remaining=0 " + kContext});
}

TEST_F(Routing, DeniesUntrustedCallersWithoutADaemon) {
  const ProgramRun caller = run(kUntrusted, {"--daemon-dismiss"});
  EXPECT_EQ(caller.out, "accessDenied|0|0\n");
  EXPECT_EQ(caller.exitCode, 0);
  EXPECT_EQ(diagnostics(), Lines{kNeitherTrusted});
}

TEST_F(Routing, IgnoresADaemonWithMalformedReply) {
  std::thread daemon = answerOnce("done|1|0\n");
  const ProgramRun caller = run(kUntrusted, {"--daemon-dismiss"});
  daemon.join();
  EXPECT_EQ(caller.out, "accessDenied|0|0\n");
  EXPECT_EQ(diagnostics(), (Lines{"socket client command=dismiss response=done|1|0", kNeitherTrusted}));
}

TEST_F(Routing, TrimsRepliesAndIgnoresExtraFields) {
  std::thread daemon = answerOnce(" success| 12|-4|more \r\n\n");
  const ProgramRun caller = run(kUntrusted, {"--daemon-dismiss"});
  daemon.join();
  EXPECT_EQ(caller.out, "success|12|-4\n");
  EXPECT_EQ(diagnostics().front(), "socket client command=dismiss response=success| 12|-4|more");
}

TEST_F(Routing, ChecksADaemonsTrust) {
  ProgramRun check = run(kUntrusted, {"--daemon-self-check"});
  EXPECT_EQ(check.out, "reachable=false status=unreachable\n");
  EXPECT_EQ(check.exitCode, 1);

  RunningProgram& denied = start(kUntrusted);
  check = run("{}", {"--daemon-self-check"});
  EXPECT_EQ(check.out, "reachable=false status=accessDenied\n");
  EXPECT_EQ(check.exitCode, 1);
  EXPECT_EQ(lastLines(1), Lines{"socket client command=self-check response=accessDenied|0|0"});
  EXPECT_EQ(ask("quit-daemon\n"), "success|0|0\n");
  EXPECT_EQ(ended(denied), 0);

  start("{}");
  check = run(kUntrusted, {"--daemon-self-check"});
  EXPECT_EQ(check.out, "reachable=true status=nothing\n");
  EXPECT_EQ(check.exitCode, 0);
}

TEST_F(Routing, ReportsMalformedRepliesAsUnreachable) {
  std::thread daemon = answerOnce("hello\n");
  const ProgramRun check = run("{}", {"--daemon-self-check"});
  daemon.join();
  EXPECT_EQ(check.out, "reachable=false status=unreachable\n");
  EXPECT_EQ(check.exitCode, 1);
}

TEST_F(Routing, LogsTheAccessRequest) {
  const std::string product = std::string(", ") + ProductBundle + "}";
  const auto log = [this](const char* name) { return LogMessages(FileContent(home() + "/.local/share/test/" + name)); };
  EXPECT_EQ(run(R"({"trusted": false)" + product, {"--request-accessibility"}).exitCode, 1);
  EXPECT_EQ(run(R"({"trusted": true)" + product, {"--request-accessibility"}).exitCode, 0);
  EXPECT_EQ(log("status.log"),
            (Lines{"requestAccessibility trusted=false " + kContext, "requestAccessibility trusted=true " + kContext}));
  EXPECT_EQ(log("hushlet_detailed_diagnostics.log"),
            (Lines{"requestAccessibility trusted=false prompt=true " + kContext,
                   "requestAccessibility trusted=true prompt=true " + kContext}));
}

}  // namespace
