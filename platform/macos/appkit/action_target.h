// What a control or a menu item calls.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

NS_ASSUME_NONNULL_BEGIN

// Controls and menu items do not own their targets; whoever makes one keeps it.
@interface HLActionTarget : NSObject
- (instancetype)initWithAction:(std::function<void(id sender)>)action NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (void)invoke:(id)sender;
@end

NS_ASSUME_NONNULL_END
