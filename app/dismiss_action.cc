#include <utility>

#include "app/access.h"
#include "app/app_delegate.h"
#include "app/dismiss_feedback.h"
#include "base/log.h"
#include "base/paths.h"
#include "core/dismissal/result.h"
#include "daemon/routing.h"
#include "platform/application/status_item.h"
#include "platform/platform.h"

namespace {

constexpr double kFailureSeconds = 8;  // how long the status item explains a failure

}  // namespace

// The application may end before a request's work has begun.
HLAppDelegate::~HLAppDelegate() { HLSetProgressHandler(nullptr); }

void HLAppDelegate::dismissNotifications() {
  if (dismissInFlight_) {
    HLAppendLog("dismissNotifications skipped reason=inFlight");
    return;
  }
  dismissInFlight_ = true;
  withdrawFailure();
  HLRunLoop& runLoop = HLCurrentPlatform().runLoop;
  const double start = runLoop.now();
  HLAppendLog("dismissNotifications");
  refreshStatusItem();
  host_.statusItem->setTitle(HLBusyTitle(HLIsProductFlavor()));
  HLAppendLog("dismissNotifications started");

  HLSetProgressHandler([&runLoop, weak = weak_from_this()](std::int64_t count) {
    runLoop.postToMainQueue([weak, count] {
      if (const auto self = weak.lock()) self->showProgress(count);
    });
  });
  runLoop.postToGlobalQueue(
      HLQualityOfService::userInitiated,
      [&runLoop, start, self = shared_from_this(), explains = conventions().explainsFailures] {
        const HLDismissResult result = HLDismissNotificationsPreferTrustedDaemon();
        HLSetProgressHandler(nullptr);
        const std::int64_t elapsed = HLElapsedMilliseconds(runLoop.now() - start);
        const bool leftBanner = explains && result.status == HLDismissStatusNothing && HLHasBanner();
        runLoop.postToMainQueue(
            [self, result, elapsed, leftBanner] { self->finishDismissal(result, elapsed, leftBanner); });
      },
      [&runLoop, start, self = shared_from_this()] {
        HLSetProgressHandler(nullptr);
        const std::int64_t elapsed = HLElapsedMilliseconds(runLoop.now() - start);
        self->finishDismissal({HLDismissStatusFailed, 0, 0}, elapsed, false);
      });
}

void HLAppDelegate::showProgress(std::int64_t count) {
  if (!dismissInFlight_) return;  // late progress: finishDismissal() has already restored the button
  host_.statusItem->setTitle(HLProgressTitle(HLIsProductFlavor(), count));
}

void HLAppDelegate::finishDismissal(const HLDismissResult& result, std::int64_t elapsedMilliseconds, bool leftBanner) {
  dismissInFlight_ = false;
  refreshStatusItem();
  HLAppendLog("dismissNotifications outcome status=%@ dismissed=%ld remaining=%ld elapsedMs=%ld",
              HLStatusString(result.status), result.dismissed, result.remaining, elapsedMilliseconds);
  if (result.status == HLDismissStatusAccessDenied) handleAccessDeniedIfNeeded();
  if (!conventions().explainsFailures) return;
  if (const auto reason = HLFailureReason(result, leftBanner, HLAppDisplayName())) explainFailure(*reason);
}

void HLAppDelegate::explainFailure(const std::string& reason) {
  HLAppendLog("dismissNotifications unfinished reason=%@", reason);
  if (!host_.statusItem->isVisible()) {
    showSettingsWindow();
    showFailureInSettings(reason);
    return;
  }
  failureTimer_ = HLCurrentPlatform().runLoop->scheduleTimer(kFailureSeconds, [this] {
    withdrawFailure();
    refreshStatusItem();
  });
  host_.statusItem->setToolTip(reason);
  refreshStatusItem();
}

void HLAppDelegate::withdrawFailure() {
  if (settingsWindow_ != nullptr) showFailureInSettings("");
  if (std::exchange(failureTimer_, nullptr) != nullptr) host_.statusItem->setToolTip(toolTip());
}

void HLAppDelegate::handleAccessDeniedIfNeeded() {
  refreshStatusItem();
  if (promptedAccessibilityThisRun_) return;
  promptedAccessibilityThisRun_ = true;
  HLAppendLog("accessibility unavailable from running app; showing setup");
  showSetupWindow();
}
