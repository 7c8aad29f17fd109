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
using testing::StartsWith;

constexpr const char* kNewPane =
    "x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension?Privacy_Accessibility";
constexpr const char* kOldPane = "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";

const std::string kPressOpen = Press("Open Accessibility Settings", SetupTitle);
const std::string kPressDone = Press("Done", SetupTitle);

void expectWaiting(const json& dump) {
  EXPECT_EQ(SetupOf(dump).status["color"], "secondary");
  EXPECT_EQ(SetupOf(dump).button["button"], "Open Accessibility Settings");
}
void expectAllowed(const json& dump) {
  EXPECT_EQ(SetupOf(dump).status["color"], "green");
  EXPECT_EQ(SetupOf(dump).button["button"], "Done");
}

TEST(SetupWindow, NoticesAccessWithinASecond) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(2.5, R"("trust": true)"), DumpAt(2.999), DumpAt(3.001)}, .further = Untrusted});
  expectWaiting(run.dumps.at(0));
  expectAllowed(run.dumps.at(1));
  EXPECT_EQ(run.dumps.at(1)["statusItem"]["image"], "bell.slash");
}

TEST(SetupWindow, NoticesThatAccessIsLost) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSetup), DumpAt(1.5), At(2.1, R"("trust": false)"), DumpAt(3.5)}});
  expectAllowed(run.dumps.at(0));
  expectWaiting(run.dumps.at(1));
}

TEST(SetupWindow, NamesTheIconWithoutAShortcut) {
  for (const char* code : {"-1", "-7"}) {
    const ApplicationRun run =
        RunApplication({.timeline = {At(1, OpenSetup), DumpAt(1.5)},
                        .further = std::string(R"(, "defaults": {"HLHotKeyCode": )") + code + "}"});
    EXPECT_THAT(SetupOf(run.dumps.at(0)).status["label"], StartsWith("Allowed. Click "));
  }
}

TEST(SetupWindow, AcceptsKeyCodeZero) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, OpenSetup), DumpAt(1.5)},
       .further = R"(, "defaults": {"HLHotKeyCode": 0, "HLHotKeyModifiers": 1048576, "HLHotKeyKeyLabel": "A"})"});
  EXPECT_THAT(SetupOf(run.dumps.at(0)).status["label"], StartsWith("Allowed. Press ⌘A or click "));
}

TEST(SetupWindow, PollsOnceWhenShownTwice) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(0.4, R"("choose": "Set Up Accessibility…")"), At(0.6, R"("choose": "Set Up Accessibility…")"),
                    DumpAt(0.7), DumpAt(1.5), At(1.7, Terminate)},
       .further = Untrusted});
  EXPECT_EQ(run.dumps.at(0)["timers"], 1);
  EXPECT_EQ(run.dumps.at(0)["windows"].size(), 1U);
  // At the launch once for itself and once for the window; once for each showing; the poll begins anew with each, so
  // that its first turn comes at 1.6.
  EXPECT_EQ(MessagesOf(run, "refreshStatusItem").size(), 5U);
}

TEST(SetupWindow, StopsPollingWhenItIsClosed) {
  const ApplicationRun byUser =
      RunApplication({.timeline = {At(1, CloseWindow(SetupTitle)), DumpAt(2)}, .further = Untrusted});
  EXPECT_EQ(byUser.dumps.at(0)["timers"], 0);
  EXPECT_EQ(WindowOf(byUser.dumps.at(0), SetupTitle)["visible"], false);
  const ApplicationRun byButton =
      RunApplication({.timeline = {At(1, OpenSetup), DumpAt(1.5), At(2, kPressDone), DumpAt(3)}});
  EXPECT_EQ(byButton.dumps.at(0)["timers"], 1);
  EXPECT_EQ(byButton.dumps.at(1)["timers"], 0);
  EXPECT_EQ(WindowOf(byButton.dumps.at(1), SetupTitle)["visible"], false);
}

TEST(SetupWindow, PollsWhenSettingsAreClosed) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, OpenSettings), At(2, CloseWindow(SettingsTitle)), DumpAt(3)}, .further = Untrusted});
  EXPECT_EQ(run.dumps.at(0)["timers"], 1);
  EXPECT_EQ(WindowOf(run.dumps.at(0), SetupTitle)["visible"], true);
}

TEST(SetupWindow, PollsAfterAccessIsAllowed) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, R"("trust": true)"), DumpAt(30)}, .further = Untrusted});
  EXPECT_EQ(run.dumps.at(0)["timers"], 1);
}

TEST(SetupWindow, IsClosedByReturnOnceAllowed) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, R"("trust": true)"), At(3, R"("key": {"code": 36})"), DumpAt(4)}, .further = Untrusted});
  EXPECT_EQ(WindowOf(run.dumps.at(0), SetupTitle)["visible"], false);
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"), IsEmpty());
}

TEST(SetupButton, RequestsAccessAndOpensThePane) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, kPressOpen), DumpAt(3)},
                                             .further = R"(, "trusted": false, "services": {"grantOnPrompt": true})"});
  EXPECT_THAT(MessagesOf(run, "requestAccessibility"),
              ElementsAre("requestAccessibility trusted=false pid=500 ppid=1 parentBundle=none parentName=none"));
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"),
              ElementsAre(std::string("openAccessibilitySettings opened=") + kNewPane));
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], ElementsAre(kNewPane));
  expectAllowed(run.dumps.at(0));
}

TEST(SetupButton, FallsBackToTheSecondPane) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kPressOpen), DumpAt(1.5)},
       .further = R"(, "trusted": false, "services": {"opens": ["x-apple.systempreferences:com.apple.preference."]})"});
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"),
              ElementsAre(std::string("openAccessibilitySettings opened=") + kOldPane));
  EXPECT_THAT(run.dumps.at(0)["openedAddresses"], ElementsAre(kOldPane));
}

TEST(SetupButton, LogsWhenNoPaneOpens) {
  const ApplicationRun run = RunApplication(
      {.timeline = {At(1, kPressOpen), DumpAt(1.5)}, .further = R"(, "trusted": false, "services": {"opens": []})"});
  EXPECT_THAT(MessagesOf(run, "openAccessibilitySettings"), ElementsAre("openAccessibilitySettings opened=none"));
  expectWaiting(run.dumps.at(0));
}

// What the button says is up to a second old.
TEST(SetupButton, UsesCurrentTrust) {
  const ApplicationRun granted = RunApplication(
      {.timeline = {At(1.1, R"("trust": true)"), At(1.2, kPressOpen), DumpAt(1.3)}, .further = Untrusted});
  EXPECT_EQ(WindowOf(granted.dumps.at(0), SetupTitle)["visible"], false);
  EXPECT_THAT(granted.dumps.at(0)["openedAddresses"], IsEmpty());
  const ApplicationRun withdrawn =
      RunApplication({.timeline = {At(1, OpenSetup), At(1.1, R"("trust": false)"), At(1.2, kPressDone), DumpAt(1.3)}});
  EXPECT_EQ(WindowOf(withdrawn.dumps.at(0), SetupTitle)["visible"], true);
  EXPECT_THAT(withdrawn.dumps.at(0)["openedAddresses"], ElementsAre(kNewPane));
}

TEST(SetupWindow, KeepsARecordingWhenClosed) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, OpenSettings), At(2, Press("Record Shortcut", SettingsTitle)),
                                   At(3, OpenSetup), At(4, CloseWindow(SetupTitle)), DumpAt(5)}});
  EXPECT_EQ(run.dumps.at(0)["recording"], true);
}

}  // namespace
