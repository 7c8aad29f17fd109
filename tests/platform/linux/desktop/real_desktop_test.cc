// The program on real desktops, with notification servers as people run them.
#include "tests/platform/linux/desktop/real_desktop.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

using std::chrono::seconds;
using testing::AnyOf;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class RealServer : public RealDesktop, public testing::WithParamInterface<Server> {};

INSTANTIATE_TEST_SUITE_P(Servers, RealServer, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

TEST_P(RealServer, OneNotificationIsClosed) {
  beginWith(GetParam());
  const std::vector<std::uint32_t> ids = send(1);
  waitForTargets(1);
  keepPicture("before");
  EXPECT_EQ(dismiss(), "success|1|0\n");
  expectClosed(ids, GetParam());
  keepPicture("after");
}

TEST_P(RealServer, ClosesNotificationsOfSeveralApplications) {
  beginWith(GetParam());
  const std::vector<std::uint32_t> ids = send(3);
  waitForTargets(3);
  keepPicture("before");
  EXPECT_EQ(dismiss(), "success|3|0\n");
  expectClosed(ids, GetParam());
  keepPicture("after");
}

TEST_P(RealServer, ClosesFiveNotificationsOfOneApplication) {
  beginWith(GetParam());
  const std::vector<std::uint32_t> ids = send(5, "Chat");
  waitForTargets(5);
  EXPECT_EQ(dismiss(), "success|5|0\n");
  expectClosed(ids, GetParam());
}

TEST_P(RealServer, ClosesMoreThanTheScreenHolds) {
  beginWith(GetParam());
  const std::vector<std::uint32_t> ids = send(GetParam().most);
  waitForTargets(GetParam().most);
  keepPicture("before");
  EXPECT_EQ(dismiss(), "success|" + std::to_string(GetParam().most) + "|0\n");
  expectClosed(ids, GetParam());
  keepPicture("after");
}

TEST_P(RealServer, NeverHasApplicationButtonsPressed) {
  beginWith(GetParam());
  const std::vector<std::string> actions = {"default", "Show", "reply", "Reply", "close",
                                            "Close",   "x",    "x",     "undo",  "Undo"};
  std::vector<std::uint32_t> ids;
  for (int i = 0; i < 3; ++i) ids.push_back(sender_->send("Chat", "Ada " + std::to_string(i), "Lunch?", actions));
  waitForTargets(3);
  keepPicture("before");
  EXPECT_EQ(dismiss(), "success|3|0\n");
  expectClosed(ids, GetParam());
  EXPECT_THAT(sender_->invoked(), IsEmpty());
}

TEST_P(RealServer, HasNothingToClearWhenEmpty) {
  beginWith(GetParam());
  ASSERT_TRUE(Eventually([this] { return dismiss() == "nothing|0|0\n"; }));
}

TEST_P(RealServer, CausesFailureWhenStopped) {
  beginWith(GetParam());
  (void)send(2);
  waitForTargets(2);
  server_->signal(SIGSTOP);
  EXPECT_EQ(dismiss(seconds(5)), "failed|0|0\n");
}

TEST_P(RealServer, LeavesNothingWhenKilledWhileClearing) {
  beginWith(GetParam());
  (void)send(GetParam().most);
  waitForTargets(GetParam().most);
  const std::unique_ptr<ChildProcess> program = start({"--dismiss-now"});
  ASSERT_TRUE(Eventually([this] { return !sender_->closed().empty(); }));
  server_->signal(SIGKILL);
  ASSERT_EQ(program->wait(seconds(20)), 0) << program->output();
  EXPECT_THAT(program->output(), AnyOf(StartsWith("success|"), StartsWith("failed|")));
  EXPECT_THAT(program->output(), testing::EndsWith("|0\n"));
}

TEST_P(RealServer, IsInaccessibleWithoutAccessibilityBus) {
  beginWith(GetParam());
  (void)send(1);
  waitForTargets(1);
  kill(session_->accessibilityBusPid(), SIGKILL);
  EXPECT_EQ(dismiss(seconds(5)), "accessDenied|0|0\n");
}

TEST_P(RealServer, IsInaccessibleWithoutSessionBus) {
  beginWith(GetParam());
  (void)send(1);
  waitForTargets(1);
  session_->sessionBus().signal(SIGKILL);
  EXPECT_EQ(dismiss(seconds(5)), "accessDenied|0|0\n");
}

TEST_P(RealServer, IsInaccessibleWhileSessionBusHangs) {
  beginWith(GetParam());
  session_->sessionBus().signal(SIGSTOP);
  EXPECT_EQ(dismiss(seconds(10)), "accessDenied|0|0\n");
  session_->sessionBus().signal(SIGCONT);
}

TEST_P(RealServer, IsRestartedByBusAfterOverflow) {
  beginWith(GetParam(), WithActivatable({GetParam().command}));
  const pid_t before = server_->pid();
  const std::vector<std::uint32_t> ids = send(GetParam().most, "Chat");
  waitForTargets(GetParam().most);
  EXPECT_EQ(dismiss(), "success|" + std::to_string(GetParam().most) + "|0\n");
  expectClosed(ids, GetParam());
  EXPECT_EQ(server_->wait(seconds(5)), 128 + SIGTERM);
  const pid_t after = session_->serverPid();
  EXPECT_NE(after, 0);
  EXPECT_NE(after, before);
}

TEST_P(RealServer, IsSparedUnlessBusRestartsIt) {
  beginWith(GetParam());
  const std::vector<std::uint32_t> ids = send(GetParam().most, "Chat");
  waitForTargets(GetParam().most);
  EXPECT_EQ(dismiss(), "success|" + std::to_string(GetParam().most) + "|0\n");
  expectClosed(ids, GetParam());
  EXPECT_FALSE(server_->wait(seconds(0))) << "it has ended";
}

TEST_P(RealServer, IsSparedIfBusStartsAnother) {
  beginWith(GetParam(), WithActivatable({GetParam().command, kXfce.command}));
  (void)send(GetParam().most, "Chat");
  waitForTargets(GetParam().most);
  EXPECT_EQ(dismiss(), "success|" + std::to_string(GetParam().most) + "|0\n");
  EXPECT_FALSE(server_->wait(seconds(0))) << "it has ended";
}

// Some servers show several alike as one, this one does not.
TEST_F(RealDesktop, ClosesEachOfFiveEqualNotifications) {
  beginWith(kMate);
  std::vector<std::uint32_t> ids;
  for (int i = 0; i < 5; ++i) ids.push_back(sender_->send("Chat", "Ada", "Are you there?"));
  waitForTargets(5);
  EXPECT_EQ(dismiss(), "success|5|0\n");
  expectClosed(ids, kMate);
}

// Its banners have no close control, only the application's own buttons.
TEST_F(RealDesktop, ClearsNothingWithoutCloseControls) {
  beginWith(kXfce);
  (void)sender_->send("Mail", "New message", "Hello");
  (void)sender_->send("Chat", "Ada", "Lunch?", {"close", "Close", "dismiss", "Dismiss"});
  keepPicture("before");
  EXPECT_EQ(dismiss(), "nothing|0|0\n");
  EXPECT_THAT(sender_->invoked(), IsEmpty());
  EXPECT_THAT(sender_->closed(), IsEmpty());
}

TEST_F(RealDesktop, HasNoNotificationCenterWithoutServer) {
  begin();
  EXPECT_EQ(dismiss(), "notificationCenterUnavailable|0|0\n");
}

TEST_F(RealDesktop, AskingDoesNotStartAServer) {
  begin(WithActivatable({kMate.command}));
  EXPECT_EQ(dismiss(), "notificationCenterUnavailable|0|0\n");
  EXPECT_EQ(session_->serverPid(), 0);
}

TEST_F(RealDesktop, WithoutAccessibilityAccessIsDenied) {
  beginWith(kMate, WithoutAccessibility());
  EXPECT_EQ(dismiss(), "accessDenied|0|0\n");
}

TEST_F(RealDesktop, OutsideASessionAccessIsDenied) {
  begin();
  Environment environment = session_->environment();
  environment.erase("DBUS_SESSION_BUS_ADDRESS");
  environment["XDG_RUNTIME_DIR"] = session_->directory() + "/home";
  ChildProcess program({HL_PROGRAM, "--dismiss-now"}, environment, session_->directory() + "/output");
  EXPECT_EQ(program.wait(seconds(5)), 0);
  EXPECT_EQ(program.output(), "accessDenied|0|0\n");
}

}  // namespace
