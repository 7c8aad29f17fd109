// Questions in a dialog of their own.
#pragma once

#include <cstddef>

#include "platform/alerts.h"

class HLQtAlerts : public HLAlerts {
 public:
  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;
};
