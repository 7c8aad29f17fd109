// Modal alerts.
#pragma once

#include <cstddef>

#include "platform/alerts.h"

class HLMacAlerts : public HLAlerts {
 public:
  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;
};
