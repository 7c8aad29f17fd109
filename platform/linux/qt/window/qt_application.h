// HLApplication on Qt's event loop, which also serves the main run loop.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/application/application.h"
#include "platform/linux/session/desktop_module.h"

// Main thread only. Needs a QApplication.
class HLQtApplication : public HLApplication {
 public:
  explicit HLQtApplication(HLDesktopRequest request) : request_(std::move(request)) {}

  // Does not return once launched: it ends the process.
  [[nodiscard]] int run(HLApplicationHandlers handlers) override;
  void terminate() override;
  void activate() override;
  void setDarkAppearance() override;
  void beep() override;
  [[nodiscard]] std::optional<HLEvent> currentEvent() override { return event_; }
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) override;

  // Runs `action` with `event` as currentEvent().
  void perform(const HLEvent& event, const std::function<void()>& action);

 private:
  const HLDesktopRequest request_;
  std::optional<HLEvent> event_;
};
