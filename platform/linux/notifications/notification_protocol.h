// Questions of one Hushlet process to another about open notifications (docs/linux-backend.md).
#pragma once

#include <systemd/sd-bus.h>

#include <cstddef>
#include <optional>
#include <vector>

#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/notifications/server_connection.h"

inline constexpr const char* HLNotificationsName = "com.tessaly.hushlet.Notifications";
inline constexpr const char* HLNotificationsPath = "/com/tessaly/hushlet/Notifications";

// A question with more is refused, and the asking process does not ask about more.
inline constexpr std::size_t HLMostBannersAsked = 256;
inline constexpr std::size_t HLMostTextsAsked = 16;
inline constexpr std::size_t HLLongestTextAsked = 16384;

// Answers a question that arrived on a connection; other messages for the path get an error. `answers` outlives the
// connection. Returns a negative number if the connection cannot take it.
[[nodiscard]] int HLServeNotifications(sd_bus* bus, HLOpenNotifications& answers);

// Asks whoever has HLNotificationsName. Thread-safe.
class HLAskedNotifications : public HLOpenNotifications {
 public:
  // The connection must outlive this.
  explicit HLAskedNotifications(HLServerConnection& connection) : connection_(connection) {}

  [[nodiscard]] std::vector<std::optional<HLNotificationName>> match(const std::vector<HLShownTexts>& banners) override;
  // Without summaries and bodies.
  [[nodiscard]] std::optional<std::vector<HLListedNotification>> shown() override;
  // Nobody else closes for this process.
  [[nodiscard]] bool close(const HLNotificationName&) override { return false; }

 private:
  HLServerConnection& connection_;
};
