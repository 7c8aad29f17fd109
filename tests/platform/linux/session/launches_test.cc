// Launches of notification servers, as they are told of.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/session/linux_running_applications.h"
#include "tests/platform/linux/desktop/servers.h"
#include "tests/platform/linux/support/desktop_session.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

class Launches : public testing::TestWithParam<Server> {
 protected:
  void begin(const SessionSetup& setup = {}) {
    session_ = std::make_unique<DesktopSession>(setup);
    environment_ = std::make_unique<SessionEnvironment>(session_->environment());
    applications_.observeLaunches([this](const HLRunningApplication& application) {
      told_.push_back(application.pid);
      EXPECT_EQ(application.bundleIdentifier, "com.apple.notificationcenterui");
    });
  }

  // Runs the loop until so many launches have been told of, and a while longer, for one too many.
  void expectTold(const std::vector<std::int32_t>& pids) {
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(15);
    while (told_.size() < pids.size() && Clock::now() < deadline) loop_.runFor(0.01);
    loop_.runFor(0.1);
    EXPECT_EQ(told_, pids);
  }

  std::unique_ptr<DesktopSession> session_;
  std::unique_ptr<SessionEnvironment> environment_;
  HLLinuxRunLoop loop_;
  HLLinuxRunningApplications applications_{loop_};
  std::vector<std::int32_t> told_;
};

TEST_P(Launches, AreToldOfOnceEach) {
  begin();
  const std::unique_ptr<ChildProcess> first = session_->startServer(GetParam().command);
  EXPECT_THAT(told_, IsEmpty()) << "only while the loop runs";
  expectTold({first->pid()});
  first->signal(SIGKILL);
  EXPECT_EQ(first->wait(std::chrono::seconds(10)), 128 + SIGKILL);
  expectTold({first->pid()});
  const std::unique_ptr<ChildProcess> second = session_->startServer(GetParam().command);
  expectTold({first->pid(), second->pid()});
}

TEST_P(Launches, ReportOnlyLastWhileLoopStopped) {
  begin();
  {
    const std::unique_ptr<ChildProcess> first = session_->startServer(GetParam().command);
    first->signal(SIGKILL);
    EXPECT_TRUE(first->wait(std::chrono::seconds(10)));
  }
  const std::unique_ptr<ChildProcess> second = session_->startServer(GetParam().command);
  expectTold({second->pid()});
}

TEST_P(Launches, ReportServersRestartedByBus) {
  begin(WithActivatable({GetParam().command}));
  NotificationSender sender(session_->environment());
  (void)sender.send("Mail", "One", "which starts the server");
  const pid_t first = session_->serverPid();
  ASSERT_NE(first, 0);
  expectTold({first});
  kill(first, SIGKILL);
  ASSERT_TRUE(Eventually([this] { return session_->serverPid() == 0; }));
  (void)sender.send("Mail", "Two", "which starts the next");
  const pid_t second = session_->serverPid();
  ASSERT_NE(second, first);
  expectTold({first, second});
}

TEST_P(Launches, IgnoreServersAlreadyRunning) {
  session_ = std::make_unique<DesktopSession>();
  const std::unique_ptr<ChildProcess> server = session_->startServer(GetParam().command);
  environment_ = std::make_unique<SessionEnvironment>(session_->environment());
  applications_.observeLaunches([this](const HLRunningApplication& application) { told_.push_back(application.pid); });
  expectTold({});
}

TEST_P(Launches, AreReportedAgainOnceReady) {
  begin();
  const std::unique_ptr<ChildProcess> server = session_->startServer(GetParam().command);
  expectTold({server->pid()});
  int questions = 0;
  applications_.reportAgainWhenReady(server->pid(), [&questions] { return ++questions == 2; });
  EXPECT_EQ(questions, 0);
  expectTold({server->pid(), server->pid()});
  EXPECT_EQ(questions, 2);
}

TEST_P(Launches, StopRetryingForReplacedServers) {
  begin();
  const std::unique_ptr<ChildProcess> first = session_->startServer(GetParam().command);
  applications_.reportAgainWhenReady(first->pid(), [] {
    ADD_FAILURE();
    return true;
  });
  first->signal(SIGKILL);
  EXPECT_TRUE(first->wait(std::chrono::seconds(10)));
  const std::unique_ptr<ChildProcess> second = session_->startServer(GetParam().command);
  expectTold({second->pid()});
  loop_.runFor(2);  // past the first two questions
  EXPECT_EQ(told_, std::vector<std::int32_t>{second->pid()});
}

INSTANTIATE_TEST_SUITE_P(Real, Launches, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

TEST(LaunchesOutsideASession, AreNone) {
  const Environment variables = {{"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus"}};
  const SessionEnvironment nowhere(variables);
  HLLinuxRunLoop loop;
  HLLinuxRunningApplications applications(loop);
  applications.observeLaunches([](const HLRunningApplication&) { ADD_FAILURE(); });
  loop.runFor(0.01);
}

}  // namespace
