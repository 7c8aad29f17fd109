// Open notifications as this process has seen them posted.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/notifications/notification_table.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/notifications/server_connection.h"

// A server that is not known by name is trusted until it shows a banner that it said it closed two seconds ago.
class HLOwnNotifications : public HLOpenNotifications {
 public:
  // Both must outlive this.
  HLOwnNotifications(HLNotificationTable& table, HLServerConnection& connection)
      : table_(table), connection_(connection) {}

  [[nodiscard]] std::vector<std::optional<HLNotificationName>> match(const std::vector<HLShownTexts>& banners) override;
  [[nodiscard]] HLServerTraits serverTraits() override;
  [[nodiscard]] std::optional<std::vector<HLListedNotification>> shown() override;
  [[nodiscard]] bool close(const HLNotificationName& name) override { return connection_.close(name); }

 private:
  [[nodiscard]] bool showsWhatItClosed(const std::vector<HLShownTexts>& banners,
                                       const std::vector<HLOpenNotificationRef>& open) const;

  HLNotificationTable& table_;
  HLServerConnection& connection_;
};
