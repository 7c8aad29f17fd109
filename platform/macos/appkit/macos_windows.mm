#include "platform/macos/appkit/macos_windows.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <utility>

#include "platform/macos/appkit/controls.h"
#include "platform/macos/values/values.h"

NS_ASSUME_NONNULL_BEGIN

@interface HLWindowDelegate : NSObject <NSWindowDelegate>
- (instancetype)initWithWillClose:(std::function<void()>)willClose NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@end

NS_ASSUME_NONNULL_END

@implementation HLWindowDelegate {
  std::function<void()> _willClose;
}

- (instancetype)initWithWillClose:(std::function<void()>)willClose {
  self = [super init];
  if (self != nil) _willClose = std::move(willClose);
  return self;
}

- (void)windowWillClose:(NSNotification*)notification {
  const std::function<void()> willClose = _willClose;  // it may end the window, and this with it
  if (willClose) willClose();
}

@end

namespace {

class Window : public HLWindow {
 public:
  explicit Window(HLWindowDescription description)
      : window_([[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, description.width, description.height)
                                            styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                                              backing:NSBackingStoreBuffered
                                                defer:NO]),
        controls_(HLMakeControls(description)),
        width_(description.width),
        delegate_([[HLWindowDelegate alloc] initWithWillClose:std::move(description.willClose)]) {
    window_.releasedWhenClosed = NO;
    window_.title = HLMakeString(description.title);
    window_.delegate = delegate_;
    place(description);
  }

  ~Window() override {
    window_.delegate = nil;
    [window_ orderOut:nil];
  }

  void setLabel(std::string_view name, const std::string& text, HLTextColor color) override {
    NSTextField* field = control<NSTextField>(name);
    field.stringValue = HLMakeString(text);
    field.textColor = HLSystemColor(color);
  }

  void setButtonTitle(std::string_view name, const std::string& title) override {
    control<NSButton>(name).title = HLMakeString(title);
  }

  void setCheckBox(std::string_view name, bool on) override {
    control<NSButton>(name).state = on ? NSControlStateValueOn : NSControlStateValueOff;
  }

  void setEnabled(std::string_view name, bool enabled) override { control<NSControl>(name).enabled = enabled; }

  void fitHeight() override {
    NSView* content = window_.contentView;
    [content layoutSubtreeIfNeeded];
    [window_ setContentSize:NSMakeSize(width_, content.fittingSize.height)];
  }

  void center() override { [window_ center]; }
  void makeKeyAndOrderFront() override {
    [window_ makeKeyAndOrderFront:nil];
    // The system may refuse to make the application the active one; its window is to be seen all the same.
    [window_ orderFrontRegardless];
  }
  void close() override { [window_ close]; }

 private:
  void place(const HLWindowDescription& description) {
    NSView* content = window_.contentView;
    NSStackView* stack = controls_.stack;
    [content addSubview:stack];
    [NSLayoutConstraint activateConstraints:@[
      [stack.leadingAnchor constraintEqualToAnchor:content.leadingAnchor constant:description.sideMargin],
      [stack.trailingAnchor constraintEqualToAnchor:content.trailingAnchor constant:-description.sideMargin],
      [stack.topAnchor constraintEqualToAnchor:content.topAnchor constant:description.verticalMargin],
      [stack.bottomAnchor constraintLessThanOrEqualToAnchor:content.bottomAnchor constant:-description.verticalMargin],
      [content.widthAnchor constraintEqualToConstant:description.width],
    ]];
  }

  // nil, to which every message is sent in vain, for a name that nobody has or that is of another kind.
  template <class T>
  [[nodiscard]] T* control(std::string_view name) const {
    const auto found = controls_.named.find(name);
    if (found == controls_.named.end() || ![found->second isKindOfClass:[T class]]) return nil;
    return static_cast<T*>(found->second);
  }

  NSWindow* const window_;
  const HLControls controls_;
  const double width_;
  HLWindowDelegate* const delegate_;
};

std::optional<std::string> pictureOf(NSView* view) {
  const NSRect bounds = view.bounds;
  NSBitmapImageRep* picture = [view bitmapImageRepForCachingDisplayInRect:bounds];
  if (picture == nil) return std::nullopt;
  [view cacheDisplayInRect:bounds toBitmapImageRep:picture];
  NSData* png = [picture representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
  if (png == nil) return std::nullopt;
  return std::string(static_cast<const char*>(png.bytes), png.length);
}

HLWindowView viewOf(NSWindow* window) {
  NSView* content = window.contentView;
  NSView* frame = content.superview != nil ? content.superview : content;
  HLWindowView view{
      HLTextOfString(window.title), window.visible != NO, frame.bounds.size.width, frame.bounds.size.height, {}};
  view.png = [frame] { return frame == nil ? std::nullopt : pictureOf(frame); };
  return view;
}

}  // namespace

std::unique_ptr<HLWindow> HLMacWindows::makeWindow(HLWindowDescription description) {
  return std::make_unique<Window>(std::move(description));
}

std::vector<HLWindowView> HLMacWindows::views() {
  std::vector<HLWindowView> views;
  for (NSWindow* window in NSApplication.sharedApplication.windows) views.push_back(viewOf(window));
  return views;
}
