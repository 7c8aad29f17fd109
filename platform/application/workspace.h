// The desktop around the application.
#pragma once

#include <string>

class HLWorkspace {
 public:
  HLWorkspace() = default;
  HLWorkspace(const HLWorkspace&) = delete;
  HLWorkspace& operator=(const HLWorkspace&) = delete;
  virtual ~HLWorkspace() = default;

  // Whether the address was valid and something has opened it: a page in the browser, a pane of the system's settings.
  // Main thread.
  [[nodiscard]] virtual bool openAddress(const std::string& address) = 0;
};
