// The menu-bar application in a real session, used with the mouse and the keyboard.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>

#include "tests/platform/linux/qt/tray/menu_bar_session.h"
#include "tests/support/listener.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST_F(MenuBar, ReportsClickWithButtonAndModifiers) {
  panel_ = session_->startTray();
  startProgram();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
  xdotool({"keydown", "super", "mousemove", "--window", dockedWindow(), "11", "11", "click", "1", "keyup", "super"});
  waitFor("click type=2 modifiers=100000");
}

TEST_F(MenuBar, OpensModalMenuOnRightClick) {
  panel_ = session_->startTray();
  startProgram();
  clickDocked("3");
  waitFor("click type=4 modifiers=0");
  waitFor("menu is open");
  EXPECT_EQ(count("menu closed"), 0);
  tell("later");
  waitFor("served");
  keepPicture("menu");
  xdotool({"key", "Escape"});
  waitFor("menu closed");
}

TEST_F(MenuBar, OpensWorkingMenuOnControlClick) {
  panel_ = session_->startTray();
  startProgram();
  xdotool({"keydown", "ctrl", "mousemove", "--window", dockedWindow(), "11", "11", "click", "1", "keyup", "ctrl"});
  waitFor("click type=2 modifiers=40000");
  waitFor("menu is open");
  xdotool({"key", "Down", "Return"});
  waitFor("chosen dismiss");
  waitFor("menu closed");
}

TEST_F(MenuBar, ObeysShortcutsWhileMenuIsOpen) {
  panel_ = session_->startTray();
  startProgram();
  clickDocked("3");
  waitFor("menu is open");
  xdotool({"key", "ctrl+comma"});
  waitFor("chosen settings");
  waitFor("menu closed");
}

TEST_F(MenuBar, DocksWhenTrayStartsLater) {
  startProgram();
  panel_ = session_->startTray();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
}

TEST_F(MenuBar, DocksAgainAfterTrayRestarts) {
  panel_ = session_->startTray();
  startProgram();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
  panel_->signal(SIGKILL);
  ASSERT_TRUE(panel_->wait(std::chrono::seconds(10)));
  panel_ = session_->startTray();
  clickDocked("1");
  waitFor("click type=2 modifiers=0", 2);
}

// Without the X server the item goes to the panel over the bus; its clicks come from there all the same.
TEST_F(MenuBar, ReportsClicksFromPanelOnBus) {
  startPanel();
  startProgram("offscreen");
  waitForPanelItem();
  clickPanel("click type=2 modifiers=0");
  keepPicture("panel");
}

TEST_F(MenuBar, OpensMenuWithoutBlockingThePanel) {
  startPanel();
  startProgram("offscreen");
  waitForPanelItem();
  // It is not kept waiting by the menu.
  EXPECT_EQ(call(itemName(), "/StatusNotifierItem", "org.kde.StatusNotifierItem.ContextMenu", {"20", "20"}), "()\n");
  waitFor("click type=4 modifiers=0");
  waitFor("menu opens");
}

TEST_F(MenuBar, RegistersWithLateOrRestartedPanel) {
  startProgram("offscreen");
  startPanel();
  waitForPanelItem();
  clickPanel("click type=2 modifiers=0");
  panel_->signal(SIGKILL);
  ASSERT_TRUE(panel_->wait(std::chrono::seconds(10)));
  ASSERT_TRUE(Eventually([this] { return registered().find("StatusNotifierItem-") == std::string::npos; }));
  startPanel();
  waitForPanelItem();
  clickPanel("click type=2 modifiers=0");
}

TEST_F(MenuBar, DocksOnceWithBothTrayKinds) {
  startPanel();
  startProgram();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
  EXPECT_TRUE(Eventually([this] { return registered().find("StatusNotifierItem-") == std::string::npos; }));
  clickDocked("3");
  waitFor("menu is open");
  keepPicture("panel-menu");
  xdotool({"key", "Escape"});
  waitFor("menu closed");
}

TEST_F(MenuBar, ReopensFirstInstanceOnSecondStart) {
  startProgram();
  const auto second = session_->start({HL_MENU_BAR_PROGRAM});
  EXPECT_EQ(second->wait(std::chrono::seconds(20)), 0) << second->output();
  EXPECT_THAT(second->output(), Not(HasSubstr("launched")));
  waitFor("reopened");
}

// There it is not told of clicks beside it, unless on a window of its own.
TEST_F(MenuBar, CoversWaylandScreenBehindOpenMenu) {
  const Listener compositor(session_->environment().at("XDG_RUNTIME_DIR") + "/wayland-7");
  panel_ = session_->startTray();
  startProgram("xcb WAYLAND_DISPLAY=wayland-7");
  const std::string screen = xdotool({"getdisplaygeometry", "--shell"});  // "WIDTH=...\nHEIGHT=...\n"
  const auto isCovered = [&] {
    const std::string own =
        xdotool({"search", "--onlyvisible", "--class", kIdentifier, "getwindowgeometry", "--shell", "%@"});
    return own.find(screen) != std::string::npos;
  };
  clickDocked("3");
  waitFor("menu opens");
  EXPECT_TRUE(Eventually(isCovered));
  keepPicture("menu-over-wayland");
  xdotool({"mousemove", "300", "300", "click", "1"});
  waitFor("menu closed");
  EXPECT_TRUE(Eventually([&] { return !isCovered(); }));
}

