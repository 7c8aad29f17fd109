// A window that the contract tests read and press: two alerts, each with an action "Close" that takes it away and tells
// that the window's layout has changed. Lives until its standard input ends.
#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

@interface HLContractAlert : NSView
@end

NS_ASSUME_NONNULL_END

@implementation HLContractAlert {
  NSArray<NSAccessibilityCustomAction*>* _actions;
}

- (BOOL)isAccessibilityElement {
  return YES;
}

- (NSAccessibilityRole)accessibilityRole {
  return NSAccessibilityGroupRole;
}

- (NSString*)accessibilityLabel {
  return @"Chat, Hello, there";
}

- (NSArray<NSAccessibilityCustomAction*>*)accessibilityCustomActions {
  if (_actions != nil) return _actions;
  __weak HLContractAlert* weakAlert = self;
  BOOL (^close)(void) = ^BOOL {
    HLContractAlert* alert = weakAlert;
    NSWindow* window = alert.window;
    if (window == nil) return NO;
    [alert removeFromSuperview];
    NSAccessibilityPostNotification(window, NSAccessibilityLayoutChangedNotification);
    return YES;
  };
  _actions = @[ [[NSAccessibilityCustomAction alloc] initWithName:@"Close" handler:close] ];
  return _actions;
}

@end

int main() {
  @autoreleasepool {
    NSApplication* application = NSApplication.sharedApplication;
    [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
    NSWindow* window = [[NSWindow alloc] initWithContentRect:NSMakeRect(80, 80, 360, 240)
                                                   styleMask:NSWindowStyleMaskTitled
                                                     backing:NSBackingStoreBuffered
                                                       defer:NO];
    window.releasedWhenClosed = NO;
    window.title = @"Contract";
    for (int i = 0; i < 2; ++i) {
      [window.contentView addSubview:[[HLContractAlert alloc] initWithFrame:NSMakeRect(20, 20 + i * 100, 320, 80)]];
    }
    [window.contentView addSubview:[NSTextField labelWithString:@"Label"]];
    [window orderFrontRegardless];

    NSFileHandle* input = NSFileHandle.fileHandleWithStandardInput;
    input.readabilityHandler = ^(NSFileHandle* handle) {
      if (handle.availableData.length == 0) exit(EXIT_SUCCESS);
    };
    [application run];
  }
  return EXIT_SUCCESS;
}
