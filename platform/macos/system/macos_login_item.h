// The application's own place among the login items.
#pragma once

#include <cstdint>

#include "platform/application/login_item.h"

class HLMacLoginItem : public HLLoginItem {
 public:
  [[nodiscard]] HLLoginItemStatus status() override;
  [[nodiscard]] HLLoginItemOutcome registerItem() override;
  [[nodiscard]] HLLoginItemOutcome unregisterItem() override;
};
