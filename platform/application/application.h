// The application's event loop, activation and keyboard events.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/application/events.h"

struct HLApplicationHandlers {
  std::function<void()> didFinishLaunching;
  // Called when the user starts the program while it is running.
  std::function<void()> didReopen;
};

// Consumes all key presses in this application's windows. Destroying it ends that, even inside its own handler.
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

  // Runs as an application without an entry in the Dock or task bar: calls didFinishLaunching, then runs the main run
  // loop until terminate(). Returns the process's exit code, or does not return. If another instance is running, calls
  // that instance's didReopen and returns 0 without launching.
  [[nodiscard]] virtual int run(HLApplicationHandlers handlers) = 0;
  virtual void terminate() = 0;

  // Brings the application's windows to the front.
  virtual void activate() = 0;
  virtual void setDarkAppearance() = 0;
  virtual void beep() = 0;

  // Returns the event being handled; nullopt outside an event handler.
  [[nodiscard]] virtual std::optional<HLEvent> currentEvent() = 0;
  [[nodiscard]] virtual std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) = 0;
};
