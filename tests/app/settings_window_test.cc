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

constexpr const char* kOpen = R"("choose": "Settings…")";
constexpr const char* kToggleAutoClose =
    R"("press": "Close Shortcuts Automation Banners", "window": "Hushlet Settings")";
constexpr const char* kToggleOpenAtLogin = R"("press": "Open at Login", "window": "Hushlet Settings")";
// A request with the prompt would be granted: nothing here makes one.
constexpr const char* kGrantedOnPrompt = R"(, "trusted": false, "services": {"grantOnPrompt": true})";
constexpr const char* kWanted = R"(, "defaults": {"HLAutoCloseAutomationBanners": true})";

json settings(const json& dump) { return WindowOf(dump, "Hushlet Settings"); }
json autoCloseBox(const json& dump) { return settings(dump)["content"][5]; }
json openAtLoginBox(const json& dump) { return settings(dump)["content"][6]; }

TEST(SettingsWindow, StacksItsControls) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, kOpen), DumpAt(2)}});
  const json window = settings(run.dumps.at(0));
  EXPECT_EQ(window["width"], 420);
  EXPECT_EQ(window["height"], 280);
  EXPECT_EQ(window["key"], true);
  ASSERT_EQ(window["content"].size(), 7U);
  const auto label = [](const char* text, int size, const char* weight, const char* color) {
    return json{{"label", text}, {"size", size}, {"weight", weight}, {"color", color}};
  };
  const auto inStack = [](json item, int after, bool fullWidth) {
    item["after"] = after;
    item["fullWidth"] = fullWidth;
    return item;
  };
  EXPECT_EQ(window["content"][0], inStack(label("Shortcut", 13, "semibold", "label"), 8, false));
  EXPECT_EQ(window["content"][1]["after"], 8);
  const json shortcut = window["content"][1]["row"];
  ASSERT_EQ(shortcut.size(), 3U);
  EXPECT_EQ(shortcut[0], label("⌃⌥⌘N", 15, "medium", "label"));
  EXPECT_EQ(shortcut[1], (json{{"button", "Record Shortcut"}, {"key", ""}, {"enabled", true}}));
  EXPECT_EQ(shortcut[2], (json{{"button", "Clear"}, {"key", ""}, {"enabled", true}}));
  EXPECT_EQ(window["content"][2],
            inStack(label("Works from any app. Needs at least one of Command, Option or Control, or an F key.", 12,
                          "regular", "secondary"),
                    18, true));
  EXPECT_EQ(window["content"][3], inStack(label("Accessibility", 13, "semibold", "label"), 8, false));
  EXPECT_EQ(window["content"][4]["after"], 18);
  EXPECT_EQ(window["content"][4]["row"][0], label("Allowed", 13, "regular", "green"));
  EXPECT_EQ(window["content"][4]["row"][1], (json{{"button", "Set Up Accessibility"}, {"key", ""}, {"enabled", true}}));
  EXPECT_EQ(autoCloseBox(run.dumps.at(0))["checkBox"], "Close Shortcuts Automation Banners");
  EXPECT_EQ(autoCloseBox(run.dumps.at(0))["on"], false);
  EXPECT_EQ(autoCloseBox(run.dumps.at(0))["enabled"], true);
  EXPECT_EQ(openAtLoginBox(run.dumps.at(0))["checkBox"], "Open at Login");
  EXPECT_EQ(openAtLoginBox(run.dumps.at(0))["on"], false);
}

TEST(SettingsWindow, HidesLoginItemInPersonalFlavor) {
  const ApplicationRun run = RunApplication({.isProduct = false, .timeline = {At(1, kOpen), DumpAt(2)}});
  EXPECT_EQ(settings(run.dumps.at(0))["content"].size(), 6U);
  EXPECT_EQ(settings(run.dumps.at(0))["content"][1]["row"][0]["label"], "None");
}

