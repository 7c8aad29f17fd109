// What the program asks of its host, gathered. Installed once, at the start of main or of a test.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "platform/reference.h"

class HLAccessibility;
class HLHostReport;
struct HLApplicationPlatform;
class HLProcessInfo;
class HLPropertyLists;
class HLRunLoop;
class HLRunningApplications;
class HLUserNotifications;

// What a person at a terminal is told after a dismissal that did not succeed: what is wrong and what to do, a line
// each.
struct HLCommandAdvice {
  std::string_view accessDenied;
  std::string_view notificationCenterUnavailable;
  std::string_view failed;  // before the path of the diagnostics log
  // Returns what to do about banners that were left on screen because they cannot be closed yet, or "". Blocks.
  std::function<std::string_view()> unclosable = nullptr;
};

// A copy may have members replaced: HLPlatform spied = platform; spied.runLoop = spy;
struct HLPlatform {
  HLReference<HLAccessibility> accessibility;
  HLReference<HLRunningApplications> runningApplications;
  HLReference<HLRunLoop> runLoop;
  HLReference<HLProcessInfo> process;
  HLReference<HLPropertyLists> propertyLists;
  HLReference<HLUserNotifications> userNotifications;
  HLReference<HLHostReport> report;
  // Makes ready what the menu-bar application needs besides, at the first call; it lives as long as the host. Else one
  // line that says what is missing. Main thread.
  std::function<std::variant<const HLApplicationPlatform*, std::string>()> applicationPlatform;
  // nullopt where commands print nothing but what programs read.
  std::optional<HLCommandAdvice> commandAdvice = std::nullopt;
};

// The platform stays the caller's and must outlive its use; nullptr takes it out again. Not while other threads use it.
void HLInstallPlatform(const HLPlatform* platform);

// The installed platform; there must be one. Any thread.
[[nodiscard]] const HLPlatform& HLCurrentPlatform();

// A host: the owner of everything that a platform record refers to.
class HLHost {
 public:
  HLHost() = default;
  HLHost(const HLHost&) = delete;
  HLHost& operator=(const HLHost&) = delete;
  virtual ~HLHost() = default;

  [[nodiscard]] virtual const HLPlatform& platform() const = 0;
};

// Why there is no host: one line for standard error, and the code to exit with.
struct HLHostFailure {
  std::string message;
  int exitCode = 1;
};

// Defined by each host and chosen when the program is linked. Called once, on the main thread, before anything else.
[[nodiscard]] std::variant<std::unique_ptr<HLHost>, HLHostFailure> HLMakeHost(int argc, char** argv);
