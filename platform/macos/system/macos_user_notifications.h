// Notifications posted through the system's user-notification center, which knows programs by their bundles.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/user_notifications.h"

class HLMacUserNotifications : public HLUserNotifications {
 public:
  // Outside a bundle both answer with an error.
  void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) override;
  void add(const HLUserNotification& notification,
           std::function<void(std::optional<std::string> error)> answer) override;
};
