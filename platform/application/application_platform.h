// What only the menu-bar application asks of its host. The command-line modes do without, and load none of it.
#pragma once

#include <optional>
#include <string>

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
  HLApplication& application;
  HLStatusItem& statusItem;
  HLWindows& windows;
  HLAlerts& alerts;
  HLHotKeys& hotKeys;
  HLLoginItem& loginItem;
  HLUserDefaults& userDefaults;
  HLHTTPClient& httpClient;
  HLWorkspace& workspace;
  std::optional<HLAccessGuide> accessGuide;
};
