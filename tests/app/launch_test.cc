// The launch, the status item, its clicks and its menu.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/app/application_run.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/temporary_directory.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

json accessItem(const json& dump) { return dump["menu"].at(2); }

TEST(Launch, LogsStepsInOrder) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, Terminate)}});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.log,
              ElementsAre("applicationDidFinishLaunching bundle=/Applications/Hushlet.app "
                          "executable=/Applications/Hushlet.app/Contents/MacOS/Hushlet trusted=true "
                          "daemonReachable=false flavor=product pid=500 ppid=1 parentBundle=none parentName=none",
                          "hotKey register label=⌃⌥⌘N status=0", "refreshStatusItem available=true visible=true"));
}

TEST(Launch, SetsNoShortcutInPersonalFlavor) {
  const ApplicationRun run = RunApplication({.isProduct = false, .timeline = {DumpAt(0)}});
  EXPECT_THAT(run.log, testing::IsSupersetOf(std::vector<std::string>{"hotKey none"}));
  EXPECT_THAT(MessagesOf(run, "applicationDidFinishLaunching"), testing::Contains(HasSubstr(" flavor=personal ")));
  EXPECT_EQ(run.dumps.at(0)["hotKey"], nullptr);
}

TEST(Launch, WritesMissingPathsAsEmpty) {
  const ApplicationRun run = RunApplication({.bareBundle = ""});
  EXPECT_THAT(run.log.at(0), HasSubstr("bundle= executable= trusted=true"));
}

TEST(Launch, OpensSetupWithoutTrust) {
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}, .further = Untrusted});
  EXPECT_EQ(WindowOf(run.dumps.at(0), SetupTitle)["visible"], true);
  EXPECT_EQ(run.dumps.at(0)["statusItem"]["image"], "exclamationmark.triangle");
}

TEST(Launch, NeverOpensSetupInPersonalFlavor) {
  const ApplicationRun run = RunApplication({.isProduct = false, .timeline = {DumpAt(0)}, .further = Untrusted});
  EXPECT_THAT(run.dumps.at(0)["windows"], IsEmpty());
  EXPECT_EQ(run.dumps.at(0)["statusItem"]["title"], "HL!");
}

TEST(Launch, OpensNoWindowWithTrust) {
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}});
  EXPECT_THAT(run.dumps.at(0)["windows"], IsEmpty());
}

TEST(LaunchSwitches, ChooseAppearanceAndSettings) {
  const ApplicationRun plain = RunApplication({.timeline = {DumpAt(0)}});
  EXPECT_EQ(plain.dumps.at(0)["appearance"], "system");
  const ApplicationRun run = RunApplication({.timeline = {DumpAt(0)}}, {"--open-settings", "--appearance-dark"});
  EXPECT_EQ(run.dumps.at(0)["appearance"], "dark");
  EXPECT_EQ(WindowOf(run.dumps.at(0), SettingsTitle)["visible"], true);
}

TEST(LaunchSwitches, SnapshotVisibleWindowsAfterDelay) {
  const TemporaryDirectory pictures;
  const ApplicationRun run = RunApplication({.timeline = {At(1.49, OpenSettings), At(1.499, CloseWindow(SetupTitle)),
                                                          At(1.501, R"("choose": "Set Up Accessibility…")")},
                                             .further = Untrusted},
                                            {"--snapshot-windows", pictures.path()});
  EXPECT_THAT(MessagesOf(run, "snapshot"), ElementsAre("snapshot window=Hushlet Settings size=420x280 wrote=1"));
  EXPECT_THAT(FileContent(pictures.path() + "/00-Hushlet Settings.png"), testing::StartsWith("\x89PNG\r\n\x1a\n"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(pictures.path()), {}), 1);
}