TEST_F(MenuBar, ExitsCleanlyWhenToldToQuit) {
  startProgram();
  tell("quit");
  EXPECT_EQ(program_->wait(std::chrono::seconds(20)), 0) << program_->output();
}

TEST_F(MenuBar, ReportsKeysByPositionAndCharacter) {
  startProgram();
  tell("setup");
  waitFor("shown");
  waitForActiveWindow("Set Up Hushlet");
  tell("record");
  waitFor("recording");
  xdotool({"key", "ctrl+alt+super+n"});
  waitFor("key code=45 modifiers=1c0000 characters=n");
  xdotool({"key", "shift+1"});
  waitFor("key code=18 modifiers=20000 characters=1");
  xdotool({"key", "Return"});
  waitFor("key code=36 modifiers=0 characters=\r");
  EXPECT_EQ(count("primary"), 0);
}

TEST_F(MenuBar, RaisesWindowAndClosesOnRequest) {
  startProgram();
  tell("setup");
  waitFor("shown");
  waitForActiveWindow("Set Up Hushlet");
  keepPicture("setup-window");
  xdotool({"key", "Return"});
  waitFor("primary");
  // The window manager takes its keys anew after the first that is typed, and misses one that comes meanwhile.
  EXPECT_TRUE(Eventually([this] {
    xdotool({"key", "alt+F4"});
    return count("closed") > 0;
  })) << program_->output();
}

TEST_F(MenuBar, GivesWindowsTheApplicationIcon) {
  startProgram();
  tell("setup");
  waitFor("shown");
  waitForActiveWindow("Set Up Hushlet");
  Screen screen(session_->environment());
  const std::vector<std::uint32_t> icons = screen.icons(screen.activeWindow());
  std::vector<std::uint32_t> sizes;
  for (std::size_t at = 0; at + 1 < icons.size(); at += 2 + icons[at] * icons[at + 1]) {
    const std::uint32_t size = icons[at];
    sizes.push_back(size);
    ASSERT_EQ(icons[at + 1], size);
    ASSERT_GE(icons.size(), at + 2 + size * size);
    // Below the middle of the upper edge there is nothing but the ground, in the middle the banner, far lighter than
    // it.
    EXPECT_EQ(icons[at + 2] >> 24U, 0U) << size;
    EXPECT_EQ(icons[at + 2 + size / 8 * size + size / 2] >> 24U, 0xFFU) << size;
    EXPECT_GT(icons[at + 2 + size / 2 * size + size / 2] >> 16U, 0xFF80U) << size;
  }
  EXPECT_THAT(sizes, testing::ElementsAre(16, 24, 32, 48, 64, 128));
}

TEST_F(MenuBar, KeepsRunLoopGoingDuringAlert) {
  startProgram();
  tell("ask");
  waitForActiveWindow("Hushlet");
  tell("later");
  waitFor("served");
  EXPECT_EQ(count("answer 0"), 0);
  keepPicture("alert");
  xdotool({"key", "Escape"});
  waitFor("answer 1");
}

TEST_F(MenuBar, SavesPicturesForBothTrayColors) {
  startProgram();
  for (const auto& [name, color] : {std::pair("dark", "0x202020"), std::pair("light", "0xf0f0f0")}) {
    panel_ = session_->startTray(color);
    (void)dockedWindow();
    int look = 0;
    for (const char* command : {"title 12", "title HL 5", "title "}) {
      if (look == 1) tell("image none");
      if (look == 2) tell("image exclamationmark.triangle");
      tell(command);
      tell("later");
      waitFor("served", ++served_);
      keepPicture(std::string("tray-") + name + "-" + std::to_string(look++));
    }
    panel_ = nullptr;
    tell("image bell.slash");
  }
}

TEST(MenuBarWithoutADesktop, FailsWithOneLineAboutDisplay) {
  const std::string output = std::string(testing::TempDir()) + "no-display-output";
  for (const Environment& environment :
       {Environment{{"PATH", "/usr/bin:/bin"}, {"HOME", "/nonexistent"}},
        Environment{{"PATH", "/usr/bin:/bin"}, {"HOME", "/nonexistent"}, {"DISPLAY", ":987"}},
        Environment{{"PATH", "/usr/bin:/bin"}, {"HOME", "/nonexistent"}, {"WAYLAND_DISPLAY", "wayland-987"}}}) {
    ChildProcess program({HL_MENU_BAR_PROGRAM}, environment, output);
    EXPECT_EQ(program.wait(std::chrono::seconds(20)), 1);
    EXPECT_THAT(program.output(), testing::MatchesRegex("hushlet: [^\n]*display[^\n]*\n"));
  }
}

}  // namespace
