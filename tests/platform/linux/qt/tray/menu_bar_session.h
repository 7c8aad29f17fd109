// The menu-bar program in a session of its own, its tray, and what a person does with them.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/platform/linux/support/desktop_session.h"
#include "tests/platform/linux/support/screen.h"

inline constexpr const char* kIdentifier = "com.tessaly.hushlet";

// A panel with nothing but a tray, in the upper left corner, in that color.
inline std::string panelConfiguration(const std::string& gray) {
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

  // What the bus answers, as text.
  [[nodiscard]] std::string call(const std::string& service, const std::string& path, const std::string& method,
                                 const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {"gdbus",         "call", "--session", "--dest", service,
                                        "--object-path", path,   "--method",  method};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto tool = session_->start(command);
    (void)tool->wait(std::chrono::seconds(20));
    return tool->output();
  }

  [[nodiscard]] std::string registered() {
    return call("org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get",
                {"org.kde.StatusNotifierWatcher", "RegisteredStatusNotifierItems"});
  }

  // The name under which it registers.
  [[nodiscard]] std::string itemName() const {
    return "org.kde.StatusNotifierItem-" + std::to_string(program_->pid()) + "-1";
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
