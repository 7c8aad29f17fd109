#include "daemon/accessibility_request.h"

#include "base/log.h"
#include "core/dismissal/launch_context.h"
#include "core/scan/element_access.h"

bool HLRequestAccessibility(bool prompt) {
  const bool trusted = HLIsAccessibilityTrusted(prompt);
  const std::string context = HLLaunchContextSummary();
  HLAppendLog("requestAccessibility trusted=%@ %@", trusted, context);
  HLAppendDiagnostics("requestAccessibility trusted=%@ prompt=%@ %@", trusted, prompt, context);
  return !trusted;
}
