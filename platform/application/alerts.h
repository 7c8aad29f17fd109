// Modal alerts.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct HLAlert {
  std::string title;
  std::string message;
  std::vector<std::string> buttons;  // at least one; the first is the default
};

class HLAlerts {
 public:
  HLAlerts() = default;
  HLAlerts(const HLAlerts&) = delete;
  HLAlerts& operator=(const HLAlerts&) = delete;
  virtual ~HLAlerts() = default;

  // Shows the alert and returns the index of the chosen button, or the last index if the alert was closed without a
  // choice. Blocks in a nested main run loop. Main thread only.
  [[nodiscard]] virtual std::size_t runModal(const HLAlert& alert) = 0;
};
