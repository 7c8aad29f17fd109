// The window that leads to the Accessibility grant.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/app/application_run.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTitle = "Set Up Hushlet";
constexpr const char* kNewPane =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_Accessibility";
constexpr const char* kOldPane = "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

std::string press(const std::string& button) { return R"("press": ")" + button + R"(", "window": "Set Up Hushlet")"; }

json statusLine(const json& dump) { return WindowOf(dump, kTitle)["content"][4]; }
json primaryButton(const json& dump) { return WindowOf(dump, kTitle)["content"][5]; }

TEST(SetupWindow, StacksItsTexts) {
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}, .further = Untrusted});
  const json window = WindowOf(run.dumps.at(0), kTitle);
  EXPECT_EQ(window["width"], 460);
  EXPECT_EQ(window["height"], nullptr);
  EXPECT_EQ(window["key"], true);
  const auto label = [](const char* text, int size, const char* weight, const char* color, int after, bool fullWidth) {
    return json{{"label", text},  {"size", size},   {"weight", weight},
                {"color", color}, {"after", after}, {"fullWidth", fullWidth}};
  };
  ASSERT_EQ(window["content"].size(), 6U);
  EXPECT_EQ(window["content"][0], label("Allow Accessibility", 20, "semibold", "label", 6, false));
  EXPECT_EQ(window["content"][1],
            label("Hushlet clears notification banners by pressing their close buttons for you. macOS calls this "
                  "Accessibility access. It only looks at Notification Center, and nothing leaves your Mac.",
                  13, "regular", "label", 12, true));
  EXPECT_EQ(
      window["content"][2],
      label("1. Click Open Accessibility Settings.\n2. Turn on Hushlet in the list.\n3. Come back here. This window "
            "updates by itself.",
            13, "regular", "label", 12, true));
  EXPECT_EQ(
      window["content"][3],
      label("Already on, but it still asks? Select Hushlet in the list, remove it with the minus button, then click "
            "Open Accessibility Settings again and turn it on.",
            12, "regular", "secondary", 18, true));
  EXPECT_EQ(window["content"][4], label("Waiting for Accessibility access…", 13, "medium", "secondary", 12, true));
  EXPECT_EQ(window["content"][5]["button"], "Open Accessibility Settings");
  EXPECT_EQ(window["content"][5]["key"], "\r");
  EXPECT_EQ(window["content"][5]["fullWidth"], false);
}

TEST(SetupWindow, NoticesAccessWithinASecond) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(2.5, R"("trust": true)"), DumpAt(2.999), DumpAt(3.001)}, .further = Untrusted});
  EXPECT_EQ(primaryButton(run.dumps.at(0))["button"], "Open Accessibility Settings");
  EXPECT_EQ(statusLine(run.dumps.at(1))["label"],
            "Allowed. Press ⌃⌥⌘N or click the menu bar icon to clear notifications.");
  EXPECT_EQ(statusLine(run.dumps.at(1))["color"], "green");
  EXPECT_EQ(primaryButton(run.dumps.at(1))["button"], "Done");
  EXPECT_EQ(run.dumps.at(1)["statusItem"]["image"], "bell.slash");
}

TEST(SetupWindow, NoticesThatAccessIsLost) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, R"("choose": "Accessibility Allowed")"), DumpAt(1.5),
                                                          At(2.1, R"("trust": false)"), DumpAt(3.5)}});
  EXPECT_EQ(statusLine(run.dumps.at(0))["color"], "green");
  EXPECT_EQ(statusLine(run.dumps.at(1))["label"], "Waiting for Accessibility access…");
  EXPECT_EQ(statusLine(run.dumps.at(1))["color"], "secondary");
  EXPECT_EQ(primaryButton(run.dumps.at(1))["button"], "Open Accessibility Settings");
}

TEST(SetupWindow, NamesTheIconWithoutAShortcut) {
  for (const char* code : {"-1", "-7"}) {
    const ApplicationRun run =
        RunApplication({.timeline = {At(1, R"("choose": "Accessibility Allowed")"), DumpAt(1.5)},
                        .further = std::string(R"(, "defaults": {"HLHotKeyCode": )") + code + "}"});
    EXPECT_EQ(statusLine(run.dumps.at(0))["label"], "Allowed. Click the menu bar icon to clear notifications.");
  }
}

TEST(SetupWindow, CountsAShortcutWithTheCodeZero) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, R"("choose": "Accessibility Allowed")"), DumpAt(1.5)},
       .further = R"(, "defaults": {"HLHotKeyCode": 0, "HLHotKeyModifiers": 1048576, "HLHotKeyKeyLabel": "A"})"});
  EXPECT_EQ(statusLine(run.dumps.at(0))["label"],
            "Allowed. Press ⌘A or click the menu bar icon to clear notifications.");
}

TEST(SetupWindow, PollsOnceWhenShownTwice) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(0.4, R"("choose": "Set Up Accessibility…")"), At(0.6, R"("choose": "Set Up Accessibility…")"),
                    DumpAt(0.7), DumpAt(1.5), At(1.7, R"("terminate": true)")},
       .further = Untrusted});
  EXPECT_EQ(run.dumps.at(0)["timers"], 1);
  EXPECT_EQ(run.dumps.at(0)["windows"].size(), 1U);
  // At the launch once for itself and once for the window; once for each showing; the poll begins anew with each, so
  // that its first turn comes at 1.6.
  EXPECT_EQ(MessagesOf(run, "refreshStatusItem").size(), 5U);
}

