#include "platform/macos/appkit/macos_application.h"

#import <AppKit/AppKit.h>

#include <cstdlib>
#include <utility>

#include "platform/macos/values/values.h"

static_assert(HLModifierCapsLock == NSEventModifierFlagCapsLock);
static_assert(HLModifierShift == NSEventModifierFlagShift);
static_assert(HLModifierControl == NSEventModifierFlagControl);
static_assert(HLModifierOption == NSEventModifierFlagOption);
static_assert(HLModifierCommand == NSEventModifierFlagCommand);
static_assert(HLModifierFunction == NSEventModifierFlagFunction);
static_assert(HLEventLeftMouseUp == NSEventTypeLeftMouseUp);
static_assert(HLEventRightMouseUp == NSEventTypeRightMouseUp);

NS_ASSUME_NONNULL_BEGIN

@interface HLApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithHandlers:(HLApplicationHandlers)handlers NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@end

NS_ASSUME_NONNULL_END

@implementation HLApplicationDelegate {
  HLApplicationHandlers _handlers;
}

- (instancetype)initWithHandlers:(HLApplicationHandlers)handlers {
  self = [super init];
  if (self != nil) _handlers = std::move(handlers);
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  if (_handlers.didFinishLaunching) _handlers.didFinishLaunching();
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
  if (_handlers.didReopen) _handlers.didReopen();
  return NO;
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
  return YES;
}

@end

namespace {

class KeyMonitor : public HLKeyMonitor {
 public:
  explicit KeyMonitor(std::function<void(const HLKeyEvent&)> handler)
      : monitor_([NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                       handler:^NSEvent*(NSEvent* event) {
                                                         const auto held = handler;  // it may end the monitor
                                                         held(recordOf(event));
                                                         return nil;
                                                       }]) {}
  ~KeyMonitor() override {
    if (monitor_ != nil) [NSEvent removeMonitor:monitor_];
  }

 private:
  static HLKeyEvent recordOf(NSEvent* event) {
    return {event.keyCode, event.modifierFlags, HLOptionalText(event.charactersIgnoringModifiers).value_or("")};
  }

  const id monitor_;
};

}  // namespace

HLMacApplication::HLMacApplication() { (void)NSApplication.sharedApplication; }

HLMacApplication::~HLMacApplication() = default;

int HLMacApplication::run(HLApplicationHandlers handlers) {
  NSApplication* application = NSApplication.sharedApplication;
  delegate_ = [[HLApplicationDelegate alloc] initWithHandlers:std::move(handlers)];
  application.delegate = delegate_;
  [application setActivationPolicy:NSApplicationActivationPolicyAccessory];
  [application run];
  return EXIT_SUCCESS;
}

void HLMacApplication::terminate() { [NSApplication.sharedApplication terminate:nil]; }

void HLMacApplication::activate() { [NSApplication.sharedApplication activateIgnoringOtherApps:YES]; }

void HLMacApplication::setDarkAppearance() {
  NSApplication.sharedApplication.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
}

void HLMacApplication::beep() { NSBeep(); }

std::optional<HLEvent> HLMacApplication::currentEvent() {
  NSEvent* event = NSApplication.sharedApplication.currentEvent;
  if (event == nil) return std::nullopt;
  return HLEvent{static_cast<std::int64_t>(event.type), event.modifierFlags};
}

std::unique_ptr<HLKeyMonitor> HLMacApplication::addKeyMonitor(std::function<void(const HLKeyEvent&)> handler) {
  return std::make_unique<KeyMonitor>(std::move(handler));
}
