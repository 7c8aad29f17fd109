// Questions in a dialog of their own.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "platform/alerts.h"

class HLQtAlerts : public HLAlerts {
 public:
  // What their frames are titled.
  explicit HLQtAlerts(std::string title) : title_(std::move(title)) {}

  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;

 private:
  const std::string title_;
};
