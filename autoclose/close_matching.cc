#include "autoclose/close_matching.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <ostream>

#include "base/format.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/text.h"

namespace {

constexpr int kPasses = 5;
constexpr double kPauseSeconds = 0.4;

// Returns the number of accepted presses.
std::int64_t closeOnce(const HLElement& application, const std::string& text) {
  std::int64_t closed = 0;
  for (const HLDismissTarget& target : HLCurrentTargets(application)) {
    const std::string description = HLStringAttribute(*target.element, "AXDescription").value_or("");
    if (!HLContainsIgnoringCase(description, text)) continue;
    if (target.element->performAction(target.action) == HLAXErrorSuccess) ++closed;
  }
  return closed;
}

}  // namespace

int HLCloseMatchingAlerts(const std::string& text, std::ostream& out) {
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  if (!center || text.empty()) return EXIT_FAILURE;
  const HLElementRef application = HLNotificationCenterElement(center->pid);
  std::int64_t total = 0;
  for (int pass = 0; application != nullptr && pass < kPasses; ++pass) {
    const std::int64_t closed = closeOnce(*application, text);
    total += closed;
    if (closed == 0) break;
    HLCurrentPlatform().runLoop->sleep(kPauseSeconds);
  }
  out << HLFormat("closed_matching=%ld\n", total);
  return EXIT_SUCCESS;
}
