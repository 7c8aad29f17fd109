// What only the menu-bar application asks of its host. The command-line modes do without, and load none of it.
#pragma once

#include <optional>
#include <string>

#include "platform/reference.h"

class HLAlerts;
class HLApplication;
class HLHTTPClient;
class HLHotKeys;
class HLLoginItem;
class HLStatusItem;
class HLUserDefaults;
class HLWindows;
class HLWorkspace;

// How the user gives access to the screen, where that differs from the home platform's way. "%@" in them stands for the
// application's name.
struct HLAccessGuide {
  std::string explanation;
  std::string steps;
  std::string note;
};

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
  std::optional<HLAccessGuide> accessGuide;
};
