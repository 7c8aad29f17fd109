#include "app/access.h"

#include "core/element_access.h"
#include "daemon/log/log.h"
#include "daemon/self_check.h"
#include "platform/platform.h"
#include "platform/process_info.h"

std::string HLAppDisplayName() {
  const HLDictionary information = HLCurrentPlatform().process.informationDictionary();
  const HLValue* value = HLDictionaryValue(information, "CFBundleDisplayName");
  const std::string* name = value == nullptr ? nullptr : value->as<std::string>();
  return name == nullptr || name->empty() ? "Hushlet" : *name;
}

bool HLAccessibilityAvailable() { return HLIsAccessibilityTrusted(false) || HLLocalDaemonReachable(); }

bool HLOpenAccessibilitySettingsPane(HLWorkspace& workspace) {
  // The newer system's address first; each opens on some systems only.
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
