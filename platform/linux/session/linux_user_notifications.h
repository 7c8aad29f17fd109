// Notifications posted through the desktop's notification service.
#pragma once

#include "platform/user_notifications.h"

class HLLinuxUserNotifications final : public HLUserNotifications {
 public:
  // No user is asked: permission means that the desktop has such a service or can start one.
  void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) override;

  // The service cannot delay, so a detached process waits and posts; its errors are not reported.
  void add(const HLUserNotification& notification,
           std::function<void(std::optional<std::string> error)> answer) override;
};
