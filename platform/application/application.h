// The menu-bar application as a whole: its event loop, and its standing among other programs.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/application/events.h"

struct HLApplicationHandlers {
  std::function<void()> didFinishLaunching;
  // The user has started the program again while it runs.
  std::function<void()> didReopen;
};

// Sees the key presses in this application's windows, which then go no further. Destruction ends it, from within its
// own handler too.
class HLKeyMonitor {
 public:
  HLKeyMonitor() = default;
  HLKeyMonitor(const HLKeyMonitor&) = delete;
  HLKeyMonitor& operator=(const HLKeyMonitor&) = delete;
  virtual ~HLKeyMonitor() = default;
};

// Main thread only.
class HLApplication {
 public:
  HLApplication() = default;
  HLApplication(const HLApplication&) = delete;
  HLApplication& operator=(const HLApplication&) = delete;
  virtual ~HLApplication() = default;

  // Becomes an application without a place in the Dock or task bar, calls didFinishLaunching and lives in the main run
  // loop until it is terminated. Returns the process's exit code, or does not return. A program that the user started
  // while another of its kind runs tells that one and returns 0 before launching.
  [[nodiscard]] virtual int run(HLApplicationHandlers handlers) = 0;
  virtual void terminate() = 0;

  // Brings the application before all others.
  virtual void activate() = 0;
  virtual void setDarkAppearance() = 0;
  virtual void beep() = 0;

  // The event that is being handled, if there is one.
  [[nodiscard]] virtual std::optional<HLEvent> currentEvent() = 0;
  [[nodiscard]] virtual std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) = 0;
};