TEST(LaunchSwitches, NumberSnapshotsInWindowOrder) {
  const TemporaryDirectory pictures;
  const ApplicationRun run =
      RunApplication({.further = Untrusted}, {"--open-settings", "--snapshot-windows", pictures.path()});
  EXPECT_EQ(MessagesOf(run, "snapshot").size(), 2U);
  EXPECT_TRUE(std::filesystem::exists(pictures.path() + "/00-Set Up Hushlet.png"));
  EXPECT_TRUE(std::filesystem::exists(pictures.path() + "/01-Hushlet Settings.png"));
}

TEST(LaunchSwitches, CreateNoMissingSnapshotDirectory) {
  const TemporaryDirectory home;
  const ApplicationRun run = RunApplication({}, {"--open-settings", "--snapshot-windows", home.path() + "/none"});
  EXPECT_THAT(MessagesOf(run, "snapshot"), ElementsAre("snapshot window=Hushlet Settings size=420x280 wrote=0"));
  EXPECT_FALSE(std::filesystem::exists(home.path() + "/none"));
}

TEST(LaunchSwitches, IgnoreSnapshotsWithoutADirectory) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(3, Terminate)}}, {"--open-settings", "--snapshot-windows"});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(MessagesOf(run, "snapshot"), IsEmpty());
}

TEST(Menu, ShowsAccessAtEachOpening) {
  const ApplicationRun run =
      RunApplication({.isProduct = false,
                      .timeline = {At(1, R"("openMenu": true)"), DumpAt(1.1), At(2, R"("trust": true)"), DumpAt(2.1),
                                   At(3, R"("openMenu": true)"), DumpAt(3.1)},
                      .further = Untrusted});
  const auto item = [&run](std::size_t dump) { return accessItem(run.dumps.at(dump)); };
  EXPECT_EQ(item(0)["title"], "Set Up Accessibility…");
  EXPECT_EQ(item(0)["state"], "off");
  EXPECT_EQ(item(1)["title"], "Set Up Accessibility…");
  EXPECT_EQ(item(2)["title"], "Accessibility Allowed");
  EXPECT_EQ(item(2)["state"], "on");
}

TEST(Menu, OpensSetupWithAccessToo) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, OpenSetup), DumpAt(1.1), At(2, Terminate)}});
  EXPECT_EQ(WindowOf(run.dumps.at(0), SetupTitle)["visible"], true);
}

TEST(Menu, QuitsTheApplication) {
  const ApplicationRun run = RunApplication({.timeline = {At(1, R"("choose": "Quit Hushlet")"), DumpAt(2)}});
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_THAT(run.dumps, IsEmpty());
}

TEST(Menu, PrintsTheSelfCheck) {
  const ApplicationRun run = RunApplication({.isProduct = false,
                                             .timeline = {At(1, R"("choose": "Run Self-Check")")},
                                             .windows = BannerWindow({Banner("a", "Mail, One")})});
  EXPECT_EQ(run.out,
            "trusted=true notificationCenterPid=400 targets=1 pid=500 ppid=1 parentBundle=none parentName=none\n");
}

struct Click {
  const char* event;
  std::int64_t type;
  std::uint64_t modifiers;
  bool opensMenu;
};

TEST(Clicks, DismissUnlessRightOrWithControl) {
  const std::vector<Click> clicks = {
      {R"("click": "left")", 2, 0, false},
      {R"("click": "right")", 4, 0, true},
      {R"("click": "right", "modifiers": ["control"])", 4, 0x40000, true},
      {R"("click": "right", "modifiers": ["option"])", 4, 0x80000, true},
      {R"("click": "left", "modifiers": ["control"])", 2, 0x40000, true},
      {R"("click": "left", "modifiers": ["control", "command", "shift"])", 2, 0x160000, true},
      {R"("click": "left", "modifiers": ["command"])", 2, 0x100000, false},
      {R"("click": "left", "modifiers": ["option"])", 2, 0x80000, false},
      {R"("click": "left", "modifiers": ["shift", "capsLock", "function"])", 2, 0x830000, false},
      {R"("click": "none")", 0, 0, false}};
  for (const Click& click : clicks) {
    // The retitled item shows that the menu was opened.
    const ApplicationRun run = RunApplication({.timeline = {At(1, click.event), DumpAt(20), At(21, Terminate)}});
    EXPECT_THAT(MessagesOf(run, "handleClick"), ElementsAre("handleClick type=" + std::to_string(click.type) +
                                                            " modifiers=" + std::to_string(click.modifiers)));
    EXPECT_EQ(MessagesOf(run, "dismissNotifications started").empty(), click.opensMenu) << click.event;
    EXPECT_EQ(accessItem(run.dumps.at(0))["title"], click.opensMenu ? "Accessibility Allowed" : "Set Up Accessibility…")
        << click.event;
  }
}

