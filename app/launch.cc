#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <variant>
#include <vector>

#include "app/access.h"
#include "app/app_delegate.h"
#include "app/conventions.h"
#include "app/window_snapshots.h"
#include "base/log.h"
#include "base/paths.h"
#include "core/dismissal/launch_context.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "daemon/self_check.h"
#include "platform/accessibility.h"
#include "platform/application/status_item.h"
#include "platform/application/user_defaults.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/running_applications.h"

namespace {

constexpr const char* kWelcomed = "HLWelcomedWithoutIcon";
constexpr double kTrayDelay = 3;        // seconds, for a tray to accept the icon
constexpr double kSnapshotDelay = 1.5;  // seconds, for the windows to be drawn

}  // namespace

void HLAppDelegate::applicationDidFinishLaunching() {
  HLProcessInfo& process = HLCurrentPlatform().process;
  const bool trusted = HLIsAccessibilityTrusted(false);
  const bool daemonReachable = HLLocalDaemonReachable();
  HLAppendLog("applicationDidFinishLaunching bundle=%@ executable=%@ trusted=%@ daemonReachable=%@ flavor=%@ %@",
              process.bundlePath().value_or(""), process.executablePath().value_or(""), trusted, daemonReachable,
              HLIsProductFlavor() ? "product" : "personal", HLLaunchContextSummary());
  registerDefaultShortcut();
  installStatusItem();
  installHotKeyHandler();
  observeRelaunches();
  readUserRules();
  HLCurrentPlatform().accessibility->prepareToStay();
  updateAutoCloser();
  applyStoredHotKey();
  refreshStatusItem();
  if (HLIsProductFlavor() && !trusted) showSetupWindow();
  followLaunchSwitches();
  if (conventions().iconMayBeMissing) {
    HLCurrentPlatform().runLoop->postToMainQueueAfter(kTrayDelay,
                                                      [self = shared_from_this()] { self->welcomeWithoutIcon(); });
  }
}

void HLAppDelegate::welcomeWithoutIcon() {
  if (host_.statusItem->isVisible() || HLBooleanDefault(host_.userDefaults, kWelcomed)) return;
  host_.userDefaults->setValue(kWelcomed, true);
  showSettingsWindow();
}

void HLAppDelegate::observeRelaunches() {
  HLCurrentPlatform().runningApplications->observeLaunches(
      [self = shared_from_this()](const HLRunningApplication& launched) {
        if (launched.bundleIdentifier == HLNotificationCenterBundleIdentifier) self->updateAutoCloser();
      });
}

void HLAppDelegate::followLaunchSwitches() {
  const std::vector<std::string> arguments = HLCurrentPlatform().process->arguments();
  const auto find = [&arguments](const char* name) { return std::find(arguments.begin(), arguments.end(), name); };
  if (find("--appearance-dark") != arguments.end()) host_.application->setDarkAppearance();
  if (find("--open-settings") != arguments.end()) showSettingsWindow();
  const auto snapshots = find("--snapshot-windows");
  if (snapshots == arguments.end() || snapshots + 1 == arguments.end()) return;
  HLCurrentPlatform().runLoop->postToMainQueueAfter(
      kSnapshotDelay,
      [&windows = host_.windows, directory = snapshots[1]] { HLWriteWindowSnapshots(windows, directory); });
}

const HLConventions& HLAppDelegate::conventions() const {
  return host_.conventions ? *host_.conventions : HLMacConventions();
}

void HLAppDelegate::bringToFront(HLWindow& window) {
  window.center();
  host_.application->activate();
  window.makeKeyAndOrderFront();
}

void HLAppDelegate::quit() { host_.application->terminate(); }

int HLRunApplication(std::ostream& err) {
  const auto host = HLCurrentPlatform().applicationPlatform();
  if (const auto* missing = std::get_if<std::string>(&host)) {
    err << *missing << '\n';
    return EXIT_FAILURE;
  }
  const HLApplicationPlatform& platform = *std::get<const HLApplicationPlatform*>(host);
  const auto delegate = std::make_shared<HLAppDelegate>(platform);
  return platform.application->run(
      {[delegate] { delegate->applicationDidFinishLaunching(); }, [delegate] { delegate->showSettingsWindow(); }});
}
