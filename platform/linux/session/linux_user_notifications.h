// Notifications posted through the desktop's notification service.
#pragma once

#include "platform/user_notifications.h"

class HLLinuxUserNotifications final : public HLUserNotifications {
 public:
  // There is nobody to ask: permission means that the desktop has such a service, or can start one.
  void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) override;

  // The service knows no delay, so a detached process waits and posts; what comes of that is not known here.
  void add(const HLUserNotification& notification,
           std::function<void(std::optional<std::string> error)> answer) override;
};
