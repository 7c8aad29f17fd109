// Questions in a dialog of their own.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "platform/application/alerts.h"

class HLQtAlerts : public HLAlerts {
 public:
  // The title is that of every alert's window.
  explicit HLQtAlerts(std::string title) : title_(std::move(title)) {}

  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;

 private:
  const std::string title_;
};
