#include "platform/macos/appkit/action_target.h"

#include <utility>

@implementation HLActionTarget {
  std::function<void(id)> _action;
}

- (instancetype)initWithAction:(std::function<void(id sender)>)action {
  self = [super init];
  if (self != nil) _action = std::move(action);
  return self;
}

- (void)invoke:(id)sender {
  const std::function<void(id)> action = _action;  // it may take the control away, and this with it
  if (action) action(sender);
}

@end
