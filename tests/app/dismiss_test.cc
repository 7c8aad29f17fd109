// One dismiss request in the application, and what the status button shows of it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/app/application_run.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

// A banner whose close action takes so long, and that then goes.
std::string slowBanner(const std::string& id, double seconds) {
  return R"({"id": ")" + id +
         R"(", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": "Mail, )" + id +
         R"(", "frame": [1080, 40, 344, 80], "actions": ["Name:Close"], "onAction": {"Name:Close": {"seconds": )" +
         std::to_string(seconds) + R"(, "effects": [{"remove": ")" + id + R"("}]}}})";
}

ApplicationScene slowScene(bool isProduct) {
  return {.isProduct = isProduct,
          .timeline = {At(1, LeftClick), DumpAt(1), DumpAt(1.1), At(1.5, LeftClick), DumpAt(2.2), DumpAt(9)},
          .windows = BannerWindow({slowBanner("a", 1), slowBanner("b", 1), slowBanner("c", 1), slowBanner("d", 1),
                                   slowBanner("e", 2), slowBanner("f", 2), slowBanner("g", 2)})};
}

std::vector<std::string> titles(const ApplicationRun& run) {
  std::vector<std::string> titles;
  for (const json& dump : run.dumps) titles.push_back(dump["statusItem"]["title"]);
  return titles;
}

TEST(DismissRequest, LogsStartAndOutcome) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, R"("choose": "Dismiss Notifications")")},
                      .windows = BannerWindow({Banner("a", "Mail, One"), Banner("b", "Chat, Two")})});
  ASSERT_EQ(run.log.size(), 8U);
  EXPECT_EQ(run.log[3], "dismissNotifications");
  EXPECT_EQ(run.log[4], "refreshStatusItem available=true visible=true");
  EXPECT_EQ(run.log[5], "dismissNotifications started");
  EXPECT_EQ(run.log[6], "refreshStatusItem available=true visible=true");
  EXPECT_THAT(run.log[7],
              MatchesRegex("dismissNotifications outcome status=success dismissed=2 remaining=0 elapsedMs=[0-9]+"));
  EXPECT_THAT(run.record["present"], ElementsAre("window"));
}

TEST(DismissRequest, LogsWholeMilliseconds) {
  // One press that takes three seconds, then 0.08 and 0.32 seconds of waiting for the screen.
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, LeftClick)}, .windows = BannerWindow({slowBanner("a", 3)})});
  EXPECT_THAT(MessagesOf(run, "dismissNotifications outcome"),
              ElementsAre("dismissNotifications outcome status=success dismissed=1 remaining=0 elapsedMs=3080"));
}

TEST(DismissRequest, IsDroppedWhileAnotherRuns) {
  const ApplicationRun run = RunApplication(slowScene(true));
  EXPECT_THAT(MessagesOf(run, "dismissNotifications s"),
              ElementsAre("dismissNotifications started", "dismissNotifications skipped reason=inFlight"));
  EXPECT_EQ(MessagesOf(run, "dismissNotifications outcome").size(), 1U);
}

TEST(DismissRequest, CanFollowAnotherThatHasEnded) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, LeftClick), At(30, LeftClick)}, .windows = BannerWindow({Banner("a", "Mail, One")})});
  EXPECT_EQ(MessagesOf(run, "dismissNotifications started").size(), 2U);
  EXPECT_THAT(MessagesOf(run, "dismissNotifications outcome").at(1),
              testing::StartsWith("dismissNotifications outcome status=nothing dismissed=0 remaining=0 elapsedMs="));
}

TEST(DismissRequest, EndsWhenTheApplicationQuits) {
  ApplicationScene scene = slowScene(true);
  scene.timeline = {At(1, LeftClick), At(2.5, R"("choose": "Quit Hushlet")"), DumpAt(3)};
  const ApplicationRun run = RunApplication(scene);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.record["at"], 2.5);
  EXPECT_THAT(run.record["present"], ElementsAre("window", "e", "f", "g"));
  EXPECT_THAT(MessagesOf(run, "dismissNotifications s"), ElementsAre("dismissNotifications started"));
  EXPECT_THAT(MessagesOf(run, "dismissNotifications outcome"), IsEmpty());
  EXPECT_THAT(run.dumps, IsEmpty());
}

TEST(DismissRequest, CountsDownInTheStatusButton) {
  EXPECT_THAT(titles(RunApplication(slowScene(true))), ElementsAre("", "7", "3", ""));
  EXPECT_THAT(titles(RunApplication(slowScene(false))), ElementsAre("HL…", "HL 7", "HL 3", "HL"));
}

TEST(DismissRequest, KeepsTheProductImage) {
  for (const json& dump : RunApplication(slowScene(true)).dumps) EXPECT_EQ(dump["statusItem"]["image"], "bell.slash");
}

TEST(DismissRequest, OnlyLogsWithoutNotificationCenter) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, LeftClick), DumpAt(2)}, .hasNotificationCenter = false});
  EXPECT_THAT(MessagesOf(run, "dismissNotifications outcome"),
              ElementsAre(testing::StartsWith("dismissNotifications outcome status=notificationCenterUnavailable ")));
  EXPECT_THAT(run.dumps.at(0)["windows"], IsEmpty());
}

// The one that the launch has opened is out of the way first.
const std::string kCloseSetup = CloseWindow(SetupTitle);

TEST(AccessDenied, OpensSetupOncePerProcess) {
  const ApplicationRun run = RunApplication({.timeline = {At(0.5, kCloseSetup), At(1, LeftClick), DumpAt(1.5),
                                                          At(2, kCloseSetup), At(3, LeftClick), DumpAt(4)},
                                             .further = Untrusted});
  EXPECT_EQ(MessagesOf(run, "accessibility unavailable from running app; showing setup").size(), 1U);
  EXPECT_THAT(MessagesOf(run, "dismissNotifications outcome"),
              testing::Each(MatchesRegex(
                  "dismissNotifications outcome status=accessDenied dismissed=0 remaining=0 elapsedMs=0")));
  EXPECT_EQ(WindowOf(run.dumps.at(0), SetupTitle)["visible"], true);
  EXPECT_EQ(WindowOf(run.dumps.at(1), SetupTitle)["visible"], false);
  EXPECT_EQ(run.dumps.at(1)["statusItem"]["image"], "exclamationmark.triangle");
}

TEST(AccessDenied, RefreshesTheButtonEachTime) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(0.5, kCloseSetup), At(1, LeftClick), At(1.5, kCloseSetup), At(2, LeftClick), At(2.5, Terminate)},
       .further = Untrusted});
  ASSERT_GE(run.log.size(), 2U);
  EXPECT_THAT(run.log.end()[-2], testing::StartsWith("dismissNotifications outcome status=accessDenied "));
  EXPECT_EQ(run.log.end()[-1], "refreshStatusItem available=false visible=true");
}

TEST(AccessDenied, RefreshesTheButtonTwice) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(0.5, kCloseSetup), At(1, LeftClick), At(1.5, Terminate)}, .further = Untrusted});
  const auto outcome = std::find_if(run.log.begin(), run.log.end(), [](const std::string& message) {
    return message.starts_with("dismissNotifications outcome");
  });
  ASSERT_GE(run.log.end() - outcome, 4);
  EXPECT_EQ(outcome[1], "refreshStatusItem available=false visible=true");
  EXPECT_EQ(outcome[2], "accessibility unavailable from running app; showing setup");
  EXPECT_EQ(outcome[3], "refreshStatusItem available=false visible=true");
}

}  // namespace
