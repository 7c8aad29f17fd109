#include "daemon/self_check.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <ostream>

#include "base/format.h"
#include "base/log.h"
#include "core/dismissal/launch_context.h"
#include "core/dismissal/result.h"
#include "core/scan/element_access.h"
#include "core/scan/notification_center.h"
#include "daemon/local_socket.h"
#include "platform/text.h"

namespace {

std::optional<HLDismissResult> askDaemon() {
  HLDismissResult result;
  return HLRunLocalSocketCommand("self-check", result) ? std::optional(result) : std::nullopt;
}

bool isReachable(const std::optional<HLDismissResult>& answer) {
  return answer && answer->status != HLDismissStatusAccessDenied;
}

}  // namespace

int HLSelfCheck(std::ostream& out) {
  const bool trusted = HLIsAccessibilityTrusted(false);
  const std::optional<HLRunningApplication> center = HLNotificationCenterApplication();
  std::size_t targets = 0;
  if (trusted && center) {
    const HLElementRef application = HLNotificationCenterElement(center->pid);
    if (application != nullptr) targets = HLCurrentTargets(*application).size();
  }
  out << HLEncodableText(HLFormat("trusted=%s notificationCenterPid=%d targets=%ld %s\n", trusted,
                                  center ? center->pid : 0, static_cast<std::int64_t>(targets),
                                  HLLaunchContextSummary()));
  return trusted ? EXIT_SUCCESS : EXIT_FAILURE;
}

bool HLLocalDaemonReachable() { return isReachable(askDaemon()); }

int HLLocalDaemonSelfCheck(std::ostream& out) {
  const std::optional<HLDismissResult> answer = askDaemon();
  out << HLFormat("reachable=%s status=%s\n", isReachable(answer),
                  answer ? HLStatusString(answer->status) : std::string_view("unreachable"));
  return isReachable(answer) ? EXIT_SUCCESS : EXIT_FAILURE;
}
