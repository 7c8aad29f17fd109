// The windows of the menu-bar application on a real desktop, and its starts and ends.
#include <csignal>
#include <filesystem>
#include <set>

#include "tests/platform/linux/desktop/application_desktop.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

class ApplicationWindows : public ApplicationDesktop {
 protected:
  void expectPlainFrame(const std::string& title) {
    const std::optional<ScreenWindow> window = screen_->findTitled(title);
    ASSERT_TRUE(window);
    const Screen::FrameWishes wishes = screen_->frameWishes(window->id);
    EXPECT_TRUE(wishes.functions & Screen::kCloseFunction);
    EXPECT_TRUE(wishes.decorations & Screen::kTitleDecoration);
    EXPECT_FALSE(wishes.decorations & (Screen::kMinimizeDecoration | Screen::kMaximizeDecoration));
  }

  // Another start, while the first runs.
  void startAgain() {
    const std::unique_ptr<ChildProcess> second = session_->start(commandLine(kProduct));
    EXPECT_EQ(second->wait(kTimeout), 0) << second->output();
    EXPECT_EQ(second->output(), "");
  }
};

TEST_F(ApplicationWindows, RecordAndKeepTypedShortcut) {
  beginDesktopWith(kMate);
  startApplication({"--open-settings"});
  waitForWindow(SettingsTitle);
  expectPlainFrame(SettingsTitle);
  EXPECT_EQ(waitForPart(SettingsTitle).role, HLRawRole::dialog);
  (void)waitForPart("Ctrl+Alt+Super+N");
  clickPart("Record Shortcut");
  (void)waitForPart("Press the new shortcut. Escape cancels.");
  (void)waitForPart("Type Shortcut…");
  screen_->press({KEY_LEFTSHIFT, KEY_K});
  (void)waitForPart("Add Super, Alt or Ctrl, or use an F key.");
  keepPicture("refused");
  (void)waitForPart("Type Shortcut…");
  EXPECT_EQ(defaultsFile(), "");
  screen_->press({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_K});
  (void)waitForPart("Saved. Works from any app.");
  (void)waitForPart("Ctrl+Shift+K");
  (void)waitForPart("Record Shortcut");
  keepPicture("saved");
  EXPECT_THAT(defaultsFile(), HasSubstr("\"HLHotKeyCode\": 40"));
  EXPECT_THAT(defaultsFile(), HasSubstr("\"HLHotKeyModifiers\": 393216"));
  EXPECT_THAT(defaultsFile(), HasSubstr("\"HLHotKeyKeyLabel\": \"K\""));
  EXPECT_EQ(countLogged("hotKey register label=⌃⇧K status=0"), 1);

  const std::vector<std::uint32_t> first = send(2);
  waitForTargets(2);
  screen_->press(kDefaultShortcut);
  screen_->press({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_K});
  expectCleared(first, kMate);
  EXPECT_EQ(countLogged("hotKeyPressed"), 1) << "the old one is of no effect";

  application_ = nullptr;
  startApplication();
  waitForLogged("hotKey register label=⌃⇧K status=0", 2);
  const std::vector<std::uint32_t> second = send(2);
  waitForTargets(2);
  screen_->press({KEY_LEFTCTRL, KEY_LEFTSHIFT, KEY_K});
  expectCleared(second, kMate, 1);
}

TEST_F(ApplicationWindows, ShowFirstInstanceOnSecondStart) {
  beginDesktopWith(kMate);
  startApplication();
  startAgain();
  waitForWindow(SettingsTitle);
  EXPECT_EQ(countLogged("applicationDidFinishLaunching"), 1);
  // The window manager takes its keys anew after the first that is typed, and misses one that comes meanwhile.
  EXPECT_TRUE(Eventually([this] {
    screen_->press({KEY_LEFTALT, KEY_F4});
    return !screen_->findTitled(SettingsTitle);
  }));
}

TEST_F(ApplicationWindows, OpenOnSecondStartWithoutTray) {
  beginDesktop();
  tray_ = nullptr;
  application_ = session_->start(commandLine(kProduct));
  waitForLogged("refreshStatusItem ");
  startAgain();
  waitForWindow(SettingsTitle);
}

TEST_F(ApplicationWindows, OpenAtFirstStartWithoutTray) {
  beginDesktop();
  tray_ = nullptr;
  application_ = session_->start(commandLine(kProduct));
  waitForWindow(SettingsTitle);
  EXPECT_THAT(defaultsFile(), HasSubstr("\"HLWelcomedWithoutIcon\": true"));
}

constexpr const char* kNoServer = "Hushlet finds no program that shows notifications.";

TEST_F(ApplicationWindows, ExplainFailedDismissalWithoutTray) {
  beginDesktop();
  tray_ = nullptr;
  storeDefaults(R"({"HLWelcomedWithoutIcon": true})");
  application_ = session_->start(commandLine(kProduct));
  waitForLogged("hotKey register ");
  waitForLogged("refreshStatusItem ");
  screen_->press(kDefaultShortcut);
  waitForWindow(SettingsTitle);
  (void)waitForPart(kNoServer);
  keepPicture("failed");
  EXPECT_EQ(countLogged(std::string("dismissNotifications unfinished reason=") + kNoServer), 1);
}

