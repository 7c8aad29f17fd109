#include "platform/macos/system/macos_workspace.h"

#import <AppKit/AppKit.h>

#include "platform/macos/values/values.h"

bool HLMacWorkspace::openAddress(const std::string& address) {
  @autoreleasepool {
    NSURL* url = [NSURL URLWithString:HLMakeString(address)];
    // For an address without a scheme the system shows the user an error of its own.
    return url.scheme.length > 0 && [NSWorkspace.sharedWorkspace openURL:url] != NO;
  }
}
