#include "platform/sim/services/menu_bar_application.h"

#include <algorithm>
#include <iostream>
#include <utility>

#include "platform/sim/scene/scene_reader.h"
#include "platform/sim/services/record.h"
#include "platform/sim/services/user_interface.h"

namespace {

constexpr int kBadScene = 2;

}  // namespace

class HLSimMenuBarApplication::KeyMonitor : public HLKeyMonitor {
 public:
  KeyMonitor(HLSimMenuBarApplication& application, std::function<void(const HLKeyEvent&)> handler)
      : application_(application), handler_(std::move(handler)) {
    application_.keyMonitors_.push_back(this);
  }
  ~KeyMonitor() override { std::erase(application_.keyMonitors_, this); }

  void see(const HLKeyEvent& event) const {
    const auto handler = handler_;  // the handler may destroy the monitor
    handler(event);
  }

 private:
  HLSimMenuBarApplication& application_;
  const std::function<void(const HLKeyEvent&)> handler_;
};

int HLSimMenuBarApplication::run(HLApplicationHandlers handlers) {
  handlers.didFinishLaunching();
  {
    const HLSimLock lock(*desktop_.clock);
    launched_ = true;
    for (const HLSceneUserEvent* event : std::exchange(waiting_, {})) userEvent(*event, desktop_.clock->now());
  }
  runLoop_.runEventLoop();
  // As on a real desktop, nobody waits for threads that are still at work. On the virtual clock they do nothing more:
  // this one has the turn and keeps it.
  if (desktop_.endProcess && runLoop_.isWorking()) desktop_.endProcess(exitCode_);
  runLoop_.finishGlobalQueue();
  return exitCode_;
}

std::unique_ptr<HLKeyMonitor> HLSimMenuBarApplication::addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) {
  return std::make_unique<KeyMonitor>(*this, std::move(handler));
}

void HLSimMenuBarApplication::userEvent(const HLSceneUserEvent& event, HLMicroseconds now) {
  if (!launched_) return waiting_.push_back(&event);
  runLoop_.post(now, [this, &event] { perform(event); });
}

void HLSimMenuBarApplication::fail(const std::string& what) {
  if (exitCode_ == kBadScene) return;
  std::cerr << HLOneLine(desktop_.scene->name + ": " + what) << '\n';
  exitCode_ = kBadScene;
  runLoop_.stopEventLoop();
}

void HLSimMenuBarApplication::perform(const HLSceneUserEvent& event) {
  const HLVisitor perform = {
      [this](const HLSceneClick& it) { click(it); },
      [this](const HLSceneChoose& it) { choose(it.item); },
      [this](const HLSceneOpenMenu&) { interface_.statusItem.openMenu(); },
      [this](const HLSceneShortcut& it) { shortcut(it); },
      [this](const HLSceneHotKey& it) { interface_.hotKeys.press(it.identity); },
      [this](const HLKeyEvent& it) { key(it); },
      [this](const HLScenePress& it) { press(it); },
      [this](const HLSceneCloseWindow& it) { closeWindow(it.window); },
      [this](const HLSceneDump& it) { dump(it.path); },
      [this](const HLSceneTerminate&) { terminate(); },
  };
  std::visit(perform, event);
}

void HLSimMenuBarApplication::click(const HLSceneClick& click) {
  currentEvent_ = click.event;
  interface_.statusItem.click();
  currentEvent_ = std::nullopt;
}

void HLSimMenuBarApplication::choose(const std::string& item) {
  interface_.statusItem.openMenu();
  if (!interface_.statusItem.choose(item)) fail("timeline: the menu has no item \"" + item + "\"");
}

void HLSimMenuBarApplication::shortcut(const HLSceneShortcut& shortcut) {
  const HLSimHotKey* hotKey = interface_.hotKeys.find(shortcut.code, HLSimHotKeyModifiers(shortcut.modifiers));
  if (hotKey != nullptr) interface_.hotKeys.press(hotKey->identity);
}

void HLSimMenuBarApplication::key(const HLKeyEvent& event) {
  HLSimWindow* front = interface_.windows.key();
  if (front == nullptr) return;
  if (!keyMonitors_.empty()) return keyMonitors_.back()->see(event);
  if (event.code == HLKeyReturn) front->pressKeyButton();
}

void HLSimMenuBarApplication::press(const HLScenePress& press) {
  HLSimWindow* window = interface_.windows.visible(press.window);
  if (window == nullptr) return fail("timeline: no window \"" + press.window + "\" is open");
  if (!window->press(press.control)) {
    fail("timeline: the window \"" + press.window + "\" has no button or check box \"" + press.control + "\"");
  }
}

void HLSimMenuBarApplication::closeWindow(const std::string& title) {
  HLSimWindow* window = interface_.windows.visible(title);
  if (window == nullptr) return fail("timeline: no window \"" + title + "\" is open");
  window->close();
}

void HLSimMenuBarApplication::dump(const std::string& path) {
  std::string line;
  {
    const HLSimLock lock(*desktop_.clock);
    line = HLDumpLine(desktop_, interface_);
  }
  HLAppendRecord(path, line);
}
