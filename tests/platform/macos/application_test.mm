// Key presses, alerts and the menu: what the program's own hand can press.
#import <AppKit/AppKit.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/macos/macos_host.h"
#include "platform/macos/values/values.h"

namespace {

// Does something again and again while the main loop runs, an alert's and a menu's included.
class Meanwhile {
 public:
  explicit Meanwhile(void (^act)())
      : timer_([NSTimer timerWithTimeInterval:0.05
                                      repeats:YES
                                        block:^(NSTimer*) {
                                          act();
                                        }]) {
    [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSRunLoopCommonModes];
  }
  Meanwhile(const Meanwhile&) = delete;
  Meanwhile& operator=(const Meanwhile&) = delete;
  ~Meanwhile() { [timer_ invalidate]; }

 private:
  NSTimer* const timer_;
};

void press(NSView* view, NSString* title) {
  if ([view isKindOfClass:NSButton.class] && [static_cast<NSButton*>(view).title isEqualToString:title]) {
    [static_cast<NSButton*>(view) performClick:nil];
    return;
  }
  for (NSView* below in view.subviews) press(below, title);
}

// An alert whose button a timer has pressed looks up only when an event comes.
void wake() {
  NSEvent* event = [NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:0
                                         data1:0
                                         data2:0];
  if (event != nil) [NSApplication.sharedApplication postEvent:event atStart:NO];
}

class Application : public testing::Test {
 protected:
  Application() { [NSApplication.sharedApplication setActivationPolicy:NSApplicationActivationPolicyAccessory]; }

  // The answer to an alert of two buttons, one of which is pressed.
  std::size_t answerTo(NSString* button) {
    const Meanwhile pressing(^{
      press(NSApplication.sharedApplication.modalWindow.contentView, button);
      wake();
    });
    return platform_.alerts->runModal({"Title", "Message", {"Download", "Later"}});
  }

  HLMacApplicationHost host_;
  const HLApplicationPlatform& platform_ = host_.platform();
};

TEST_F(Application, AnswersAlertWithPressedButton) {
  EXPECT_EQ(answerTo(@"Download"), 0U);
  EXPECT_EQ(answerTo(@"Later"), 1U);
}

TEST_F(Application, AnswersAbortedAlertWithLastButton) {
  const Meanwhile breaking(^{
    if (NSApplication.sharedApplication.modalWindow != nil) [NSApplication.sharedApplication abortModal];
  });
  EXPECT_EQ(platform_.alerts->runModal({"Title", "Message", {"Download", "Later"}}), 1U);
}

TEST_F(Application, HoldsUpMainQueueDuringAlert) {
  HLMacRunLoop loop;
  std::vector<std::string> order;
  loop.postToMainQueue([&] {
    loop.postToMainQueue([&] { order.emplace_back("later step"); });
    answerTo(@"Later");
    order.emplace_back("answer");
  });
  const double deadline = loop.now() + 20;
  while (order.size() < 2 && loop.now() < deadline) loop.runFor(0.01);
  EXPECT_EQ(order, (std::vector<std::string>{"answer", "later step"}));
}

TEST_F(Application, HearsKeyPressesUntilMonitorEnds) {
  NSEvent* event = [NSEvent keyEventWithType:NSEventTypeKeyDown
                                    location:NSZeroPoint
                               modifierFlags:NSEventModifierFlagCommand | NSEventModifierFlagShift
                                   timestamp:0
                                windowNumber:0
                                     context:nil
                                  characters:@"N"
                 charactersIgnoringModifiers:@"N"
                                   isARepeat:NO
                                     keyCode:45];
  if (event == nil) FAIL() << "no event was made";
  std::vector<HLKeyEvent> seen;
  std::unique_ptr<HLKeyMonitor> monitor;
  monitor = platform_.application->addKeyMonitor([&](const HLKeyEvent& press) {
    seen.push_back(press);
    if (seen.size() == 2) monitor = nullptr;
  });
  for (int i = 0; i < 3; ++i) [NSApplication.sharedApplication sendEvent:event];
  ASSERT_EQ(seen.size(), 2U);
  EXPECT_EQ(seen[0].code, 45);
  EXPECT_EQ(seen[0].modifiers & 0x1E0000, HLModifierCommand | HLModifierShift);
  EXPECT_EQ(seen[0].charactersIgnoringModifiers, "N");
}

TEST_F(Application, OpensItsMenuUntilClosed) {
  int updates = 0;
  int chosen = 0;
  HLStatusItem& item = platform_.statusItem;
  item.install({"tip", {}, {"Hushlet", {{"access", "Set Up", "", [&] { ++chosen; }}, {}, {"", "Quit", "q", {}}}, [&] {
                              ++updates;
                              item.setMenuItem("access", "Allowed", true);
                            }}});
  item.setTitle("HL");

  NSMenu* __block menu = nil;
  const id observer = [NSNotificationCenter.defaultCenter addObserverForName:NSMenuDidBeginTrackingNotification
                                                                      object:nil
                                                                       queue:nil
                                                                  usingBlock:^(NSNotification* notification) {
                                                                    menu = notification.object;
                                                                  }];
  {
    const Meanwhile closing(^{
      [menu cancelTrackingWithoutAnimation];
    });
    item.popUpMenu();
  }
  [NSNotificationCenter.defaultCenter removeObserver:observer];

  EXPECT_GE(updates, 1);
  EXPECT_EQ(chosen, 0);
  ASSERT_EQ(menu.numberOfItems, 3);
  NSMenuItem* access = [menu itemAtIndex:0];
  EXPECT_EQ(HLTextOfString(access.title), "Allowed");
  EXPECT_EQ(access.state, NSControlStateValueOn);
  EXPECT_TRUE([menu itemAtIndex:1].separatorItem);
  EXPECT_TRUE([[menu itemAtIndex:2].keyEquivalent isEqualToString:@"q"]);
  EXPECT_EQ([menu itemAtIndex:2].keyEquivalentModifierMask, NSEventModifierFlagCommand);
  [menu performActionForItemAtIndex:0];
  EXPECT_EQ(chosen, 1);
}

}  // namespace
