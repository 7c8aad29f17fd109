// The menu-bar application in a real session, used with the mouse and the keyboard.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/linux/session/desktop_session.h"
#include "tests/linux/session/screen.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kIdentifier = "com.tessaly.hushlet";

// A panel with nothing but a tray, in the upper left corner, in that color.
std::string panelConfiguration(const std::string& gray) {
  const auto property = [](const std::string& name, const std::string& type, const std::string& value) {
    return "<property name=\"" + name + "\" type=\"" + type + "\" value=\"" + value + "\"/>";
  };
  const std::string part = "<value type=\"double\" value=\"" + gray + "\"/>";
  const std::string color = part + part + part;
  return R"(<?xml version="1.0" encoding="UTF-8"?><channel name="xfce4-panel" version="1.0">)" +
         property("configver", "int", "2") +
         "<property name=\"panels\" type=\"array\"><value type=\"int\" value=\"1\"/><property name=\"panel-1\" "
         "type=\"empty\">" +
         property("position", "string", "p=6;x=0;y=0") + property("position-locked", "bool", "true") +
         property("length", "uint", "20") + property("length-adjust", "bool", "false") +
         property("size", "uint", "30") + property("background-style", "uint", "1") +
         "<property name=\"background-rgba\" type=\"array\">" + color +
         "<value type=\"double\" value=\"1.0\"/></property>"
         "<property name=\"plugin-ids\" type=\"array\"><value type=\"int\" "
         "value=\"1\"/></property></property></property>"
         "<property name=\"plugins\" type=\"empty\">" +
         "<property name=\"plugin-1\" type=\"string\" value=\"systray\">" + property("square-icons", "bool", "true") +
         property("icon-size", "int", "22") + "</property></property></channel>";
}

class MenuBar : public testing::Test {
 protected:
  void SetUp() override {
    session_ = std::make_unique<DesktopSession>(WithoutAccessibility());
    Screen screen(session_->environment());
    ASSERT_TRUE(Eventually([&screen] { return screen.isManaged(); }));
  }

  void TearDown() override {
    program_ = nullptr;
    panel_ = nullptr;
    settings_ = nullptr;
    session_ = nullptr;
    if (input_ >= 0) close(input_);
  }

  // Its standard input is a pipe that this test writes to.
  void startProgram(const std::string& toolkitPlatform = "xcb") {
    const std::string pipe = session_->directory() + "/input";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    input_ = open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    program_ = session_->start({"sh", "-c",
                                "TSAN_OPTIONS=ignore_noninstrumented_modules=1 QT_QPA_PLATFORM=" + toolkitPlatform +
                                    " exec " + HL_MENU_BAR_PROGRAM + " <" + pipe});
    waitFor("launched");
  }

  void tell(const std::string& command) const {
    const std::string line = command + "\n";
    ASSERT_EQ(write(input_, line.data(), line.size()), static_cast<ssize_t>(line.size()));
  }

  [[nodiscard]] int count(const std::string& line) const {
    int found = 0;
    const std::string output = program_->output();
    for (std::size_t at = 0; (at = output.find(line + "\n", at)) != std::string::npos; at += line.size()) ++found;
    return found;
  }

  void waitFor(const std::string& line, int times = 1) const {
    if (!Eventually([&] { return count(line) >= times; })) {
      throw std::runtime_error("\"" + line + "\" is missing in:\n" + program_->output());
    }
  }

  // A tray of the X server, of that color.
  void startXTray(const std::string& color = "0x202020") {
    panel_ = session_->start({"trayer", "--edge", "top", "--align", "left", "--widthtype", "request", "--height", "22",
                              "--transparent", "true", "--alpha", "0", "--tint", color});
  }

  // A panel that shows items from the session's bus.
  void startPanel(const std::string& gray = "0.1") {
    const std::string directory = session_->environment().at("HOME") + "/.config/xfce4/xfconf/xfce-perchannel-xml";
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/xfce4-panel.xml") << panelConfiguration(gray);
    if (settings_ == nullptr) settings_ = session_->start({HL_XFCONFD});
    panel_ = session_->start({"xfce4-panel", "--disable-wm-check"});
  }

