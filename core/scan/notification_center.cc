#include "core/scan/notification_center.h"

#include <cstdint>
#include <set>
#include <string>
#include <utility>

#include "base/format.h"
#include "core/scan/element_access.h"
#include "platform/platform.h"

std::optional<HLRunningApplication> HLNotificationCenterApplication() {
  for (HLRunningApplication& application : HLCurrentPlatform().runningApplications->list()) {
    if (application.bundleIdentifier == HLNotificationCenterBundleIdentifier) return std::move(application);
  }
  return std::nullopt;
}

HLElementRef HLNotificationCenterElement(std::int32_t pid) {
  return HLCurrentPlatform().accessibility->createApplication(pid);
}

std::vector<HLElementRef> HLNotificationWindows(const HLElement& application) {
  return HLElementsFromAttribute(application.copyAttributeValue("AXWindows"));
}

bool HLShowsElement(const HLElement& application, const std::function<bool(const HLVisit&)>& fits) {
  bool found = false;
  for (const HLElementRef& window : HLNotificationWindows(application)) {
    HLWalkTree({window, HLContext()}, HLScanLimit, [&found, &fits](const HLVisit& visit) {
      found = found || fits(visit);
      return found ? HLDescent::prune : HLDescent::enter;
    });
  }
  return found;
}

std::vector<HLDismissTarget> HLCurrentTargets(const HLElement& application, const HLScanListener& listener) {
  std::vector<HLDismissTarget> targets;
  std::set<std::string> keys;
  std::int64_t index = 0;
  for (const HLElementRef& window : HLNotificationWindows(application)) {
    for (HLDismissTarget& target : HLTargetsInRoot(window, HLFormat("window-%ld", index++), listener)) {
      if (keys.insert(HLDeduplicationKeyForTarget(target)).second) targets.push_back(std::move(target));
    }
  }
  return targets;
}
