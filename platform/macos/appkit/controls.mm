#include "platform/macos/appkit/controls.h"

#include <functional>
#include <utility>
#include <variant>

#include "platform/macos/appkit/action_target.h"
#include "platform/macos/values/values.h"

namespace {

NSFontWeight systemWeight(HLFontWeight weight) {
  switch (weight) {
    case HLFontWeight::regular:
      return NSFontWeightRegular;
    case HLFontWeight::medium:
      return NSFontWeightMedium;
    case HLFontWeight::semibold:
      return NSFontWeightSemibold;
  }
}

class Maker {
 public:
  Maker(HLControls& controls, double width) : controls_(controls), width_(width) {}

  NSView* operator()(const HLLabel& label) {
    NSTextField* field = [NSTextField wrappingLabelWithString:HLMakeString(label.text)];
    field.selectable = NO;
    field.font = [NSFont systemFontOfSize:label.size weight:systemWeight(label.weight)];
    field.textColor = HLSystemColor(label.color);
    field.preferredMaxLayoutWidth = width_;  // beyond which its lines break; its height follows from that
    return keep(label.name, field);
  }

  NSView* operator()(const HLButton& button) {
    NSButton* made = [NSButton buttonWithTitle:HLMakeString(button.title)
                                        target:target([action = button.action](id) {
                                          if (action) action();
                                        })
                                        action:@selector(invoke:)];
    made.bezelStyle = NSBezelStyleRounded;
    made.keyEquivalent = HLMakeString(button.keyEquivalent);
    return keep(button.name, made);
  }

  NSView* operator()(const HLCheckBox& box) {
    NSButton* made = [NSButton checkboxWithTitle:HLMakeString(box.title)
                                          target:target([action = box.action](id sender) {
                                            if (action)
                                              action(static_cast<NSButton*>(sender).state == NSControlStateValueOn);
                                          })
                                          action:@selector(invoke:)];
    return keep(box.name, made);
  }

  NSView* operator()(const HLRow& row) {
    NSStackView* stack = [[NSStackView alloc] init];
    stack.translatesAutoresizingMaskIntoConstraints = NO;
    stack.orientation = NSUserInterfaceLayoutOrientationHorizontal;
    stack.spacing = row.spacing;
    for (const HLControl& control : row.controls) [stack addArrangedSubview:std::visit(*this, control)];
    return stack;
  }

 private:
  HLActionTarget* target(std::function<void(id)> action) {
    HLActionTarget* made = [[HLActionTarget alloc] initWithAction:std::move(action)];
    [controls_.targets addObject:made];
    return made;
  }

  NSView* keep(const std::string& name, NSControl* control) {
    control.translatesAutoresizingMaskIntoConstraints = NO;
    if (!name.empty()) controls_.named[name] = control;
    return control;
  }

  HLControls& controls_;
  const double width_;  // of the stack
};

}  // namespace

NSColor* HLSystemColor(HLTextColor color) {
  switch (color) {
    case HLTextColor::label:
      return NSColor.labelColor;
    case HLTextColor::secondary:
      return NSColor.secondaryLabelColor;
    case HLTextColor::green:
      return NSColor.systemGreenColor;
    case HLTextColor::orange:
      return NSColor.systemOrangeColor;
  }
}

HLControls HLMakeControls(const HLWindowDescription& description) {
  HLControls controls{[[NSStackView alloc] init], {}, [[NSMutableArray alloc] init]};
  NSStackView* stack = controls.stack;
  stack.translatesAutoresizingMaskIntoConstraints = NO;
  stack.orientation = NSUserInterfaceLayoutOrientationVertical;
  stack.alignment = NSLayoutAttributeLeading;
  Maker maker(controls, description.width - 2 * description.sideMargin);
  for (const HLStackItem& item : description.stack) {
    NSView* view = std::visit(maker, item.what);
    [stack addArrangedSubview:view];
    [stack setCustomSpacing:item.after afterView:view];
    if (item.fullWidth) [view.widthAnchor constraintEqualToAnchor:stack.widthAnchor].active = YES;
  }
  return controls;
}
