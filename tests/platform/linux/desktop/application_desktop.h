// The menu-bar application on a real desktop with a tray, used with pointer and keyboard.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/atspi/raw_tree.h"
#include "tests/platform/linux/desktop/real_desktop.h"
#include "tests/platform/linux/support/screen.h"
#include "tests/platform/linux/support/shown_parts.h"
#include "tests/support/window_titles.h"

// What it waits for in vain ends the test.
class ApplicationDesktop : public RealDesktop {
 protected:
  static constexpr std::chrono::seconds kTimeout{30};  // for an instrumented program on a busy machine
  static constexpr const char* kProduct = HL_PROGRAM;
  static constexpr const char* kPersonal = HL_PERSONAL_PROGRAM;
  inline static const std::vector<int> kDefaultShortcut = {KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_N};

  static void require(const std::function<bool()>& condition, const std::function<std::string()>& otherwise) {
    if (!Eventually(condition, kTimeout)) throw std::runtime_error(otherwise());
  }

  void beginDesktop(const SessionSetup& setup = {}) {
    begin(setup);
    screen_ = std::make_unique<Screen>(session_->environment());
    sender_ = std::make_unique<NotificationSender>(session_->environment());
    require([this] { return screen_->isManaged(); }, [] { return "no window manager"; });
    tray_ = session_->startTray();
  }

  void beginDesktopWith(const Server& server) {
    beginDesktop();
    server_ = session_->startServer(server.command);
  }

  void TearDown() override {
    application_ = nullptr;
    tray_ = nullptr;
    screen_ = nullptr;
    RealDesktop::TearDown();
  }

  // Starts it and waits until the tray has its icon.
  void startApplication(std::vector<std::string> arguments = {}, const std::string& program = kProduct) {
    application_ = session_->start(commandLine(program, std::move(arguments)));
    (void)icon();
  }

  // A thread sanitizer sees only half of what the toolkit's own threads do, and is told so.
  static std::vector<std::string> commandLine(const std::string& program, std::vector<std::string> arguments = {}) {
    arguments.insert(arguments.begin(), {"env", "TSAN_OPTIONS=ignore_noninstrumented_modules=1", program});
    return arguments;
  }

  // Its windows and menus that fit, its icon and those without a title among them.
  std::optional<ScreenWindow> ownWindow(const std::function<bool(const ScreenWindow&)>& fits) {
    return screen_->find([&fits](const ScreenWindow& window) {
      const bool isOwn = window.instance == "hushlet" || window.instance.starts_with("com.tessaly.hushlet");
      return isOwn && fits(window);
    });
  }

  // Once it has come to rest in a tray: seen twice at the same place.
  ScreenWindow icon() {
    constexpr int kLargest = 64;
    std::optional<ScreenWindow> found;
    const auto rests = [&] {
      const std::optional<ScreenWindow> before = found;
      found = ownWindow([](const ScreenWindow& window) {
        return std::min(window.width, window.height) > 1 && std::max(window.width, window.height) <= kLargest;
      });
      return found && before && before->x == found->x && before->y == found->y && before->width == found->width;
    };
    require(rests, [this] { return "no tray has the icon: " + application_->output(); });
    return *found;
  }

  void clickIcon(std::uint8_t button, const std::vector<int>& heldKeys = {}) {
    const ScreenWindow window = icon();
    screen_->moveTo(window.x + window.width / 2, window.y + window.height / 2);
    screen_->click(button, heldKeys);
  }

  // Below the icon.
  ScreenWindow openMenu(std::uint8_t button = Screen::kRightButton, const std::vector<int>& heldKeys = {}) {
    const ScreenWindow above = icon();
    clickIcon(button, heldKeys);
    std::optional<ScreenWindow> menu;
    const auto isThere = [&] {
      menu = ownWindow([&above](const ScreenWindow& window) {
        return window.y >= above.y + above.height && window.width > above.width;
      });
      return menu.has_value();
    };
    require(isThere, [] { return "no menu opens"; });
    return *menu;
  }

