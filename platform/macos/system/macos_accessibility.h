// The system's Accessibility interface.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/accessibility.h"

// Queries wait for the other process as long as the system's own limit says.
class HLMacAccessibility : public HLAccessibility {
 public:
  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;
};
