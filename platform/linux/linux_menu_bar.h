// What only the menu-bar application asks of a Linux desktop, gathered. That of it which needs the window toolkit comes
// from the module beside the executable: DIR/lib/hushlet/hushlet-desktop.so for DIR/bin/NAME.
#pragma once

#include <memory>
#include <string>
#include <variant>

#include "platform/application/application_platform.h"
#include "platform/linux/session/linux_run_loop.h"
#include "platform/process_info.h"

class HLLinuxMenuBar {
 public:
  HLLinuxMenuBar(HLProcessInfo& process, HLLinuxRunLoop& runLoop);
  ~HLLinuxMenuBar();

  // Loads the module at the first call, before which nothing is read or made. Else one line that says what is missing.
  [[nodiscard]] std::variant<const HLApplicationPlatform*, std::string> platform();

 private:
  struct Parts;

  HLProcessInfo& process_;
  HLLinuxRunLoop& runLoop_;
  std::unique_ptr<Parts> parts_;
};
