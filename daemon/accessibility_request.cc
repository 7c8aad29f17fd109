#include "daemon/accessibility_request.h"

#include "core/element_access.h"
#include "daemon/log/log.h"

bool HLRequestAccessibility(bool prompt) {
  const bool trusted = HLIsAccessibilityTrusted(prompt);
  const char* trustedText = trusted ? "true" : "false";
  const std::string context = HLLaunchContextSummary();
  HLAppendLog("requestAccessibility trusted=%@ %@", trustedText, context);
  HLAppendDiagnostics("requestAccessibility trusted=%@ prompt=%@ %@", trustedText, prompt ? "true" : "false", context);
  return !trusted;
}
