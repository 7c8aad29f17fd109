// The controls and the stack of a window, made from its description.
#pragma once

#import <AppKit/AppKit.h>

#include <map>
#include <string>

#include "platform/application/windows.h"

NS_ASSUME_NONNULL_BEGIN

// What a description has become.
struct HLControls {
  NSStackView* stack = nil;
  std::map<std::string, NSControl*, std::less<>> named;
  NSMutableArray* targets = nil;  // which the controls do not own
};

[[nodiscard]] HLControls HLMakeControls(const HLWindowDescription& description);
[[nodiscard]] NSColor* HLSystemColor(HLTextColor color);

NS_ASSUME_NONNULL_END
