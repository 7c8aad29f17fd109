// The application on the toolkit's event loop, which serves the main run loop too.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/application/application.h"
#include "platform/linux/session/desktop_module.h"

// Main thread only. There is a QApplication while it lives.
class HLQtApplication : public HLApplication {
 public:
  explicit HLQtApplication(HLDesktopRequest request) : request_(std::move(request)) {}

  // Does not return after launching.
  [[nodiscard]] int run(HLApplicationHandlers handlers) override;
  void terminate() override;
  void activate() override;
  void setDarkAppearance() override;
  void beep() override;
  [[nodiscard]] std::optional<HLEvent> currentEvent() override { return event_; }
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) override;

  // Runs the action with this as the event that is being handled.
  void perform(const HLEvent& event, const std::function<void()>& action);

 private:
  const HLDesktopRequest request_;
  std::optional<HLEvent> event_;
};