  // Shown, and the one that gets the keys.
  void waitForWindow(const std::string& title) {
    const auto isActive = [&] {
      const std::optional<ScreenWindow> window = screen_->findTitled(title);
      return window && screen_->activeWindow() == window->id;
    };
    require(isActive, [&] { return "no window \"" + title + "\" gets the keys"; });
  }

  void waitUntilGone(const std::string& title) {
    require([&] { return !screen_->findTitled(title); }, [&] { return "\"" + title + "\" stays"; });
  }

  std::optional<ShownPart> findPart(const std::string& name) {
    for (const ShownPart& part : ShownParts(session_->environment(), application_->pid())) {
      if (part.name == name) return part;
    }
    return std::nullopt;
  }

  // What is written in the program's windows.
  std::string shownTexts() {
    std::string texts;
    for (const ShownPart& part : ShownParts(session_->environment(), application_->pid())) texts += part.name + "\n";
    return texts;
  }

  ShownPart waitForPart(const std::string& name) {
    std::optional<ShownPart> part;
    require([&] { return (part = findPart(name)).has_value(); },
            [&] { return "\"" + name + "\" is not among:\n" + shownTexts(); });
    return *part;
  }

  // Clicks on the button or check box that says so.
  void clickPart(const std::string& name) {
    const ShownPart part = waitForPart(name);
    // A check box may be wider than what can be clicked of it.
    const double across = part.role == HLRawRole::checkBox ? part.place.height : part.place.width;
    screen_->moveTo(static_cast<int>(part.place.x + across / 2),
                    static_cast<int>(part.place.y + part.place.height / 2));
    screen_->click(Screen::kLeftButton);
  }

  // The lines of the product flavor's status log, without the date, the time and the zone.
  std::vector<std::string> logged() {
    std::ifstream file(session_->directory() + "/data/com.tessaly.hushlet/status.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
      const std::size_t zone = line.find(" +0000 ");
      lines.push_back(zone == std::string::npos ? line : line.substr(zone + 7));
    }
    return lines;
  }

  int countLogged(const std::string& begin) {
    const std::vector<std::string> lines = logged();
    return static_cast<int>(
        std::count_if(lines.begin(), lines.end(), [&](const std::string& line) { return line.starts_with(begin); }));
  }

  void waitForLogged(const std::string& begin, int times = 1) {
    require([&] { return countLogged(begin) >= times; },
            [&] { return "\"" + begin + "\" is not among " + testing::PrintToString(logged()); });
  }

  // Of the one dismissal that has been asked for since then.
  void expectCleared(const std::vector<std::uint32_t>& ids, const Server& server, int before = 0) {
    waitForLogged("dismissNotifications outcome ", before + 1);
    const std::vector<std::string> lines = logged();
    const std::string last = *std::find_if(lines.rbegin(), lines.rend(), [](const std::string& line) {
      return line.starts_with("dismissNotifications outcome ");
    });
    EXPECT_THAT(last, testing::MatchesRegex("dismissNotifications outcome status=success dismissed=" +
                                            std::to_string(ids.size()) + " remaining=0 elapsedMs=[0-9]+"));
    expectClosed(ids, server);
    EXPECT_EQ(targets(), 0);
  }

  std::string defaultsPath() {
    return session_->environment().at("HOME") + "/.config/com.tessaly.hushlet/defaults.json";
  }

  // Ends the application, so that its next start reads the preferences.
  void storeDefaults(const std::string& json) {
    application_ = nullptr;
    std::filesystem::create_directories(std::filesystem::path(defaultsPath()).parent_path());
    std::ofstream(defaultsPath()) << json;
  }

  std::string defaultsFile() {
    std::ifstream file(defaultsPath());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  std::unique_ptr<Screen> screen_;
  std::unique_ptr<ChildProcess> tray_;
  std::unique_ptr<ChildProcess> application_;
};