TEST(SettingsWindow, ShowsMissingAccessWithoutPolling) {
  const ApplicationRun run = RunApplication(
      {.isProduct = false,
       .timeline = {At(1, kOpen), At(1.5, kOpen), At(2, R"("trust": true)"), DumpAt(9), At(10, kOpen), DumpAt(11)},
       .further = kGrantedOnPrompt});
  const auto state = [&run](std::size_t dump) { return settings(run.dumps.at(dump))["content"][4]["row"][0]; };
  EXPECT_EQ(state(0)["label"], "Not allowed yet");
  EXPECT_EQ(state(0)["color"], "orange");
  EXPECT_EQ(state(1)["label"], "Allowed");
  EXPECT_EQ(run.dumps.at(0)["timers"], 0);
}

TEST(SettingsWindow, LeadsToTheSetupWindow) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kOpen), At(2, R"("press": "Set Up Accessibility", "window": "Hushlet Settings")"), DumpAt(3),
                    At(4, R"("terminate": true)")}});
  EXPECT_EQ(WindowOf(run.dumps.at(0), "Set Up Hushlet")["visible"], true);
}

TEST(SettingsWindow, SurvivesClosing) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, kOpen), At(1.5, R"("press": "Clear", "window": "Hushlet Settings")"),
                                   At(2, R"("closeWindow": "Hushlet Settings")"), DumpAt(3), At(4, kOpen), DumpAt(5)}});
  EXPECT_EQ(settings(run.dumps.at(0))["visible"], false);
  EXPECT_EQ(settings(run.dumps.at(1))["visible"], true);
  EXPECT_THAT(run.dumps.at(1)["windows"], SizeIs(1));
  EXPECT_EQ(settings(run.dumps.at(1))["content"][2]["label"],
            "No shortcut. Click the menu bar icon to clear notifications.")
      << "its note with it";
}

TEST(AutoClose, IsOffUntilItIsWanted) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, kOpen), DumpAt(2)}});
  EXPECT_EQ(autoCloseBox(run.dumps.at(0))["on"], false);
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
  EXPECT_THAT(run.dumps.at(0)["defaults"], IsEmpty());
}

TEST(AutoClose, StartsAtLaunchWhenWanted) {
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}, .further = kWanted});
  EXPECT_EQ(run.dumps.at(0)["observers"], json::parse(R"([{"pid": 400, "notifications": ["AXLayoutChanged"]}])"));
}

TEST(AutoClose, ClosesOnlyAutomationBanners) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kOpen), At(2, kToggleAutoClose), At(3, R"("notify": "AXLayoutChanged", "element": "mail")"),
                    At(3, R"("notify": "AXLayoutChanged", "element": "automation")"), DumpAt(5)},
       .windows = BannerWindow(
           {Banner("mail", "Mail, One, Two"), Banner("automation", "Shortcuts, Morning, Running your automation")})});
  EXPECT_THAT(run.record["present"], ElementsAre("window", "mail"));
  EXPECT_THAT(MessagesOf(run, "autoClose want"), ElementsAre("autoClose want=on"));
  EXPECT_EQ(run.dumps.at(0)["defaults"], (json{{"HLAutoCloseAutomationBanners", true}}));
  EXPECT_EQ(autoCloseBox(run.dumps.at(0))["on"], true);
}

TEST(AutoClose, IsStartedOnceForOneNotificationCenter) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, kOpen), At(2, kOpen), At(3, kOpen)}, .further = kWanted});
  EXPECT_THAT(MessagesOf(run, "auto-close"), ElementsAre("auto-close watching pid=400 register=0"));
}

TEST(AutoClose, TriesAgainAfterAFailedStart) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, kOpen), At(2, kOpen)}, .further = kWanted, .hasNotificationCenter = false});
  EXPECT_THAT(MessagesOf(run, "auto-close"),
              ElementsAre("auto-close start failed nc=missing", "auto-close start failed nc=missing",
                          "auto-close start failed nc=missing"));
}

