// A small menu-bar application on its host, for tests to use as a user does. What happens is printed, a line each; what
// standard input says is done, a line each.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

#include "platform/application/alerts.h"
#include "platform/application/application.h"
#include "platform/application/application_platform.h"
#include "platform/application/status_item.h"
#include "platform/application/windows.h"
#include "platform/linux/linux_host.h"
#include "tests/platform/linux/qt/qt_descriptions.h"

namespace {

void say(const std::string& line) { std::cout << line << std::endl; }

class Program {
 public:
  Program(const HLApplicationPlatform& platform, HLLinuxRunLoop& runLoop) : platform_(platform), runLoop_(runLoop) {}

  void begin() {
    HLStatusItemDescription item;
    item.toolTip = "Hushlet: click to clear notifications, right-click for options";
    item.action = [this] { click(); };
    item.menu.title = "Hushlet";
    item.menu.items = {{"dismiss", "Dismiss Notifications", "", [] { say("chosen dismiss"); }},
                       {},
                       {"accessibility", "Set Up Accessibility…", "",
                        [this] {
                          say("chosen accessibility");
                          say("answer " + std::to_string(platform_.alerts->runModal({"Title", "Message", {"A"}})));
                        }},
                       {"settings", "Settings…", ",", [] { say("chosen settings"); }},
                       {},
                       {"quit", "Quit Hushlet", "q", [this] { platform_.application->terminate(); }}};
    item.menu.needsUpdate = [this] {
      say("menu opens");
      runLoop_.postToMainQueue([] { say("menu is open"); });  // once it has the keyboard
      platform_.statusItem->setMenuItem("accessibility", "Accessibility Allowed", true);
    };
    platform_.statusItem->install(std::move(item));
    platform_.statusItem->setImage({"bell.slash", true, "Hushlet"});
    fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK);  // sources are asked though nothing has come
    (void)runLoop_.addSource({STDIN_FILENO, [this] { return read(); }});
    say("launched");
  }

 private:
  void click() {
    const std::optional<HLEvent> event = platform_.application->currentEvent();
    if (!event) return say("click without event");
    std::ostringstream line;
    line << "click type=" << event->type << " modifiers=" << std::hex << event->modifiers;
    say(line.str());
    const bool wantsMenu = event->type == HLEventRightMouseUp || (event->modifiers & HLModifierControl) != 0;
    if (!wantsMenu) return;
    platform_.statusItem->popUpMenu();
    say("menu closed");
  }

  bool read() {
    char buffer[4096];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count < 0) return errno == EAGAIN;
    if (count == 0) return false;
    std::istringstream lines(std::string(buffer, static_cast<std::size_t>(count)));
    for (std::string line; std::getline(lines, line);) obey(line);
    return true;
  }

  void obey(const std::string& line) {
    const std::string word = line.substr(0, line.find(' '));
    const std::string rest = line.size() > word.size() ? line.substr(word.size() + 1) : "";
    const std::map<std::string, std::function<void()>> commands = {
        {"title", [&] { platform_.statusItem->setTitle(rest); }},
        {"image",
         [&] {
           platform_.statusItem->setImage({rest, true, "Hushlet"});
         }},
        {"setup", [&] { showSetup(); }},
        {"record", [&] { record(); }},
        {"ask",
         [&] {
           say("answer " + std::to_string(platform_.alerts->runModal({"Title", "Message", {"A", "B"}})));
         }},
        {"rename", [&] { platform_.statusItem->setMenuItem("quit", rest, false); }},
        {"later", [&] { runLoop_.postToMainQueueAfter(0.05, [] { say("served"); }); }},
        {"quit", [&] { platform_.application->terminate(); }},
    };
    if (const auto found = commands.find(word); found != commands.end()) found->second();
  }

  void showSetup() {
    window_ = platform_.windows->makeWindow(
        SetupWindow({.primary = [] { say("primary"); }, .willClose = [] { say("closed"); }}));
    window_->fitHeight();
    window_->center();
    platform_.application->activate();
    window_->makeKeyAndOrderFront();
    say("shown");
  }

  void record() {
    monitor_ = platform_.application->addKeyMonitor([](const HLKeyEvent& key) {
      std::ostringstream line;
      line << "key code=" << key.code << " modifiers=" << std::hex << key.modifiers
           << " characters=" << key.charactersIgnoringModifiers;
      say(line.str());
    });
    say("recording");
  }

  const HLApplicationPlatform& platform_;
  HLLinuxRunLoop& runLoop_;
  std::unique_ptr<HLWindow> window_;
  std::unique_ptr<HLKeyMonitor> monitor_;
};

}  // namespace

int main(int argc, char** argv) {
  HLLinuxHost host(argc, argv);
  HLRunLoop& runLoop = host.platform().runLoop;
  const auto made = host.platform().applicationPlatform();
  if (const auto* failure = std::get_if<std::string>(&made)) {
    std::cerr << *failure << '\n';
    return 1;
  }
  const HLApplicationPlatform& platform = *std::get<const HLApplicationPlatform*>(made);
  Program program(platform, static_cast<HLLinuxRunLoop&>(runLoop));
  return platform.application->run({[&program] { program.begin(); }, [] { say("reopened"); }});
}