// The application calls itself so wherever its name stands.
void expectName(const json& dump, const std::string& name) {
  EXPECT_EQ(dump["statusItem"]["toolTip"], name + ": click to clear notifications, right-click for options");
  EXPECT_EQ(dump["statusItem"]["imageDescription"], name);
  EXPECT_EQ(dump["menu"].back()["title"], "Quit " + name);
  EXPECT_EQ(dump["windows"][0]["title"], "Set Up " + name);
  EXPECT_EQ(dump["windows"][1]["title"], name + " Settings");
  const std::vector<std::string> texts = ControlsOf(dump["windows"][0]);
  EXPECT_THAT(texts.at(1), testing::StartsWith("label " + name + " clears notification banners"));
  EXPECT_THAT(texts.at(2), HasSubstr("Turn on " + name + " in the list."));
  EXPECT_THAT(texts.at(3), HasSubstr("Select " + name + " in the list,"));
}

TEST(DisplayName, ComesFromTheBundle) {
  const ApplicationRun run = RunApplication({.bareBundle = R"(, "CFBundleDisplayName": "Quiet")",
                                             .timeline = {At(1, OpenSettings), DumpAt(2)},
                                             .further = Untrusted});
  expectName(run.dumps.at(0), "Quiet");
}

TEST(DisplayName, DefaultsToHushlet) {
  for (const char* name : {"", R"(, "CFBundleDisplayName": "")", R"(, "CFBundleDisplayName": 7)"}) {
    const ApplicationRun run =
        RunApplication({.bareBundle = name, .timeline = {At(1, OpenSettings), DumpAt(2)}, .further = Untrusted});
    expectName(run.dumps.at(0), "Hushlet");
  }
}

constexpr const char* kAutoClose = R"(, "defaults": {"HLAutoCloseAutomationBanners": true})";

TEST(Relaunch, MovesTheAutoCloserAlong) {
  const ApplicationRun run = RunApplication(
      {.timeline =
           {At(1, R"("launch": {"pid": 500, "bundleIdentifier": "com.apple.mail", "name": "Mail"})"),
            At(2, R"("quit": 400)"),
            At(3, R"("launch": {"pid": 401, "bundleIdentifier": "com.apple.notificationcenterui", "windows": []})"),
            DumpAt(4)},
       .further = kAutoClose});
  EXPECT_THAT(MessagesOf(run, "auto-close"),
              ElementsAre("auto-close watching pid=400 register=0", "auto-close watching pid=401 register=0"));
  EXPECT_EQ(run.dumps.at(0)["observers"].size(), 1U);
  EXPECT_EQ(run.dumps.at(0)["observers"][0]["pid"], 401);
}

TEST(Relaunch, IgnoresOtherApplications) {
  const ApplicationRun run =
      RunApplication({.timeline = {At(1, R"("launch": {"pid": 501, "bundleIdentifier": "com.apple.mail"})"),
                                   At(2, R"("launch": {"pid": 502})"), DumpAt(3)},
                      .further = kAutoClose,
                      .hasNotificationCenter = false});
  EXPECT_THAT(MessagesOf(run, "auto-close"), ElementsAre("auto-close start failed nc=missing"));
}

}  // namespace
