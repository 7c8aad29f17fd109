#include "core/dismissal/dismiss_run.h"

#include <csignal>
#include <optional>

#include "base/log.h"
#include "core/dismissal/attempt_loop.h"
#include "core/dismissal/launch_context.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"

namespace {

// Notification Center shows at most this number of alerts of one application and holds back the rest.
constexpr std::int64_t kOverflowThreshold = 20;

constexpr int kRestartPolls = 50;
constexpr double kRestartPollSeconds = 0.1;
constexpr int kKillPoll = 25;

constexpr int kPresentedPolls = 16;
constexpr double kPresentedPollSeconds = 0.3;

// Restarts Notification Center, dismisses the alerts that it held back, and merges both results. Called once per
// dismissal, even if more alerts are held back afterwards.
void drainOverflow(std::int32_t oldPid, HLDismissResult& result) {
  constexpr std::int64_t kDrain = 0;
  const std::int32_t newPid = HLRestartNotificationCenter(oldPid);
  if (newPid < 1) {
    HLAppendDiagnostics("overflow drain restart failed drain=%ld", kDrain);
    return;
  }
  const HLElementRef application = HLNotificationCenterElement(newPid);
  if (application == nullptr) return;
  const std::int64_t presented = HLWaitForRepresentedAlerts(*application);
  HLAppendDiagnostics("overflow drain=%ld newPid=%d presented=%ld", kDrain, newPid, presented);

  HLDismissResult drained{HLDismissStatusNothing, 0, 0};
  std::int64_t maxAlertsPerApp = 0;  // wanted for the log only
  if (presented > 0) drained = HLRunDirectDismiss(*application, &maxAlertsPerApp);
  result.dismissed += drained.dismissed;
  result.remaining = drained.remaining;
  if (drained.status == HLDismissStatusFailed) result.status = HLDismissStatusFailed;
}

}  // namespace

HLDismissResult HLDismissNotificationsNow() {
  const bool trusted = HLIsAccessibilityTrusted(false);
  HLAppendDiagnostics("dismiss preflight trusted=%@ %@", trusted, HLLaunchContextSummary());
  if (!trusted) return {HLDismissStatusAccessDenied, 0, 0};

  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (!center) return {HLDismissStatusNotificationCenterUnavailable, 0, 0};
  HLAppendDiagnostics("notification center pid=%d bundle=%@", center->pid, center->bundleIdentifier.value_or("none"));

  std::int64_t maxAlertsPerApp = 0;
  HLDismissResult result;
  {
    const HLElementRef application = HLNotificationCenterElement(center->pid);
    if (application == nullptr) return {HLDismissStatusFailed, 0, 0};
    result = HLRunDirectDismiss(*application, &maxAlertsPerApp);
  }
  if (result.status == HLDismissStatusSuccess && maxAlertsPerApp >= kOverflowThreshold) {
    drainOverflow(center->pid, result);
  }
  return result;
}

std::int32_t HLRestartNotificationCenter(std::int32_t oldPid) {
  const HLPlatform& platform = HLCurrentPlatform();
  if (platform.runningApplications->sendSignal(oldPid, SIGTERM) == HLSignalOutcome::refused) return 0;
  for (int poll = 0; poll < kRestartPolls; ++poll) {
    platform.runLoop->sleep(kRestartPollSeconds);
    if (poll == kKillPoll) (void)platform.runningApplications->sendSignal(oldPid, SIGKILL);
    for (const HLRunningApplication& application : platform.runningApplications->list()) {
      const bool successor = application.bundleIdentifier == HLNotificationCenterBundleIdentifier &&
                             application.pid != oldPid && !application.terminated;
      if (successor) return application.pid;
    }
  }
  return 0;
}

std::int64_t HLWaitForRepresentedAlerts(const HLElement& application) {
  std::int64_t previous = -1;
  for (int poll = 0; poll < kPresentedPolls; ++poll) {
    HLCurrentPlatform().runLoop->sleep(kPresentedPollSeconds);
    const auto present = static_cast<std::int64_t>(HLCurrentTargets(application).size());
    HLReportProgress(present);
    if (poll >= 1 && present == previous) return present;
    previous = present;
  }
  return previous;
}
