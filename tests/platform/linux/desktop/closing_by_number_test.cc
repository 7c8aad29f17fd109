// Servers whose banners have no close control: the daemon sees what is posted, and notifications are closed by number.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "tests/platform/linux/desktop/real_desktop.h"

namespace {

using std::chrono::seconds;
using testing::HasSubstr;
using testing::IsEmpty;

const std::vector<std::string> kActions = {"default", "Show", "close", "Close", "dismiss", "Dismiss", "x", "x"};

class ClosingByNumber : public RealDesktop, public testing::WithParamInterface<Server> {
 protected:
  void startDaemon() {
    daemon_ = start({"--daemon"});
    ASSERT_TRUE(Eventually([this] { return run("--daemon-self-check") != "reachable=false status=unreachable\n"; }));
  }

  void beginWithDaemon(const SessionSetup& setup = {}) {
    beginWith(GetParam(), setup);
    startDaemon();
  }

  void TearDown() override {
    if (sender_ != nullptr) {
      EXPECT_THAT(sender_->invoked(), IsEmpty());
    }
    daemon_ = nullptr;
    RealDesktop::TearDown();
  }

  std::unique_ptr<ChildProcess> daemon_;
};

INSTANTIATE_TEST_SUITE_P(Servers, ClosingByNumber, testing::Values(kXfce, kDunst),
                         [](const auto& server) { return server.param.name; });

TEST_P(ClosingByNumber, ClearsOneFiveAndTwenty) {
  beginWithDaemon();
  for (int count : {1, 5, 20}) {
    const std::vector<std::uint32_t> ids = send(count);
    waitForTargets(count);
    keepPicture(std::to_string(count));
    EXPECT_EQ(dismiss(), "success|" + std::to_string(count) + "|0\n");
    expectClosed(ids, GetParam());
    waitForTargets(0);
  }
}

TEST_P(ClosingByNumber, ClearsThroughTheDaemon) {
  beginWithDaemon();
  const std::vector<std::uint32_t> ids = send(5, "Chat");
  waitForTargets(5);
  EXPECT_EQ(run("--daemon-dismiss"), "success|5|0\n");
  expectClosed(ids, GetParam());
}

TEST_P(ClosingByNumber, InvokesNoAction) {
  beginWithDaemon();
  std::vector<std::uint32_t> ids;
  for (const char* title : {"Ada", "Bo", "Close"}) ids.push_back(sender_->send("Chat", title, "Lunch?", kActions));
  waitForTargets(3);
  keepPicture("before");
  EXPECT_EQ(dismiss(), "success|3|0\n");
  expectClosed(ids, GetParam());
}

TEST_P(ClosingByNumber, ClearsIdenticalNotifications) {
  beginWithDaemon();
  std::vector<std::uint32_t> ids;
  for (int i = 0; i < 5; ++i) ids.push_back(sender_->send("Chat", "Ada", "Are you there?", kActions));
  // dunst closes the older of equal ones itself.
  const int shown = GetParam().name == "dunst" ? 1 : 5;
  waitForTargets(shown);
  EXPECT_EQ(dismiss(), "success|" + std::to_string(shown) + "|0\n");
  EXPECT_TRUE(sender_->waitUntilClosed(ids, seconds(10)));
}

TEST_P(ClosingByNumber, ClearsReplacedNotifications) {
  beginWithDaemon();
  const std::uint32_t kept = sender_->send("Chat", "Ada", "is typing");
  const std::uint32_t replaced = sender_->send("Mail", "Lunch", "at noon");
  waitForTargets(2);
  EXPECT_EQ(sender_->send("Mail", "Lunch", "at one", kActions, replaced), replaced);
  // A command is never told the texts of a server without a tree, only the application.
  const auto closer = start({"--close-matching", GetParam().name == "dunst" ? "mail" : "at one"});
  EXPECT_EQ(closer->wait(seconds(20)), 0);
  EXPECT_TRUE(sender_->waitUntilClosed({replaced}, seconds(10)));
  EXPECT_EQ(sender_->closed().count(kept), 0U);
  EXPECT_EQ(dismiss(), "success|1|0\n");
  expectClosed({kept}, GetParam());
}

TEST_P(ClosingByNumber, ClearsWhatComesDuringTheRun) {
  beginWithDaemon();
  std::vector<std::uint32_t> ids = send(10, "Chat");
  waitForTargets(10);
  const std::unique_ptr<ChildProcess> program = start({"--dismiss-now"});
  ASSERT_TRUE(Eventually([this] { return !sender_->closed().empty(); }));
  for (const char* title : {"Late", "Later"}) ids.push_back(sender_->send("Mail", title, "came meanwhile", kActions));
  EXPECT_EQ(program->wait(seconds(20)), 0) << program->output();
  EXPECT_THAT(program->output(), HasSubstr("success|"));
  EXPECT_TRUE(Eventually([this] { return dismiss() == "nothing|0|0\n"; }));
  expectClosed(ids, GetParam());
}

TEST_P(ClosingByNumber, LeavesWhatWasThereBefore) {
  beginWith(GetParam());
  const std::uint32_t before = sender_->send("Mail", "Lunch", "at noon", kActions);
  startDaemon();
  EXPECT_EQ(dismiss(), "nothing|0|0\n");
  const std::uint32_t after = sender_->send("Chat", "Ada", "Lunch?", kActions);
  waitForTargets(1);
  EXPECT_EQ(dismiss(), "success|1|0\n");
  expectClosed({after}, GetParam());
  EXPECT_EQ(sender_->closed().count(before), 0U);
  keepPicture("left");
}

TEST_P(ClosingByNumber, LeavesAllWithoutARunningHushlet) {
  beginWith(GetParam());
  (void)sender_->send("Chat", "Ada", "Lunch?", kActions);
  EXPECT_EQ(dismiss(), GetParam().name == "dunst" ? "failed|0|0\n" : "nothing|0|0\n");
  EXPECT_THAT(sender_->closed(), IsEmpty());
}

// ---------------------------------------------------------------------------------------------------------------------
// A session without accessibility.

class WithoutTree : public ClosingByNumber {
 protected:
  std::string preferences() {
    std::ifstream file(session_->environment().at("HOME") + "/.config/com.tessaly.hushlet/defaults.json");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  int request() { return start({"--request-accessibility"})->wait(seconds(30)).value_or(-1); }
};

INSTANTIATE_TEST_SUITE_P(Servers, WithoutTree, testing::Values(kDunst),
                         [](const auto& server) { return server.param.name; });

TEST_P(WithoutTree, IsTrustedWithTheUsersConsent) {
  beginWith(GetParam(), WithoutAccessibility());
  EXPECT_EQ(dismiss(), "accessDenied|0|0\n");
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=false"));
  EXPECT_EQ(preferences(), "") << "a check changes nothing";
  EXPECT_EQ(request(), 0);
  EXPECT_THAT(preferences(), HasSubstr("HLClosesWithoutAccessibility"));
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=true"));
  startDaemon();
  const std::vector<std::uint32_t> ids = send(3);
  waitForTargets(3);
  EXPECT_EQ(run("--daemon-dismiss"), "success|3|0\n");
  expectClosed(ids, GetParam());
}

TEST_P(WithoutTree, IgnoresConsentWhenServerHasTree) {
  beginWith(GetParam(), WithoutAccessibility());
  EXPECT_EQ(request(), 0);
  server_ = nullptr;
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=true")) << "the server may come with the next notification";
  server_ = session_->startServer(kXfce.command);
  EXPECT_THAT(run("--self-check"), HasSubstr("trusted=false"));
  EXPECT_EQ(request(), 1);
}

}  // namespace
