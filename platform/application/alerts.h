// Questions that hold up the application until they are answered.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct HLAlert {
  std::string title;
  std::string message;
  std::vector<std::string> buttons;  // one at least; the first is the default
};

class HLAlerts {
 public:
  HLAlerts() = default;
  HLAlerts(const HLAlerts&) = delete;
  HLAlerts& operator=(const HLAlerts&) = delete;
  virtual ~HLAlerts() = default;

  // The index of the button that was chosen; the last one's when the alert is dismissed without a choice. The main run
  // loop goes on meanwhile. Main thread.
  [[nodiscard]] virtual std::size_t runModal(const HLAlert& alert) = 0;
};
