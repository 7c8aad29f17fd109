// Alerts in a QMessageBox.
#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include "platform/application/alerts.h"

class HLQtAlerts : public HLAlerts {
 public:
  // `title` is the window title of every alert.
  explicit HLQtAlerts(std::string title) : title_(std::move(title)) {}

  [[nodiscard]] std::size_t runModal(const HLAlert& alert) override;

 private:
  const std::string title_;
};
