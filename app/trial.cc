#include "app/trial.h"

#include <optional>

#include "app/dismiss_feedback.h"
#include "base/format.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/text.h"

namespace {

constexpr double kLookInterval = 0.1;      // seconds
constexpr double kAppearTimeout = 5;       // seconds, for a banner to be shown
constexpr double kCloseButtonTimeout = 1;  // seconds from the banner to its close control
constexpr double kDisappearTimeout = 3;    // seconds, of each attempt
constexpr int kAttempts = 2;

// The state of the trial notification in one scan.
struct Look {
  bool isReadable = false;  // the server offers its elements
  bool isShown = false;
  std::optional<HLDismissTarget> target;
};

Look lookFor(const std::string& title) {
  Look look;
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (!center) return look;
  const HLElementRef application = HLNotificationCenterElement(center->pid);
  if (application == nullptr) return look;
  look.isReadable = true;
  look.isShown = HLShowsElement(
      *application, [&title](const HLVisit& visit) { return HLContainsIgnoringCase(visit.context.own(), title); });
  if (!look.isShown) return look;
  for (HLDismissTarget& target : HLCurrentTargets(*application)) {
    const std::string description = HLStringAttribute(*target.element, "AXDescription").value_or("");
    if (!HLContainsIgnoringCase(description, title)) continue;
    look.target = std::move(target);
    break;
  }
  return look;
}

// Scans repeatedly until the condition is true or the time is over. Returns the last result.
template <class Condition>
Look lookUntil(const std::string& title, double seconds, Condition holds) {
  HLRunLoop& runLoop = HLCurrentPlatform().runLoop;
  const double deadline = runLoop.now() + seconds;
  Look look = lookFor(title);
  while (!holds(look) && runLoop.now() < deadline) {
    runLoop.sleep(kLookInterval);
    look = lookFor(title);
  }
  return look;
}

HLTrialReport notTried(const char* reason) {
  return {HLFormat("%@: not tried", std::string(reason)), HLTextColor::secondary};
}

HLTrialReport cannotBeCleared(const std::string& server, const std::string& reason) {
  return {HLFormat("%@ cannot be cleared, because %@.", server, reason), HLTextColor::orange};
}

HLTrialReport notShown(const std::string& server) {
  if (HLHasBanner()) return notTried("Other banners leave no room, clear them first");
  return {
      HLFormat(
          "%@ showed no banner that can be read. Do not disturb may be on. If accessibility was switched on just now, "
          "log out and in once.",
          server),
      HLTextColor::orange};
}

HLTrialReport clear(HLTrials& trials, const std::string& title, const std::string& server) {
  Look look = lookUntil(title, kAppearTimeout, [](const Look& seen) { return seen.isShown; });
  if (!look.isReadable) return cannotBeCleared(server, "it does not offer its windows to assistive programs");
  if (!look.isShown) {
    const std::optional<std::string> reason = trials.unclosableReason();
    return reason ? cannotBeCleared(server, *reason) : notShown(server);
  }
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto canBePressed = [](const Look& seen) { return seen.target || !seen.isShown; };
    look = lookUntil(title, kCloseButtonTimeout, canBePressed);
    if (!look.isShown) return {"The notification was gone before it could be cleared. Try again.", HLTextColor::orange};
    if (!look.target) return cannotBeCleared(server, "its banners have no close button that can be pressed");
    if (look.target->element->performAction(look.target->action) != HLAXErrorSuccess) continue;
    look = lookUntil(title, kDisappearTimeout, [](const Look& seen) { return !seen.isShown; });
    if (!look.isShown && look.isReadable) return {"Works here", HLTextColor::green};
  }
  return cannotBeCleared(server, "its banners stay when they are closed");
}

}  // namespace

HLTrialReport HLRunTrial(HLTrials& trials, const std::string& title) {
  if (!HLIsAccessibilityTrusted(false)) return notTried("Accessibility is off");
  if (trials.isDoNotDisturbOn().value_or(false)) return notTried("Do not disturb is on");
  const auto notification = trials.post(title, "This notification clears itself.");
  if (notification == nullptr) return notTried("Your desktop accepts no notifications");
  const std::optional<std::string> name = trials.serverName();
  HLTrialReport report = clear(trials, title, name ? "Your notification server " + *name : "Your notification server");
  if (report.color != HLTextColor::green) notification->withdraw();
  return report;
}