TEST_F(ApplicationWindows, StayClosedWhileTheIconExplains) {
  beginDesktop();
  startApplication();
  clickIcon(Screen::kLeftButton);
  waitForLogged(std::string("dismissNotifications unfinished reason=") + kNoServer);
  const ScreenWindow item = icon();
  screen_->moveTo(item.x + 200, item.y + 200);
  screen_->moveTo(item.x + item.width / 2, item.y + item.height / 2);
  const auto hasToolTip = [&] {
    return ownWindow([&item](const ScreenWindow& window) { return window.width > 4 * item.width; }).has_value();
  };
  require(hasToolTip, [] { return "no tool tip appears"; });
  keepPicture("warning");
  EXPECT_FALSE(screen_->findTitled(SettingsTitle));
}

TEST_F(ApplicationWindows, CloseBannersByUserRules) {
  beginDesktopWith(kMate);
  storeDefaults(R"({"HLAutoCloseRules": ["*|number 2", "a mistake"]})");
  startApplication({"--open-settings"});
  waitForWindow(SettingsTitle);
  const std::string mistake = R"(Rule 2 is ignored: "a mistake" is not "APPLICATION|PHRASE".)";
  (void)waitForPart(mistake);
  EXPECT_EQ(countLogged("autoClose mistake=" + mistake), 1);
  clickPart("Close Banners by Your Own Rules");
  waitForLogged("autoClose want=on");
  waitForLogged("auto-close watching ");
  keepPicture("rules");
  const std::vector<std::uint32_t> ids = send(3);
  ASSERT_TRUE(sender_->waitUntilClosed({ids[1]}, kTimeout));
  waitForTargets(2);
  EXPECT_EQ(sender_->closed(), std::set<std::uint32_t>{ids[1]});
}

class TrialButton : public ApplicationWindows, public testing::WithParamInterface<Server> {};

TEST_P(TrialButton, ClearsItsOwnNotificationOnly) {
  beginDesktopWith(GetParam());
  const std::vector<std::uint32_t> others = send(3);
  waitForTargets(3);
  startApplication({"--open-settings"});
  waitForWindow(SettingsTitle);
  clickPart("Try It");
  waitForLogged("trial outcome=");
  EXPECT_EQ(countLogged("trial outcome=Works here"), 1) << testing::PrintToString(logged());
  (void)waitForPart("Works here");
  keepPicture("works");
  EXPECT_EQ(targets(), 3);
  const std::set<std::uint32_t> closed = sender_->closed();
  EXPECT_EQ(closed.size(), 1U) << "its own";
  for (const std::uint32_t other : others) EXPECT_EQ(closed.count(other), 0U);
  EXPECT_TRUE(sender_->invoked().empty());
}