TEST(SetupWindow, StopsPollingWhenItIsClosed) {
  const ApplicationRun byUser =
      RunApplication({.timeline = {At(1, R"("closeWindow": "Set Up Hushlet")"), DumpAt(2)}, .further = Untrusted});
  EXPECT_EQ(byUser.dumps.at(0)["timers"], 0);
  EXPECT_EQ(WindowOf(byUser.dumps.at(0), kTitle)["visible"], false);
  const ApplicationRun byButton = RunApplication(
      {.timeline = {At(1, R"("choose": "Accessibility Allowed")"), DumpAt(1.5), At(2, press("Done")), DumpAt(3)}});
  EXPECT_EQ(byButton.dumps.at(0)["timers"], 1);
  EXPECT_EQ(byButton.dumps.at(1)["timers"], 0);
  EXPECT_EQ(WindowOf(byButton.dumps.at(1), kTitle)["visible"], false);
}

TEST(SetupWindow, PollsWhenSettingsAreClosed) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, R"("choose": "Settings…")"), At(2, R"("closeWindow": "Hushlet Settings")"), DumpAt(3)},
       .further = Untrusted});
  EXPECT_EQ(run.dumps.at(0)["timers"], 1);
  EXPECT_EQ(WindowOf(run.dumps.at(0), kTitle)["visible"], true);
}

TEST(SetupWindow, PollsAfterAccessIsAllowed) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, R"("trust": true)"), DumpAt(30)}, .further = Untrusted});
  EXPECT_EQ(run.dumps.at(0)["timers"], 1);
}

TEST(SetupWindow, IsClosedByReturnOnceAllowed) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, R"("trust": true)"), At(3, R"("key": {"code": 36})"), DumpAt(4)}, .further = Untrusted});
  EXPECT_EQ(WindowOf(run.dumps.at(0), kTitle)["visible"], false);
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"), IsEmpty());
}

TEST(SetupButton, AsksTheSystemAndOpensItsPane) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, press("Open Accessibility Settings")), DumpAt(3)},
                                             .further = R"(, "trusted": false, "services": {"grantOnPrompt": true})"});
  EXPECT_THAT(MessagesOf(run, "requestAccessibility"),
              ElementsAre("requestAccessibility trusted=false pid=500 ppid=1 parentBundle=none parentName=none"));
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"),
              ElementsAre(std::string("openAccessibilitySettings opened=") + kNewPane));
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], ElementsAre(kNewPane));
  EXPECT_EQ(primaryButton(run.dumps.at(0))["button"], "Done");
}

TEST(SetupButton, FallsBackToTheSecondPane) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, press("Open Accessibility Settings")), DumpAt(1.5)},
       .further = R"(, "trusted": false, "services": {"opens": ["x-apple.systempreferences:com.apple.preference."]})"});
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"),
              ElementsAre(std::string("openAccessibilitySettings opened=") + kOldPane));
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], ElementsAre(kOldPane));
}

TEST(SetupButton, LogsWhenNoPaneOpens) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, press("Open Accessibility Settings")), DumpAt(1.5)},
                                             .further = R"(, "trusted": false, "services": {"opens": []})"});
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"), ElementsAre("openAccessibilitySettings opened=none"));
  EXPECT_EQ(statusLine(run.dumps.at(0))["label"], "Waiting for Accessibility access…");
}

// What the button says is up to a second old.
TEST(SetupButton, UsesCurrentTrust) {
  const ApplicationRun granted = RunApplication(
      {.timeline = {At(1.1, R"("trust": true)"), At(1.2, press("Open Accessibility Settings")), DumpAt(1.3)},
       .further = Untrusted});
  EXPECT_EQ(WindowOf(granted.dumps.at(0), kTitle)["visible"], false);
  EXPECT_THAT(granted.dumps.at(0)["openedAddresses"], IsEmpty());
  const ApplicationRun withdrawn =
      RunApplication({.timeline = {At(1, R"("choose": "Accessibility Allowed")"), At(1.1, R"("trust": false)"),
                                   At(1.2, press("Done")), DumpAt(1.3)}});
  EXPECT_EQ(WindowOf(withdrawn.dumps.at(0), kTitle)["visible"], true);
  EXPECT_THAT(withdrawn.dumps.at(0)["openedAddresses"], ElementsAre(kNewPane));
}

TEST(SetupWindow, KeepsARecordingWhenClosed) {
  const ApplicationRun run = RunApplication(
      {.timeline = {
           At(1, R"("choose": "Settings…")"), At(2, R"("press": "Record Shortcut", "window": "Hushlet Settings")"),
           At(3, R"("choose": "Accessibility Allowed")"), At(4, R"("closeWindow": "Set Up Hushlet")"), DumpAt(5)}});
  EXPECT_EQ(run.dumps.at(0)["recording"], true);
}

}  // namespace
