// Notifications that this program posts itself.
#pragma once

#include <functional>
#include <optional>
#include <string>

struct HLUserNotification {
  std::string identifier;
  std::string title;
  std::string body;
  double delay = 0;  // seconds from now
  bool sound = false;
};

// The answers come once, on any thread, perhaps before the call returns and perhaps never.
class HLUserNotifications {
 public:
  HLUserNotifications() = default;
  HLUserNotifications(const HLUserNotifications&) = delete;
  HLUserNotifications& operator=(const HLUserNotifications&) = delete;
  virtual ~HLUserNotifications() = default;

  // Asks the user, who may have answered before, for permission to show alerts, play sounds and badge.
  virtual void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) = 0;

  // Hands a notification over; it is shown even if this process ends before its time has come.
  virtual void add(const HLUserNotification& notification,
                   std::function<void(std::optional<std::string> error)> answer) = 0;
};
