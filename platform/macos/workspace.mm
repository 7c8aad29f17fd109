#include "platform/macos/workspace.h"

#import <AppKit/AppKit.h>

#include "platform/macos/values.h"

bool HLMacWorkspace::openAddress(const std::string& address) {
  @autoreleasepool {
    NSURL* url = [NSURL URLWithString:HLMakeString(address)];
    return url != nil && [NSWorkspace.sharedWorkspace openURL:url] != NO;
  }
}
