// The simulated desktop's elements and observers.
#pragma once

#include <memory>
#include <string>

#include "platform/accessibility.h"
#include "platform/sim/desktop/desktop.h"

class HLSimAccessibility : public HLAccessibility {
 public:
  explicit HLSimAccessibility(HLSimDesktop& desktop) : desktop_(desktop) {}

  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;

 private:
  HLSimDesktop& desktop_;
};

// A handle of that node. It may outlive the desktop, but must not be asked anything then.
[[nodiscard]] HLElementRef HLMakeSimElement(HLSimDesktop& desktop, HLSimNode& node);
