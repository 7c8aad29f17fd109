// Modal alerts. The main loop goes on meanwhile; but the main queue runs one step at a time, so that an alert which one
// of its steps asks holds up those after it.
#pragma once

#include <cstddef>

#include "platform/application/alerts.h"

class HLMacAlerts : public HLAlerts {
 public:
  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;
};
