#include "platform/macos/appkit/macos_status_item.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <utility>

#include "platform/macos/appkit/action_target.h"
#include "platform/macos/values/values.h"

NS_ASSUME_NONNULL_BEGIN

@interface HLMenuDelegate : NSObject <NSMenuDelegate>
- (instancetype)initWithNeedsUpdate:(std::function<void()>)needsUpdate NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@end

NS_ASSUME_NONNULL_END

@implementation HLMenuDelegate {
  std::function<void()> _needsUpdate;
}

- (instancetype)initWithNeedsUpdate:(std::function<void()>)needsUpdate {
  self = [super init];
  if (self != nil) _needsUpdate = std::move(needsUpdate);
  return self;
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
  if (_needsUpdate) _needsUpdate();
}

@end

HLMacStatusItem::HLMacStatusItem() = default;

HLMacStatusItem::~HLMacStatusItem() {
  if (item_ != nil) [NSStatusBar.systemStatusBar removeStatusItem:item_];
}

void HLMacStatusItem::install(HLStatusItemDescription description) {
  item_ = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];

  menu_ = [[NSMenu alloc] initWithTitle:HLMakeString(description.menu.title)];
  menuDelegate_ = [[HLMenuDelegate alloc] initWithNeedsUpdate:std::move(description.menu.needsUpdate)];
  menu_.delegate = menuDelegate_;
  for (HLMenuItem& item : description.menu.items) addMenuItem(std::move(item));

  target_ = [[HLActionTarget alloc] initWithAction:[action = std::move(description.action)](id) {
    if (action) action();
  }];
  NSStatusBarButton* button = item_.button;
  button.target = target_;
  button.action = @selector(invoke:);
  setToolTip(description.toolTip);
  [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
}

void HLMacStatusItem::addMenuItem(HLMenuItem description) {
  if (description.title.empty()) {
    [menu_ addItem:NSMenuItem.separatorItem];
    return;
  }
  NSMenuItem* item = [menu_ addItemWithTitle:HLMakeString(description.title)
                                      action:@selector(invoke:)
                               keyEquivalent:HLMakeString(description.keyEquivalent)];
  HLActionTarget* target = [[HLActionTarget alloc] initWithAction:[action = std::move(description.action)](id) {
    if (action) action();
  }];
  item.target = target;
  item.representedObject = target;  // keeps it
  if (!description.name.empty()) menuItems_[description.name] = item;
}

void HLMacStatusItem::setTitle(const std::string& title) { item_.button.title = HLMakeString(title); }

void HLMacStatusItem::setImage(const HLSymbolImage& image) {
  NSImage* drawing = [NSImage imageWithSystemSymbolName:HLMakeString(image.name)
                               accessibilityDescription:HLMakeString(image.accessibilityDescription)];
  [drawing setTemplate:image.isTemplate];
  item_.button.image = drawing;
  item_.button.imagePosition = NSImageLeading;
}

void HLMacStatusItem::setToolTip(const std::string& toolTip) { item_.button.toolTip = HLMakeString(toolTip); }

void HLMacStatusItem::setMenuItem(std::string_view name, const std::string& title, bool on) {
  const auto found = menuItems_.find(name);
  if (found == menuItems_.end()) return;
  found->second.title = HLMakeString(title);
  found->second.state = on ? NSControlStateValueOn : NSControlStateValueOff;
}

void HLMacStatusItem::popUpMenu() {
// What is recommended instead, the item's own menu, would take the left click too.
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
  [item_ popUpStatusItemMenu:menu_];
#pragma clang diagnostic pop
}
