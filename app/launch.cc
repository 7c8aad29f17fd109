#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <variant>
#include <vector>

#include "app/access.h"
#include "app/app_delegate.h"
#include "base/format.h"
#include "base/log.h"
#include "base/paths.h"
#include "core/dismissal/launch_context.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "daemon/self_check.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/running_applications.h"

namespace {

constexpr double kSnapshotDelay = 1.5;  // seconds, for the windows to be drawn

// Writes a temporary file and renames it, so that `path` never holds partial content.
bool writeAtomically(const std::string& path, const std::string& content) {
  const std::string unfinished = path + ".part";
  std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
  file << content;
  file.close();
  if (file && std::rename(unfinished.c_str(), path.c_str()) == 0) return true;
  std::remove(unfinished.c_str());
  return false;
}

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
  updateAutoCloser();
  applyStoredHotKey();
  refreshStatusItem();
  if (HLIsProductFlavor() && !trusted) showSetupWindow();
  followLaunchSwitches();
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
      kSnapshotDelay, [self = shared_from_this(), directory = snapshots[1]] { self->writeWindowSnapshots(directory); });
}

void HLAppDelegate::writeWindowSnapshots(const std::string& directory) {
  std::int64_t counter = 0;
  for (const HLWindowView& view : host_.windows->views()) {
    if (!view.visible || !(view.width > 0) || !(view.height > 0)) continue;
    const std::string name = view.title.empty() ? HLFormat("window-%ld", counter) : view.title;
    const std::filesystem::path path = std::filesystem::path(directory) / HLFormat("%02ld-%@.png", counter, name);
    const std::optional<std::string> png = view.png();
    const bool wrote = png && writeAtomically(path.string(), *png);
    HLAppendLog("snapshot window=%@ size=%.0fx%.0f wrote=%d", name, view.width, view.height, wrote ? 1 : 0);
    ++counter;
  }
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
