// The program's own application on a simulated desktop, and its user.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/application/application.h"
#include "platform/sim/desktop/desktop.h"
#include "platform/sim/desktop/sim_run_loop.h"

struct HLSimUserInterface;

// Main thread only, but for userEvent().
class HLSimMenuBarApplication : public HLApplication {
 public:
  HLSimMenuBarApplication(HLSimDesktop& desktop, HLSimRunLoop& runLoop, HLSimUserInterface& interface)
      : desktop_(desktop), runLoop_(runLoop), interface_(interface) {}

  [[nodiscard]] int run(HLApplicationHandlers handlers) override;
  void terminate() override { runLoop_.stopEventLoop(); }
  void activate() override {}
  void setDarkAppearance() override { isDark_ = true; }
  void beep() override { ++beeps_; }
  [[nodiscard]] std::optional<HLEvent> currentEvent() override { return currentEvent_; }
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) override;

  // Queues the event, due at `now`, for the main run loop. Before the launch has finished the event waits for that.
  // With the desktop's lock held.
  void userEvent(const HLSceneUserEvent& event, HLMicroseconds now);

  // Ends the program with code 2 and one line: the scene uses something that is not there.
  void fail(const std::string& what);

  [[nodiscard]] bool isDark() const { return isDark_; }
  [[nodiscard]] int beeps() const { return beeps_; }
  [[nodiscard]] bool hasKeyMonitor() const { return !keyMonitors_.empty(); }

 private:
  class KeyMonitor;

  void perform(const HLSceneUserEvent& event);
  void click(const HLSceneClick& click);
  void choose(const std::string& item);
  void shortcut(const HLSceneShortcut& shortcut);
  void key(const HLKeyEvent& event);
  void press(const HLScenePress& press);
  void closeWindow(const std::string& title);
  void dump(const std::string& path);

  HLSimDesktop& desktop_;
  HLSimRunLoop& runLoop_;
  HLSimUserInterface& interface_;
  bool launched_ = false;
  std::vector<const HLSceneUserEvent*> waiting_;  // until the launch has finished
  std::optional<HLEvent> currentEvent_;
  std::vector<KeyMonitor*> keyMonitors_;
  bool isDark_ = false;
  int beeps_ = 0;
  int exitCode_ = 0;
};
