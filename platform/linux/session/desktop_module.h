// The boundary to the module that holds all that needs the window toolkit. It is loaded when the menu-bar application
// is started, so that no command and no daemon loads a toolkit; each side may bring a standard library of its own. What
// crosses are values and interfaces, never an exception.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/session/linux_run_loop.h"

class HLAlerts;
class HLApplication;
class HLHTTPClient;
class HLHotKeys;
class HLStatusItem;
class HLWindows;

struct HLDesktopRequest {
  std::string identifier;   // of the bundle: no two programs with the same one run in a session
  std::string displayName;  // what the desktop calls the program
  HLLinuxRunLoop& runLoop;  // whose place the toolkit's takes, serving it
};

// Main thread only, as are those that it owns.
class HLDesktop {
 public:
  HLDesktop() = default;
  HLDesktop(const HLDesktop&) = delete;
  HLDesktop& operator=(const HLDesktop&) = delete;
  virtual ~HLDesktop() = default;

  [[nodiscard]] virtual HLApplication& application() = 0;
  [[nodiscard]] virtual HLStatusItem& statusItem() = 0;
  [[nodiscard]] virtual HLWindows& windows() = 0;
  [[nodiscard]] virtual HLAlerts& alerts() = 0;
  [[nodiscard]] virtual HLHotKeys& hotKeys() = 0;
  [[nodiscard]] virtual HLHTTPClient& httpClient() = 0;
};

struct HLDesktopAnswer {
  std::unique_ptr<HLDesktop> desktop;
  std::string failure;  // one line, where there is none
};

// The module's one function, called once in a process. It has C linkage only for its name's sake.
using HLMakeDesktopFunction = void(const HLDesktopRequest& request, HLDesktopAnswer& answer);
inline constexpr const char* HLMakeDesktopName = "HLMakeDesktop";
extern "C" HLMakeDesktopFunction HLMakeDesktop;
