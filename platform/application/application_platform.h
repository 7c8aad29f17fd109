// The host interfaces that only the application uses. Command-line modes do not load them.
#pragma once

#include <optional>

#include "platform/application/conventions.h"
#include "platform/reference.h"

class HLAlerts;
class HLApplication;
class HLHTTPClient;
class HLHotKeys;
class HLLoginItem;
class HLStatusItem;
class HLTrials;
class HLUserDefaults;
class HLWindows;
class HLWorkspace;

struct HLApplicationPlatform {
  HLReference<HLApplication> application;
  HLReference<HLStatusItem> statusItem;
  HLReference<HLWindows> windows;
  HLReference<HLAlerts> alerts;
  HLReference<HLHotKeys> hotKeys;
  HLReference<HLLoginItem> loginItem;
  HLReference<HLUserDefaults> userDefaults;
  HLReference<HLHTTPClient> httpClient;
  HLReference<HLWorkspace> workspace;
  std::optional<HLConventions> conventions = std::nullopt;  // nullopt for those of macOS
  HLTrials* trials = nullptr;                               // nullptr: the windows offer none
};