INSTANTIATE_TEST_SUITE_P(Servers, TrialButton, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

TEST_F(ApplicationWindows, RestoreIconInRestartedPanel) {
  beginDesktopWith(kMate);
  startApplication();
  tray_->signal(SIGKILL);
  ASSERT_TRUE(tray_->wait(kTimeout));
  tray_ = session_->startTray();
  const std::vector<std::uint32_t> ids = send(2);
  waitForTargets(2);
  clickIcon(Screen::kLeftButton);
  expectCleared(ids, kMate);
}

TEST_F(ApplicationWindows, ItIsQuitByItsMenu) {
  beginDesktop();
  startApplication();
  (void)openMenu(Screen::kLeftButton, {KEY_LEFTCTRL});
  EXPECT_EQ(countLogged("handleClick type=2 modifiers=262144"), 1);
  // A menu takes keys a moment after it is shown.
  (void)Eventually(
      [this] {
        screen_->press({KEY_UP});
        screen_->press({KEY_ENTER});
        return application_->wait(std::chrono::milliseconds(300)).has_value();
      },
      kTimeout);
  EXPECT_EQ(application_->wait(kTimeout), 0) << application_->output();
  EXPECT_EQ(application_->output(), "");
}

TEST_F(ApplicationWindows, CloseAndQuitByKeyboard) {
  beginDesktop();
  startApplication({"--open-settings"});
  waitForWindow(SettingsTitle);
  screen_->press({KEY_ESC});
  waitUntilGone(SettingsTitle);
  startAgain();
  waitForWindow(SettingsTitle);
  screen_->press({KEY_LEFTCTRL, KEY_W});
  waitUntilGone(SettingsTitle);
  startAgain();
  waitForWindow(SettingsTitle);
  screen_->press({KEY_LEFTCTRL, KEY_Q});
  EXPECT_EQ(application_->wait(kTimeout), 0) << application_->output();
}

TEST_F(ApplicationWindows, RestoreNoteAfterCanceledRecording) {
  beginDesktop();
  startApplication({"--open-settings"});
  waitForWindow(SettingsTitle);
  const std::string note = "Works from any app. Needs at least one of Super, Alt or Ctrl, or an F key.";
  (void)waitForPart(note);
  clickPart("Record Shortcut");
  (void)waitForPart("Press the new shortcut. Escape cancels.");
  screen_->press({KEY_ESC});
  (void)waitForPart(note);
  EXPECT_TRUE(screen_->findTitled(SettingsTitle)) << "Escape ends the recording only";
}

TEST_F(ApplicationWindows, FailWithOneLineWithoutDisplay) {
  begin();
  Environment without = session_->environment();
  without.erase("DISPLAY");
  ChildProcess program({kProduct}, without, session_->directory() + "/without-display");
  EXPECT_EQ(program.wait(kTimeout), 1);
  EXPECT_THAT(program.output(), MatchesRegex("hushlet: [^\n]+\n"));
}

class ApplicationWindowsInMode : public ApplicationWindows, public testing::WithParamInterface<bool> {};

TEST_P(ApplicationWindowsInMode, ArePhotographed) {
  const bool dark = GetParam();
  beginDesktop();
  const std::string directory = session_->directory() + "/snapshots";
  std::filesystem::create_directory(directory);
  std::vector<std::string> arguments = {"--open-settings", "--snapshot-windows", directory};
  if (dark) arguments.insert(arguments.begin(), "--appearance-dark");
  startApplication(arguments);
  waitForLogged("snapshot window=Hushlet Settings size=420x346 wrote=1");
  keepPicture(dark ? "dark" : "light");
  std::vector<std::string> names;
  for (const auto& file : std::filesystem::directory_iterator(directory)) names.push_back(file.path().filename());
  EXPECT_THAT(names, ElementsAre("00-Hushlet Settings.png"));
  // How light it is, of 255.
  const auto measure = session_->start(
      {"convert", directory + "/00-Hushlet Settings.png", "-format", "%wx%h %[fx:int(255*mean)]", "info:"});
  ASSERT_EQ(measure->wait(kTimeout), 0) << measure->output();
  int width = 0;
  int height = 0;
  int lightness = 0;
  ASSERT_EQ(std::sscanf(measure->output().c_str(), "%dx%d %d", &width, &height, &lightness), 3);
  EXPECT_EQ(width, 420);
  EXPECT_EQ(height, 346);
  EXPECT_EQ(lightness < 128, dark) << lightness;
}

INSTANTIATE_TEST_SUITE_P(Real, ApplicationWindowsInMode, testing::Bool(),
                         [](const auto& mode) { return mode.param ? "dark" : "light"; });

// Its bus is there and accessibility is off, as on most desktops.
class ApplicationSetup : public ApplicationWindows, public testing::WithParamInterface<Server> {
 protected:
  bool isAccessibilityEnabled() {
    const auto tool =
        session_->start({"busctl", "--address=" + session_->environment().at("DBUS_SESSION_BUS_ADDRESS"),
                         "get-property", "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Status", "IsEnabled"});
    EXPECT_EQ(tool->wait(kTimeout), 0) << tool->output();
    return tool->output() == "b true\n";
  }

  // As a session would that knows nothing of accessibility yet.
  void startServer(const std::string& command) {
    server_ = session_->start({"env", "--unset=QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "--unset=GTK_MODULES", command});
    require([this] { return session_->serverPid() == server_->pid(); }, [this] { return server_->output(); });
  }
};

TEST_P(ApplicationSetup, LeadsFromStartToClearedScreen) {
  beginDesktop();
  session_->setAccessibilityEnabled(false);
  startServer(GetParam().command);
  startApplication();
  waitForWindow(SetupTitle);
  expectPlainFrame(SetupTitle);
  (void)waitForPart("Waiting for Accessibility access…");
  waitForLogged("refreshStatusItem available=false visible=true");
  keepPicture("waiting");
  EXPECT_FALSE(isAccessibilityEnabled()) << "nobody has asked for it yet";

  clickPart("Switch On Accessibility");
  (void)waitForPart("Done");
  (void)waitForPart("Allowed. Press Ctrl+Alt+Super+N or click the tray icon to clear notifications.");
  EXPECT_TRUE(isAccessibilityEnabled());
  waitForLogged("refreshStatusItem available=true visible=true");
  EXPECT_EQ(countLogged("requestAccessibility trusted=true "), 1);
  keepPicture("allowed");
  screen_->press({KEY_ENTER});
  waitUntilGone(SetupTitle);

  const std::vector<std::uint32_t> ids = send(3);
  waitForTargets(3);
  clickIcon(Screen::kLeftButton);
  expectCleared(ids, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Real, ApplicationSetup, testing::Values(kMate, kLxqt),
                         [](const auto& server) { return server.param.name; });

}  // namespace
