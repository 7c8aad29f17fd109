#include "platform/macos/system/macos_user_notifications.h"

#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

#include <algorithm>

#include "platform/macos/values/values.h"

namespace {

constexpr const char* kNoBundle = "this program was not started from its bundle";
constexpr double kSoonest = 0.001;  // seconds; the system takes none that is not greater than 0

// nil outside a bundle, where asking for it ends the process: it raises an exception that nothing can catch, since the
// system raises it in a block of dispatch_once.
UNUserNotificationCenter* center() {
  if (NSBundle.mainBundle.bundleIdentifier == nil) return nil;
  return UNUserNotificationCenter.currentNotificationCenter;
}

std::optional<std::string> textOf(NSError* error) { return HLOptionalText(error.localizedDescription); }

}  // namespace

void HLMacUserNotifications::requestAuthorization(
    std::function<void(bool granted, std::optional<std::string> error)> answer) {
  @autoreleasepool {
    UNUserNotificationCenter* notifications = center();
    if (notifications == nil) return answer(false, kNoBundle);
    [notifications requestAuthorizationWithOptions:UNAuthorizationOptionBadge | UNAuthorizationOptionSound |
                                                   UNAuthorizationOptionAlert
                                 completionHandler:^(BOOL granted, NSError* error) {
                                   answer(granted != NO, textOf(error));
                                 }];
  }
}

void HLMacUserNotifications::add(const HLUserNotification& notification,
                                 std::function<void(std::optional<std::string> error)> answer) {
  @autoreleasepool {
    UNUserNotificationCenter* notifications = center();
    if (notifications == nil) return answer(kNoBundle);
    UNMutableNotificationContent* content = [[UNMutableNotificationContent alloc] init];
    content.title = HLMakeString(notification.title);
    content.body = HLMakeString(notification.body);
    if (notification.sound) content.sound = UNNotificationSound.defaultSound;
    UNNotificationTrigger* trigger =
        [UNTimeIntervalNotificationTrigger triggerWithTimeInterval:std::max(notification.delay, kSoonest) repeats:NO];
    UNNotificationRequest* request = [UNNotificationRequest requestWithIdentifier:HLMakeString(notification.identifier)
                                                                          content:content
                                                                          trigger:trigger];
    [notifications addNotificationRequest:request
                    withCompletionHandler:^(NSError* error) {
                      answer(textOf(error));
                    }];
  }
}
