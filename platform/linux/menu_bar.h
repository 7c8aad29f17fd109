// What only the menu-bar application asks of a Linux desktop, gathered. That of it which needs the window toolkit comes
// from the module beside the executable: DIR/lib/hushlet/hushlet-desktop.so for DIR/bin/NAME.
#pragma once

#include <memory>
#include <string>
#include <variant>

#include "platform/application_platform.h"
#include "platform/linux/desktop_module.h"
#include "platform/linux/login_item.h"
#include "platform/linux/run_loop.h"
#include "platform/linux/user_defaults.h"
#include "platform/linux/workspace.h"
#include "platform/process_info.h"

class HLLinuxMenuBar {
 public:
  HLLinuxMenuBar(HLProcessInfo& process, HLLinuxRunLoop& runLoop) : process_(process), runLoop_(runLoop) {}

  // Loads the module at the first call. Else one line that says what is missing.
  [[nodiscard]] std::variant<const HLApplicationPlatform*, std::string> platform();

 private:
  HLProcessInfo& process_;
  HLLinuxRunLoop& runLoop_;
  HLLinuxUserDefaults userDefaults_{HLUserDefaultsPath(process_)};
  HLLinuxLoginItem loginItem_{process_};
  HLLinuxWorkspace workspace_{process_};
  std::unique_ptr<HLDesktop> desktop_;
  std::unique_ptr<const HLApplicationPlatform> platform_;
};
