// Opens addresses with the desktop's programs.
#pragma once

#include <string>

class HLWorkspace {
 public:
  HLWorkspace() = default;
  HLWorkspace(const HLWorkspace&) = delete;
  HLWorkspace& operator=(const HLWorkspace&) = delete;
  virtual ~HLWorkspace() = default;

  // Opens a web page or a pane of the system's settings. Returns whether the address was valid and a program accepted
  // it. Main thread only.
  [[nodiscard]] virtual bool openAddress(const std::string& address) = 0;
};
