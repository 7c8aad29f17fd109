// The settings window, the auto-closer's switch and that of opening at login.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/app/application_run.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kToggleAutoClose = Press("Close Shortcuts Automation Banners", SettingsTitle);
const std::string kToggleOpenAtLogin = Press("Open at Login", SettingsTitle);
// A request with the prompt would be granted: nothing here makes one.
constexpr const char* kGrantedOnPrompt = R"(, "trusted": false, "services": {"grantOnPrompt": true})";
constexpr const char* kWanted = R"(, "defaults": {"HLAutoCloseAutomationBanners": true})";

TEST(SettingsWindow, HidesLoginItemInPersonalFlavor) {
  const ApplicationRun run = RunApplication({.isProduct = false, .timeline = {At(1, OpenSettings), DumpAt(2)}});
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).openAtLogin, nullptr);
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).shortcut["label"], "None");
}

TEST(SettingsWindow, ShowsMissingAccessWithoutPolling) {
  const ApplicationRun run =
      RunApplication({.isProduct = false,
                      .timeline = {At(1, OpenSettings), At(1.5, OpenSettings), At(2, R"("trust": true)"), DumpAt(9),
                                   At(10, OpenSettings), DumpAt(11)},
                      .further = kGrantedOnPrompt});
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).access["label"], "Not allowed yet");
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).access["color"], "orange");
  EXPECT_EQ(SettingsOf(run.dumps.at(1)).access["color"], "green");
  EXPECT_EQ(run.dumps.at(0)["timers"], 0);
}

TEST(SettingsWindow, LeadsToTheSetupWindow) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(2, Press("Set Up Accessibility", SettingsTitle)), DumpAt(3),
                                   At(4, Terminate)}});
  EXPECT_EQ(WindowOf(run.dumps.at(0), SetupTitle)["visible"], true);
}

TEST(SettingsWindow, SurvivesClosing) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(1.5, Press("Clear", SettingsTitle)),
                                   At(2, CloseWindow(SettingsTitle)), DumpAt(3), At(4, OpenSettings), DumpAt(5)}});
  EXPECT_EQ(WindowOf(run.dumps.at(0), SettingsTitle)["visible"], false);
  EXPECT_EQ(WindowOf(run.dumps.at(1), SettingsTitle)["visible"], true);
  EXPECT_THAT(run.dumps.at(1)["windows"], SizeIs(1));
  EXPECT_EQ(SettingsOf(run.dumps.at(1)).note, SettingsOf(run.dumps.at(0)).note);
}

TEST(AutoClose, IsOffUntilItIsWanted) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, OpenSettings), DumpAt(2)}});
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).autoClose["on"], false);
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
  EXPECT_THAT(run.dumps.at(0)["defaults"], IsEmpty());
}

TEST(AutoClose, StartsAtLaunchWhenWanted) {
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}, .further = kWanted});
  EXPECT_EQ(run.dumps.at(0)["observers"], json::parse(R"([{"pid": 400, "notifications": ["AXLayoutChanged"]}])"));
}

TEST(AutoClose, ClosesOnlyAutomationBanners) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(2, kToggleAutoClose),
                                   At(3, R"("notify": "AXLayoutChanged", "element": "mail")"),
                                   At(3, R"("notify": "AXLayoutChanged", "element": "automation")"), DumpAt(5)},
                      .windows = BannerWindow({Banner("mail", "Mail, One, Two"),
                                               Banner("automation", "Shortcuts, Morning, Running your automation")})});
  EXPECT_THAT(run.record["present"], ElementsAre("window", "mail"));
  EXPECT_THAT(MessagesOf(run, "autoClose want"), ElementsAre("autoClose want=on"));
  EXPECT_EQ(run.dumps.at(0)["defaults"], (json{{"HLAutoCloseAutomationBanners", true}}));
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).autoClose["on"], true);
}

TEST(AutoClose, StartsOncePerNotificationCenter) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(2, OpenSettings), At(3, OpenSettings)}, .further = kWanted});
  EXPECT_THAT(MessagesOf(run, "auto-close"), ElementsAre("auto-close watching pid=400 register=0"));
}

TEST(AutoClose, TriesAgainAfterAFailedStart) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, OpenSettings), At(2, OpenSettings)}, .further = kWanted, .hasNotificationCenter = false});
  EXPECT_THAT(MessagesOf(run, "auto-close"),
              ElementsAre("auto-close start failed nc=missing", "auto-close start failed nc=missing",
                          "auto-close start failed nc=missing"));
}

TEST(AutoClose, StopsWhenSwitchedOff) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, OpenSettings), At(2, kToggleAutoClose), DumpAt(3), At(4, kToggleAutoClose), DumpAt(5)},
       .further = kWanted});
  EXPECT_THAT(MessagesOf(run, "autoClose want"), ElementsAre("autoClose want=off", "autoClose want=on"));
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
  EXPECT_EQ(run.dumps.at(0)["defaults"], (json{{"HLAutoCloseAutomationBanners", false}}));
  EXPECT_THAT(run.dumps.at(1)["observers"], SizeIs(1));
}