  std::string xdotool(const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {"xdotool"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto tool = session_->start(command);
    (void)tool->wait(std::chrono::seconds(20));
    return tool->output();
  }

  // Waits until a window of that name is the active one.
  void waitForActiveWindow(const std::string& name) {
    std::string active;
    const bool came = Eventually([&] {
      active = xdotool({"getactivewindow", "getwindowname"});
      return active == name + "\n";
    });
    if (!came) throw std::runtime_error(name + " is not active, but: " + active);
  }

  // The item's own window, once a tray has taken it in.
  std::string dockedWindow() {
    std::string window;
    const bool docked = Eventually([&] {
      window = xdotool({"search", "--onlyvisible", "--classname", kIdentifier});
      window = window.substr(0, window.find('\n'));
      if (window.empty() || window.find_first_not_of("0123456789") != std::string::npos) return false;
      return xdotool({"getwindowgeometry", "--shell", window}).find("WIDTH=1\n") == std::string::npos;
    });
    if (!docked) throw std::runtime_error("no tray has the item");
    return window;
  }

  void clickDocked(const std::string& button) {
    (void)dockedWindow();
    xdotool({"mousemove", "--window", dockedWindow(), "11", "11", "click", button});
  }

  [[nodiscard]] std::string registered() {
    const auto tool =
        session_->start({"gdbus", "call", "--session", "--dest", "org.kde.StatusNotifierWatcher", "--object-path",
                         "/StatusNotifierWatcher", "--method", "org.freedesktop.DBus.Properties.Get",
                         "org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems"});
    (void)tool->wait(std::chrono::seconds(20));
    return tool->output();
  }

  void waitForPanelItem() {
    if (!Eventually([&] { return registered().find("StatusNotifierItem-") != std::string::npos; })) {
      throw std::runtime_error("no panel has the item");
    }
  }

  // The panel draws the item some time after it has heard of it.
  void clickPanel(const std::string& line) {
    const int before = count(line);
    const bool told = Eventually([&] {
      xdotool({"mousemove", "16", "15", "click", "1"});
      return count(line) > before;
    });
    if (!told) throw std::runtime_error("the panel tells of no click");
  }

  void keepPicture(const std::string& name) { session_->savePicture(std::string(HL_PICTURES) + "/" + name + ".png"); }

  std::unique_ptr<DesktopSession> session_;
  std::unique_ptr<ChildProcess> settings_;
  std::unique_ptr<ChildProcess> panel_;
  std::unique_ptr<ChildProcess> program_;
  int input_ = -1;
  int served_ = 0;
};

TEST_F(MenuBar, AClickIsToldWithItsButtonAndModifiers) {
  startXTray();
  startProgram();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
  xdotool({"keydown", "super", "mousemove", "--window", dockedWindow(), "11", "11", "click", "1", "keyup", "super"});
  waitFor("click type=2 modifiers=100000");
}

TEST_F(MenuBar, ARightClickOpensTheMenuAndReturnsWhenItIsClosed) {
  startXTray();
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

TEST_F(MenuBar, AClickWithControlOpensTheMenuTooAndItsItemsAct) {
  startXTray();
  startProgram();
  xdotool({"keydown", "ctrl", "mousemove", "--window", dockedWindow(), "11", "11", "click", "1", "keyup", "ctrl"});
  waitFor("click type=2 modifiers=40000");
  waitFor("menu is open");
  xdotool({"key", "Down", "Return"});
  waitFor("chosen dismiss");
  waitFor("menu closed");
}

TEST_F(MenuBar, TheMenuObeysItsKeysWhileItIsOpen) {
  startXTray();
  startProgram();
  clickDocked("3");
  waitFor("menu is open");
  xdotool({"key", "ctrl+comma"});
  waitFor("chosen settings");
  waitFor("menu closed");
}

TEST_F(MenuBar, ATrayThatComesLaterGetsTheItem) {
  startProgram();
  startXTray();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
}

TEST_F(MenuBar, ATrayThatIsRestartedGetsTheItemAgain) {
  startXTray();
  startProgram();
  clickDocked("1");
  waitFor("click type=2 modifiers=0");
  panel_->signal(SIGKILL);
  ASSERT_TRUE(panel_->wait(std::chrono::seconds(10)));
  startXTray();
  clickDocked("1");
  waitFor("click type=2 modifiers=0", 2);
}

// Without the X server the item goes to the panel over the bus; its clicks come from there all the same.
TEST_F(MenuBar, APanelOnTheBusTellsOfClicks) {
  startPanel();
  startProgram("offscreen");
  waitForPanelItem();
  clickPanel("click type=2 modifiers=0");
  keepPicture("panel");
}

TEST_F(MenuBar, APanelOnTheBusMayAskForTheMenu) {
  startPanel();
  startProgram("offscreen");
  waitForPanelItem();
  const std::string name = "org.kde.StatusNotifierItem-" + std::to_string(program_->pid()) + "-1";
  const auto tool =
      session_->start({"gdbus", "call", "--session", "--dest", name, "--object-path", "/StatusNotifierItem", "--method",
                       "org.kde.StatusNotifierItem.ContextMenu", "20", "20"});
  EXPECT_EQ(tool->wait(std::chrono::seconds(10)), 0) << tool->output();  // it is not kept waiting by the menu
  waitFor("click type=4 modifiers=0");
  waitFor("menu opens");
}

TEST_F(MenuBar, APanelThatComesLaterOrIsRestartedGetsTheItem) {
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

TEST_F(MenuBar, APanelWithATrayOfEitherKindShowsItOnce) {
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

TEST_F(MenuBar, ASecondStartReopensTheFirstAndEnds) {
  startProgram();
  const auto second = session_->start({HL_MENU_BAR_PROGRAM});
  EXPECT_EQ(second->wait(std::chrono::seconds(20)), 0) << second->output();
  EXPECT_THAT(second->output(), Not(HasSubstr("launched")));
  waitFor("reopened");
}

TEST_F(MenuBar, ItEndsWellWhenItIsTold) {
  startProgram();
  tell("quit");
  EXPECT_EQ(program_->wait(std::chrono::seconds(20)), 0) << program_->output();
}

TEST_F(MenuBar, KeysAreToldByPositionAndByCharacter) {
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

TEST_F(MenuBar, AWindowComesUpInFrontAndIsClosedByItsFrame) {
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

TEST_F(MenuBar, AnAlertHoldsItUpAndTheRunLoopGoesOn) {
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

TEST_F(MenuBar, ItsItemIsKeptAsAPictureOnLightAndDarkTrays) {
  startProgram();
  for (const auto& [name, color] : {std::pair("dark", "0x202020"), std::pair("light", "0xf0f0f0")}) {
    startXTray(color);
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

TEST(MenuBarWithoutADesktop, ItSaysSoInOneLineAndEnds) {
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
