#include <utility>

#include "app/access.h"
#include "app/app_delegate.h"
#include "app/trial.h"
#include "app/window_parts.h"
#include "base/format.h"
#include "base/log.h"
#include "core/scan/element_access.h"
#include "platform/platform.h"

namespace {

constexpr const char* kTrialButton = "trialButton";
constexpr const char* kTrialLabel = "trialLabel";

// A title that no other notification has.
std::string trialTitle() {
  const auto milliseconds = static_cast<std::int64_t>(HLCurrentPlatform().runLoop->now() * 1000);
  return HLFormat("%@ trial %ld", HLAppDisplayName(), milliseconds % 1000000);
}

}  // namespace

// Adds a row of the controls `besides` and the button, and a line for the report.
void HLAppDelegate::addTrial(HLWindowDescription& window, std::vector<HLControl> besides) {
  besides.emplace_back(HLButton{kTrialButton, "Try It", "", [this] { tryIt(); }});
  window.stack.push_back({HLRow{std::move(besides), HLRowSpacing}, 8, false});
  const HLLabel answer{kTrialLabel, "Try It posts a notification and clears that one only.", 12, HLFontWeight::regular,
                       HLTextColor::secondary};
  window.stack.push_back({answer, 18, true});
}

void HLAppDelegate::refreshTrialButtons() {
  if (host_.trials == nullptr) return;
  const bool enabled = !trialInFlight_ && HLIsAccessibilityTrusted(false);
  for (HLWindow* window : {setupWindow_.get(), settingsWindow_.get()}) {
    if (window != nullptr) window->setEnabled(kTrialButton, enabled);
  }
}

void HLAppDelegate::tryIt() {
  if (trialInFlight_ || dismissInFlight_) return;
  trialInFlight_ = true;
  HLAppendLog("trial");
  showTrialReport({"Trying…", HLTextColor::secondary});
  HLRunLoop& runLoop = HLCurrentPlatform().runLoop;
  runLoop.postToGlobalQueue(
      HLQualityOfService::userInitiated,
      [&runLoop, self = shared_from_this(), title = trialTitle()] {
        const HLTrialReport report = HLRunTrial(*self->host_.trials, title);
        runLoop.postToMainQueue([self, report] { self->finishTrial(report); });
      },
      [self = shared_from_this()] {
        self->finishTrial({"The computer is too busy: not tried", HLTextColor::secondary});
      });
}

void HLAppDelegate::finishTrial(const HLTrialReport& report) {
  trialInFlight_ = false;
  HLAppendLog("trial outcome=%@", report.text);
  showTrialReport(report);
}

void HLAppDelegate::showTrialReport(const HLTrialReport& report) {
  for (HLWindow* window : {setupWindow_.get(), settingsWindow_.get()}) {
    if (window != nullptr) window->setLabel(kTrialLabel, report.text, report.color);
  }
  if (setupWindow_ != nullptr) setupWindow_->fitHeight();
  refreshTrialButtons();
}
