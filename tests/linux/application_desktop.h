// The menu-bar application on a real desktop with a tray, used with pointer and keyboard.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <chrono>
#include <csignal>
#include <cstdint>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/raw_tree.h"
#include "tests/linux/real_desktop.h"
#include "tests/linux/session/screen.h"
#include "tests/linux/session/shown_parts.h"

class ApplicationDesktop : public RealDesktop {
 protected:
  static constexpr std::chrono::seconds kPatience{30};  // an instrumented program on a busy machine
  static constexpr const char* kProduct = HL_PROGRAM;
  static constexpr const char* kPersonal = HL_PERSONAL_PROGRAM;
  static constexpr const char* kSettings = "Hushlet Settings";
  static constexpr const char* kSetup = "Set Up Hushlet";
  inline static const std::vector<int> kDefaultShortcut = {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_N};

  // A desktop with that server, or with none, and a tray.
  void beginDesktop(const Server* server = nullptr, const SessionSetup& setup = {}) {
    if (server != nullptr) {
      beginWith(*server, setup);
    } else {
      begin(setup);
    }
    screen_ = std::make_unique<Screen>(session_->environment());
    startTray();
  }

  void startTray() {
    tray_ = session_->start({"trayer", "--edge", "top", "--align", "left", "--widthtype", "request", "--height", "26",
                             "--transparent", "true", "--alpha", "0", "--tint", "0x2b2b2b"});
  }

  void TearDown() override {
    application_ = nullptr;
    tray_ = nullptr;
    screen_ = nullptr;
    RealDesktop::TearDown();
  }

  // Starts it and waits until its launch is over.
  void startApplication(const std::vector<std::string>& arguments = {}, const std::string& program = kProduct) {
    application_ = session_->start(commandLine(program, arguments));
    ASSERT_TRUE(Eventually([this] { return icon().has_value(); }, kPatience)) << application_->output();
  }

  static std::vector<std::string> commandLine(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
  }

  // Its icon, once the tray has taken it in.
  std::optional<ScreenWindow> icon() {
    constexpr int kLargest = 64;
    return screen_->find([](const ScreenWindow& window) {
      const bool isOurs = window.instance == "com.tessaly.hushlet" || window.instance == "com.tessaly.hushlet.personal";
      return isOurs && window.width > 1 && window.width <= kLargest && window.height > 1 && window.height <= kLargest;
    });
  }

  void clickIcon(std::uint8_t button, const std::vector<int>& heldKeys = {}) {
    std::optional<ScreenWindow> found;
    ASSERT_TRUE(Eventually([&] { return (found = icon()).has_value(); }, kPatience)) << "no tray has the icon";
    screen_->moveTo(found->x + found->width / 2, found->y + found->height / 2);
    screen_->click(button, heldKeys);
  }

  void waitForWindow(const std::string& title) {
    ASSERT_TRUE(Eventually([&] { return screen_->findTitled(title).has_value(); }, kPatience)) << title;
    // Keys go to it from then on.
    ASSERT_TRUE(Eventually(
        [&] {
          const std::optional<ScreenWindow> window = screen_->findTitled(title);
          return window && screen_->activeWindow() == window->id;
        },
        kPatience))
        << title;
  }

  void waitUntilGone(const std::string& title) {
    ASSERT_TRUE(Eventually([&] { return !screen_->findTitled(title).has_value(); }, kPatience)) << title;
  }

  // What the program has written on its windows and menus, one a line.
  std::string shownTexts() {
    std::string texts;
    for (const ShownPart& part : ShownParts(session_->environment(), application_->pid())) texts += part.name + "\n";
    return texts;
  }

  void waitForText(const std::string& text) {
    ASSERT_TRUE(
        Eventually([&] { return ("\n" + shownTexts()).find("\n" + text + "\n") != std::string::npos; }, kPatience))
        << "\"" << text << "\" is not among:\n"
        << shownTexts();
  }

  std::optional<ShownPart> findPart(const std::string& name) {
    for (const ShownPart& part : ShownParts(session_->environment(), application_->pid())) {
      if (part.name == name && part.place.width > 1) return part;
    }
    return std::nullopt;
  }

  // Clicks on the button, check box or menu item on which that is written.
  void clickPart(const std::string& name) {
    std::optional<ShownPart> part;
    ASSERT_TRUE(Eventually([&] { return (part = findPart(name)).has_value(); }, kPatience))
        << "\"" << name << "\" is not among:\n"
        << shownTexts();
    // A check box is larger than what can be clicked of it.
    const double across = part->role == HLRawRole::kCheckBox ? part->place.height / 2 : part->place.width / 2;
    screen_->moveTo(static_cast<int>(part->place.x + across), static_cast<int>(part->place.y + part->place.height / 2));
    screen_->click(Screen::kLeftButton);
  }

  // What it has logged of what the user did; of the product flavor.
  std::vector<std::string> logged() {
    std::ifstream file(session_->directory() + "/data/com.tessaly.hushlet/status.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      const std::size_t afterDate = line.find(' ');
      const std::size_t afterTime = afterDate == std::string::npos ? afterDate : line.find(' ', afterDate + 1);
      lines.push_back(afterTime == std::string::npos ? line : line.substr(afterTime + 1));
    }
    return lines;
  }

  int countLogged(const std::string& begin) {
    int count = 0;
    for (const std::string& line : logged()) count += line.find(begin) != std::string::npos ? 1 : 0;
    return count;
  }

  void waitForLogged(const std::string& begin, int times = 1) {
    ASSERT_TRUE(Eventually([&] { return countLogged(begin) >= times; }, kPatience))
        << "\"" << begin << "\" is not among:\n"
        << testing::PrintToString(logged());
  }

  // Everything has been cleared by one request, that the log tells of.
  void expectCleared(const std::vector<std::uint32_t>& ids, const Server& server, int request = 1) {
    waitForLogged("dismissNotifications outcome ", request);
    EXPECT_EQ(countLogged("dismissNotifications outcome status=success dismissed=" + std::to_string(ids.size()) +
                          " remaining=0 elapsedMs="),
              request)
        << testing::PrintToString(logged());
    expectClosed(ids, server);
    waitForTargets(0);
  }

  std::string defaultsFile() {
    std::ifstream file(session_->environment().at("HOME") + "/.config/com.tessaly.hushlet/defaults.json");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  std::unique_ptr<Screen> screen_;
  std::unique_ptr<ChildProcess> tray_;
  std::unique_ptr<ChildProcess> application_;
};
