#include "platform/linux/notifications/session_notifications.h"

std::vector<std::optional<HLNotificationName>> HLSessionNotifications::match(
    const std::vector<HLShownTexts>& banners, const std::optional<std::vector<HLShownTexts>>&) {
  return std::vector<std::optional<HLNotificationName>>(banners.size());
}

std::optional<std::vector<HLListedNotification>> HLSessionNotifications::shown() { return std::nullopt; }

bool HLSessionNotifications::close(const HLNotificationName&) { return false; }
