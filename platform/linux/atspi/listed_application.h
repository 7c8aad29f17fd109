// A notification server without a usable accessibility tree: its banners are made from the list of open notifications.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/linux/atspi/shown_application.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/session/process_watch.h"

class HLListedApplication : public HLShownApplication {
 public:
  // `notifications` must outlive this.
  HLListedApplication(std::int32_t pid, HLOpenNotifications& notifications)
      : process_(pid), notifications_(notifications) {}

  [[nodiscard]] std::unique_ptr<const Interface> read() override;
  [[nodiscard]] HLAXError perform(const Interface& interface, const HLMappedAction& action) override;
  [[nodiscard]] std::vector<HLEventSource> watch() override;
  [[nodiscard]] bool hasEnded() const override { return process_.hasEnded(); }
  [[nodiscard]] std::int32_t pid() const override { return process_.pid(); }

 private:
  const HLProcessWatch process_;
  HLOpenNotifications& notifications_;
};

// Returns one window that contains a banner for each notification, in that order; no window if there are none. Each
// banner is closed by its notification's name. Pure.
[[nodiscard]] HLShownApplication::Interface HLInterfaceOfNotifications(
    const std::vector<HLListedNotification>& notifications);