const std::string kRunning = "Shortcuts, Morning, Running your automation";

TEST(AutoClose, RestartsWhenSwitchedOnAgain) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(2, R"("notify": "AXLayoutChanged", "element": "one")"),
                                   At(3, kToggleAutoClose), At(4, kToggleAutoClose),
                                   At(5, R"("notify": "AXLayoutChanged", "element": "two")")},
                      .further = kWanted,
                      .windows = BannerWindow({Banner("one", kRunning), Banner("two", kRunning)})});
  EXPECT_THAT(MessagesOf(run, "auto-close app"),
              ElementsAre("auto-close app=Shortcuts error=0 closed=1", "auto-close app=Shortcuts error=0 closed=1"));
  EXPECT_THAT(run.record["present"], ElementsAre("window"));
}

TEST(AutoClose, FollowsTheNextNotificationCenter) {
  const std::string next = R"("launch": {"pid": 401, "bundleIdentifier": "com.apple.notificationcenterui",
    "windows": [)" + Banner("two", kRunning + " again") +
                           "]}";
  const ApplicationRun run =
      RunApplication({.timeline = {At(2, R"("notify": "AXLayoutChanged", "element": "one")"), At(3, R"("quit": 400)"),
                                   At(4, next), At(5, R"("notify": "AXLayoutChanged", "element": "two")")},
                      .further = kWanted,
                      .windows = BannerWindow({Banner("one", kRunning)})});
  EXPECT_THAT(MessagesOf(run, "auto-close app"),
              ElementsAre("auto-close app=Shortcuts error=0 closed=1", "auto-close app=Shortcuts error=0 closed=2"));
}

TEST(AutoClose, StartsOnceTrustIsGranted) {
  const ApplicationRun run =
      RunApplication({.isProduct = false,
                      .timeline = {At(1, OpenSettings), At(2, kToggleAutoClose), At(2.5, OpenSettings), DumpAt(3),
                                   At(4, R"("trust": true)"), DumpAt(5), At(6, OpenSettings), DumpAt(7)},
                      .further = kGrantedOnPrompt});
  EXPECT_EQ(run.dumps.at(0)["defaults"], (json{{"HLAutoCloseAutomationBanners", true}}));
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).autoClose["on"], true);
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
  EXPECT_THAT(run.dumps.at(1)["observers"], IsEmpty());
  EXPECT_THAT(run.dumps.at(2)["observers"], SizeIs(1));
}

TEST(AutoClose, StopsOnceTrustIsLost) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, R"("trust": false)"), At(2, OpenSettings), DumpAt(3), At(4, Terminate)}, .further = kWanted});
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
}

TEST(OpenAtLogin, ChecksTheBoxOnlyWhenEnabled) {
  for (const auto& [status, on] : {std::pair{0, false}, {1, true}, {2, false}, {3, false}}) {
    const ApplicationRun run =
        RunApplication({.timeline = {At(1, OpenSettings), DumpAt(2)},
                        .further = R"(, "services": {"loginItem": {"status": )" + std::to_string(status) + "}}"});
    EXPECT_EQ(SettingsOf(run.dumps.at(0)).openAtLogin["on"], on) << status;
  }
}

TEST(OpenAtLogin, RegistersAndUnregisters) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, OpenSettings), At(2, kToggleOpenAtLogin), DumpAt(3), At(4, kToggleOpenAtLogin), DumpAt(5)}});
  EXPECT_THAT(MessagesOf(run, "openAtLogin"), ElementsAre("openAtLogin want=on ok=true status=1 error=none",
                                                          "openAtLogin want=off ok=true status=0 error=none"));
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).openAtLogin["on"], true);
  EXPECT_EQ(SettingsOf(run.dumps.at(1)).openAtLogin["on"], false);
}

TEST(OpenAtLogin, StaysOffWhileApprovalIsPending) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, OpenSettings), At(2, kToggleOpenAtLogin), DumpAt(3)},
                                             .further = R"(, "services": {"loginItem": {"statusAfterRegister": 2}})"});
  EXPECT_THAT(MessagesOf(run, "openAtLogin"), ElementsAre("openAtLogin want=on ok=true status=2 error=none"));
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).openAtLogin["on"], false);
}

TEST(OpenAtLogin, RevertsTheBoxOnFailure) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(2, kToggleOpenAtLogin), DumpAt(3)},
                      .further = R"(, "services": {"loginItem": {"status": 1, "unregisterError": "Not permitted."}})"});
  EXPECT_THAT(MessagesOf(run, "openAtLogin"),
              ElementsAre("openAtLogin want=off ok=false status=1 error=Not permitted."));
  EXPECT_EQ(SettingsOf(run.dumps.at(0)).openAtLogin["on"], true);
}

}  // namespace
