// Addresses, opened by what the desktop has for them.
#pragma once

#include <string>

#include "platform/application/workspace.h"
#include "platform/process_info.h"

// Opens web and mail addresses with xdg-open, or else the desktop portal. For the address of macOS's Accessibility pane
// it opens the desktop's accessibility settings. Started programs are detached.
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
