#include "app/access.h"

#include "base/log.h"
#include "core/scan/element_access.h"
#include "daemon/self_check.h"
#include "platform/display_name.h"
#include "platform/platform.h"

std::string HLAppDisplayName() { return HLDisplayName(HLCurrentPlatform().process); }

bool HLAccessibilityAvailable() { return HLIsAccessibilityTrusted(false) || HLLocalDaemonReachable(); }

bool HLOpenAccessibilitySettingsPane(HLWorkspace& workspace) {
  // Newest first; each address opens on some versions of macOS only.
  for (const char* address : {"x-apple.systempreferences:com.apple.settings.PrivacySecurity.extension"
                              "?Privacy_Accessibility",
                              "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"}) {
    if (!workspace.openAddress(address)) continue;
    HLAppendLog("openAccessibilitySettings opened=%@", address);
    return true;
  }
  HLAppendLog("openAccessibilitySettings opened=none");
  return false;
}
