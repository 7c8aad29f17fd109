// The shared application.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/application/application.h"

@class HLApplicationDelegate;

// Whoever opens the bundle while it runs reaches the running application: the system sees to that.
class HLMacApplication : public HLApplication {
 public:
  HLMacApplication();
  ~HLMacApplication() override;

  // Terminating ends the process with code 0.
  [[nodiscard]] int run(HLApplicationHandlers handlers) override;
  void terminate() override;
  void activate() override;
  void setDarkAppearance() override;
  void beep() override;
  [[nodiscard]] std::optional<HLEvent> currentEvent() override;
  [[nodiscard]] std::unique_ptr<HLKeyMonitor> addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) override;

 private:
  HLApplicationDelegate* delegate_ = nullptr;
};
