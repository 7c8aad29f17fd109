#include "daemon/routing.h"

#include "base/log.h"
#include "core/dismissal/dismiss_run.h"
#include "core/dismissal/launch_context.h"
#include "core/scan/element_access.h"
#include "daemon/local_socket.h"

HLDismissResult HLDismissNotificationsPreferTrustedDaemon() {
  if (HLIsAccessibilityTrusted(false)) {
    HLAppendDiagnostics("dismiss using in-process trusted path %@", HLLaunchContextSummary());
    return HLDismissNotificationsNow();
  }
  HLDismissResult result;
  if (HLRunLocalSocketCommand("dismiss", result)) {
    HLAppendDiagnostics("dismiss using trusted daemon status=%@ dismissed=%ld remaining=%ld %@",
                        HLStatusString(result.status), result.dismissed, result.remaining, HLLaunchContextSummary());
    return result;
  }
  HLAppendDiagnostics("dismiss failed because neither process nor daemon is trusted %@", HLLaunchContextSummary());
  return {HLDismissStatusAccessDenied, 0, 0};
}
