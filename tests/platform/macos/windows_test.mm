// Windows and the status item, as far as they can be looked at without a user.
#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/macos/appkit/controls.h"
#include "platform/macos/macos_host.h"
#include "platform/macos/values/values.h"

namespace {

HLWindowDescription description() {
  HLWindowDescription window;
  window.title = "Set Up";
  window.width = 460;
  window.height = 360;
  window.sideMargin = 24;
  window.verticalMargin = 22;
  const std::string text =
      "It only looks at Notification Center, and nothing leaves your Mac. It only looks there, and "
      "nothing leaves.";
  window.stack = {
      {HLLabel{"heading", "Heading", 20, HLFontWeight::semibold}, 6, false},
      {HLLabel{"text", text}, 12, true},
      {HLRow{{HLLabel{"value", "Not allowed yet", 15}, HLButton{"record", "Record", "", {}}}, 10}, 18, false},
      {HLCheckBox{"box", "Open at Login", {}}, 0, false}};
  return window;
}

std::vector<NSTextField*> labelsBelow(NSView* view) {
  std::vector<NSTextField*> labels;
  if ([view isKindOfClass:NSTextField.class]) labels.push_back(static_cast<NSTextField*>(view));
  for (NSView* below in view.subviews) {
    for (NSTextField* label : labelsBelow(below)) labels.push_back(label);
  }
  return labels;
}

class Windows : public testing::Test {
 protected:
  Windows() { [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyAccessory]; }

  HLMacApplicationHost host_;
  const HLApplicationPlatform& platform_ = host_.platform();

  [[nodiscard]] std::optional<HLWindowView> viewNamed(const std::string& title) {
    for (HLWindowView& view : platform_.windows->views()) {
      if (view.title == title) return std::move(view);
    }
    return std::nullopt;
  }

  [[nodiscard]] static NSView* contentOf(NSString* title) {
    for (NSWindow* window in NSApplication.sharedApplication.windows) {
      if ([window.title isEqualToString:title]) return window.contentView;
    }
    return nil;
  }
};

TEST_F(Windows, FollowDescribedWidthAndTextHeight) {
  const auto window = platform_.windows->makeWindow(description());
  window->fitHeight();
  const double before = viewNamed("Set Up")->height;
  EXPECT_EQ(viewNamed("Set Up")->width, 460);
  EXPECT_LT(before, 360);
  std::string text;
  for (int i = 0; i < 200; ++i) text += "many words ";
  window->setLabel("text", text, HLTextColor::secondary);
  window->fitHeight();
  EXPECT_GT(viewNamed("Set Up")->height, before);
  EXPECT_EQ(viewNamed("Set Up")->width, 460);
}

TEST_F(Windows, ShowTheWholeOfTheirTexts) {
  const auto window = platform_.windows->makeWindow(description());
  window->fitHeight();
  NSView* content = contentOf(@"Set Up");
  EXPECT_NEAR(NSMinY(content.subviews.firstObject.frame), 22, 1);  // the margin below the stack
  const std::vector<NSTextField*> labels = labelsBelow(content);
  ASSERT_EQ(labels.size(), 3U);
  for (NSTextField* label : labels) {
    const NSSize size = label.frame.size;
    const NSSize needed = [label.cell cellSizeForBounds:NSMakeRect(0, 0, size.width, 10000)];
    const NSSize line = [NSTextField labelWithAttributedString:label.attributedStringValue].fittingSize;
    const bool breaks = label == labels[1];
    EXPECT_GE(size.height + 0.5, needed.height) << label.stringValue.UTF8String;
    EXPECT_EQ(size.height > 1.5 * line.height, breaks) << label.stringValue.UTF8String;
    EXPECT_TRUE(NSContainsRect(content.bounds, [label convertRect:label.bounds toView:content]));
  }
}

TEST_F(Windows, AreVisibleUntilTheyReportClosing) {
  int closed = 0;
  HLWindowDescription described = description();
  described.willClose = [&] { ++closed; };
  const auto window = platform_.windows->makeWindow(std::move(described));
  EXPECT_FALSE(viewNamed("Set Up")->visible);
  for (int round = 1; round <= 2; ++round) {
    window->center();
    window->makeKeyAndOrderFront();
    EXPECT_TRUE(viewNamed("Set Up")->visible);
    window->close();
    EXPECT_FALSE(viewNamed("Set Up")->visible);
    EXPECT_EQ(closed, round);
  }
}

TEST_F(Windows, GiveTheirPicture) {
  const auto window = platform_.windows->makeWindow(description());
  window->makeKeyAndOrderFront();
  const std::optional<std::string> png = viewNamed("Set Up")->png();
  ASSERT_TRUE(png.has_value());
  EXPECT_TRUE(png->starts_with("\x89PNG"));
}

TEST_F(Windows, IgnoreUnknownControlNames) {
  const auto window = platform_.windows->makeWindow(description());
  window->setLabel("nobody", "text", HLTextColor::green);
  window->setButtonTitle("heading", "text");
  window->setCheckBox("nobody", true);
  window->setEnabled("nobody", false);
}

TEST_F(Windows, HaveTheControlsOfTheirDescription) {
  int pressed = 0;
  bool on = false;
  HLWindowDescription described = description();
  described.stack = {{HLButton{"done", "Done", "\r", [&] { ++pressed; }}, 12, false},
                     {HLCheckBox{"box", "Box", [&](bool state) { on = state; }}, 0, false}};
  const HLControls controls = HLMakeControls(described);
  NSButton* done = static_cast<NSButton*>(controls.named.at("done"));
  EXPECT_TRUE([done.keyEquivalent isEqualToString:@"\r"]);
  [done performClick:nil];
  EXPECT_EQ(pressed, 1);
  NSButton* box = static_cast<NSButton*>(controls.named.at("box"));
  [box performClick:nil];
  EXPECT_TRUE(on);
  EXPECT_EQ([controls.stack customSpacingAfterView:done], 12);
}

TEST_F(Windows, StandBesideAStatusItem) {
  HLStatusItemDescription item;
  item.toolTip = "tip";
  item.menu = {"Hushlet", {{"dismiss", "Dismiss Notifications", "", {}}, {}, {"quit", "Quit", "q", {}}}, {}};
  platform_.statusItem->install(std::move(item));
  platform_.statusItem->setTitle("HL");
  for (const char* symbol : {"bell.slash", "exclamationmark.triangle"}) {
    platform_.statusItem->setImage({symbol, true, "Hushlet"});
    EXPECT_NE([NSImage imageWithSystemSymbolName:HLMakeString(symbol) accessibilityDescription:nil], nil) << symbol;
  }
  platform_.statusItem->setMenuItem("dismiss", "Dismiss", true);
  platform_.statusItem->setMenuItem("nobody", "Nothing", true);
}

}  // namespace
