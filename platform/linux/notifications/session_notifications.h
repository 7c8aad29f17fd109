// The open notifications of the session bus.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/notifications/notification_monitor.h"
#include "platform/linux/notifications/notification_protocol.h"
#include "platform/linux/notifications/notification_table.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/notifications/own_notifications.h"
#include "platform/linux/notifications/server_connection.h"
#include "platform/process_info.h"

// Whether the user's preferences let Hushlet watch notifications. Main thread.
[[nodiscard]] bool HLMayWatchNotifications(HLProcessInfo& process);

// A process that stays watches the bus and knows them itself; while the bus cannot be watched, each question tries
// again. Any other process asks one that stays, if there is one.
class HLSessionNotifications : public HLOpenNotifications {
 public:
  using MayWatch = std::function<bool()>;

  // `mayWatch` is asked when the process is said to stay.
  explicit HLSessionNotifications(MayWatch mayWatch) : mayWatch_(std::move(mayWatch)) {}

  void prepareToStay() override;
  [[nodiscard]] std::vector<std::optional<HLNotificationName>> match(const std::vector<HLShownTexts>& banners) override;
  [[nodiscard]] HLServerTraits serverTraits() override { return own_.serverTraits(); }
  [[nodiscard]] std::optional<std::vector<HLListedNotification>> shown() override;
  [[nodiscard]] bool close(const HLNotificationName& name) override { return connection_.close(name); }
  [[nodiscard]] std::unique_ptr<HLNotificationChanges> watch() override;

 private:
  // Whether this process's table says what is open.
  [[nodiscard]] bool knows();

  const MayWatch mayWatch_;
  HLNotificationTable table_;
  HLServerConnection connection_;
  HLOwnNotifications own_{table_, connection_};
  HLAskedNotifications asked_{connection_};
  std::atomic<bool> stays_ = false;
  HLNotificationMonitor monitor_{table_, own_};  // its thread uses the others
};
