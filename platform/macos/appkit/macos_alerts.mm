#include "platform/macos/appkit/macos_alerts.h"

#import <AppKit/AppKit.h>

#include "platform/macos/values/values.h"

std::size_t HLMacAlerts::runModal(const HLAlert& alert) {
  NSAlert* panel = [[NSAlert alloc] init];
  panel.messageText = HLMakeString(alert.title);
  panel.informativeText = HLMakeString(alert.message);
  for (const std::string& button : alert.buttons) [panel addButtonWithTitle:HLMakeString(button)];
  const NSModalResponse response = [panel runModal];
  const auto chosen = static_cast<std::size_t>(response - NSAlertFirstButtonReturn);
  // An alert that was stopped or aborted answers with a code below those of the buttons.
  return response < NSAlertFirstButtonReturn || chosen >= alert.buttons.size() ? alert.buttons.size() - 1 : chosen;
}
