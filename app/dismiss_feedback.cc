#include "app/dismiss_feedback.h"

#include <cmath>

#include "base/format.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"

std::string HLBusyTitle(bool isProductFlavor) { return isProductFlavor ? "" : "HL…"; }

std::string HLProgressTitle(bool isProductFlavor, std::int64_t count) {
  if (count < 1) return HLBusyTitle(isProductFlavor);
  return isProductFlavor ? HLFormat("%ld", count) : HLFormat("HL %ld", count);
}

std::int64_t HLElapsedMilliseconds(double seconds) { return std::llround(seconds * 1000); }

bool HLHasBanner() {
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (!center || !HLIsAccessibilityTrusted(false)) return false;
  const HLElementRef application = HLNotificationCenterElement(center->pid);
  return application != nullptr && HLShowsElement(*application, [](const HLVisit& visit) {
           return visit.facts.subrole == "AXNotificationCenterAlert" ||
                  visit.facts.subrole == "AXNotificationCenterBanner";
         });
}

std::optional<std::string> HLFailureReason(const HLDismissResult& result, bool hasBanner,
                                           const std::string& applicationName) {
  switch (result.status) {
    case HLDismissStatusSuccess:
      return std::nullopt;
    case HLDismissStatusNothing:
      if (!hasBanner) return std::nullopt;
      return HLFormat("%@ finds no close button on the notifications that your desktop shows.", applicationName);
    case HLDismissStatusAccessDenied:
      return HLFormat("%@ cannot see your notifications, because accessibility is off.", applicationName);
    case HLDismissStatusNotificationCenterUnavailable:
      return HLFormat("%@ finds no program that shows notifications.", applicationName);
    case HLDismissStatusFailed:
      break;
  }
  if (result.remaining == 1) return "One notification could not be closed.";
  if (result.remaining > 1) return HLFormat("%ld notifications could not be closed.", result.remaining);
  return "Some notifications could not be closed.";
}