TEST(AutoClose, StopsWhenSwitchedOff) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kOpen), At(2, kToggleAutoClose), DumpAt(3), At(4, kToggleAutoClose), DumpAt(5)},
       .further = kWanted});
  EXPECT_THAT(MessagesOf(run, "autoClose want"), ElementsAre("autoClose want=off", "autoClose want=on"));
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
  EXPECT_EQ(run.dumps.at(0)["defaults"], (json{{"HLAutoCloseAutomationBanners", false}}));
  EXPECT_THAT(run.dumps.at(1)["observers"], SizeIs(1));
}

const std::string kRunning = "Shortcuts, Morning, Running your automation";

TEST(AutoClose, RestartsWhenSwitchedOnAgain) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kOpen), At(2, R"("notify": "AXLayoutChanged", "element": "one")"), At(3, kToggleAutoClose),
                    At(4, kToggleAutoClose), At(5, R"("notify": "AXLayoutChanged", "element": "two")")},
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
                      .timeline = {At(1, kOpen), At(2, kToggleAutoClose), At(2.5, kOpen), DumpAt(3),
                                   At(4, R"("trust": true)"), DumpAt(5), At(6, kOpen), DumpAt(7)},
                      .further = kGrantedOnPrompt});
  EXPECT_EQ(run.dumps.at(0)["defaults"], (json{{"HLAutoCloseAutomationBanners", true}}));
  EXPECT_EQ(autoCloseBox(run.dumps.at(0))["on"], true);
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
  EXPECT_THAT(run.dumps.at(1)["observers"], IsEmpty());
  EXPECT_THAT(run.dumps.at(2)["observers"], SizeIs(1));
}

TEST(AutoClose, StopsOnceTrustIsLost) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, R"("trust": false)"), At(2, kOpen), DumpAt(3), At(4, R"("terminate": true)")},
                      .further = kWanted});
  EXPECT_THAT(run.dumps.at(0)["observers"], IsEmpty());
}

TEST(OpenAtLogin, ChecksTheBoxOnlyWhenEnabled) {
  for (const auto& [status, on] : {std::pair{0, false}, {1, true}, {2, false}, {3, false}}) {
    const ApplicationRun run =
        RunApplication({.timeline = {At(1, kOpen), DumpAt(2)},
                        .further = R"(, "services": {"loginItem": {"status": )" + std::to_string(status) + "}}"});
    EXPECT_EQ(openAtLoginBox(run.dumps.at(0))["on"], on) << status;
  }
}

TEST(OpenAtLogin, RegistersAndUnregisters) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kOpen), At(2, kToggleOpenAtLogin), DumpAt(3), At(4, kToggleOpenAtLogin), DumpAt(5)}});
  EXPECT_THAT(MessagesOf(run, "openAtLogin"), ElementsAre("openAtLogin want=on ok=true status=1 error=none",
                                                          "openAtLogin want=off ok=true status=0 error=none"));
  EXPECT_EQ(openAtLoginBox(run.dumps.at(0))["on"], true);
  EXPECT_EQ(openAtLoginBox(run.dumps.at(1))["on"], false);
}

TEST(OpenAtLogin, StaysOffWhileApprovalIsPending) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, kOpen), At(2, kToggleOpenAtLogin), DumpAt(3)},
                                             .further = R"(, "services": {"loginItem": {"statusAfterRegister": 2}})"});
  EXPECT_THAT(MessagesOf(run, "openAtLogin"), ElementsAre("openAtLogin want=on ok=true status=2 error=none"));
  EXPECT_EQ(openAtLoginBox(run.dumps.at(0))["on"], false);
}

TEST(OpenAtLogin, RevertsTheBoxOnFailure) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, kOpen), At(2, kToggleOpenAtLogin), DumpAt(3)},
                      .further = R"(, "services": {"loginItem": {"status": 1, "unregisterError": "Not permitted."}})"});
  EXPECT_THAT(MessagesOf(run, "openAtLogin"),
              ElementsAre("openAtLogin want=off ok=false status=1 error=Not permitted."));
  EXPECT_EQ(openAtLoginBox(run.dumps.at(0))["on"], true);
}

}  // namespace
