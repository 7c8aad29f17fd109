// The open notifications of the session bus.
#pragma once

#include <optional>
#include <vector>

#include "platform/linux/notifications/open_notifications.h"

// Knows no notification yet: matches none, lists none, closes none.
class HLSessionNotifications : public HLOpenNotifications {
 public:
  [[nodiscard]] std::vector<std::optional<HLNotificationName>> match(
      const std::vector<HLShownTexts>& banners, const std::optional<std::vector<HLShownTexts>>& tray) override;
  [[nodiscard]] std::optional<std::vector<HLListedNotification>> shown() override;
  [[nodiscard]] bool close(const HLNotificationName& name) override;
};
