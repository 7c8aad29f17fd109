// Addresses, opened by what the desktop has for them.
#pragma once

#include <string>

#include "platform/application/workspace.h"
#include "platform/process_info.h"

// Pages and mail go to the desktop's own choice, by xdg-open or else the desktop portal. The macOS address of
// its Accessibility pane stands for the desktop's screen about assistive technologies. What is started runs by itself.
class HLLinuxWorkspace : public HLWorkspace {
 public:
  explicit HLLinuxWorkspace(HLProcessInfo& process) : process_(process) {}

  // True once a program has been started, or the portal has taken the address; what they make of it is not known.
  [[nodiscard]] bool openAddress(const std::string& address) override;

 private:
  [[nodiscard]] bool openAccessibilityScreen();
  [[nodiscard]] bool openPage(const std::string& address);

  HLProcessInfo& process_;
};

// A web or mail address that can be handed to another program: printable ASCII, and something behind the scheme.
[[nodiscard]] bool HLIsOpenableAddress(const std::string& address);
