// The open notifications of a session, by the numbers that their server gave them: a banner without a close control is
// closed by its number.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/notifications/notification_server.h"

// Names a notification to its server: by a number of org.freedesktop.Notifications, or, where that is 0, by an
// application and its identifier of org.gtk.Notifications.
struct HLNotificationName {
  std::uint32_t number = 0;
  std::string application;
  std::string identifier;
  bool operator==(const HLNotificationName&) const = default;
};

// The texts that a banner shows, in reading order: the application first where the server shows it, then summary and
// body. Other texts of the server's own, such as a time, may be among them.
using HLShownTexts = std::vector<std::string>;

struct HLListedNotification {
  HLNotificationName name;
  std::string application;
  std::string summary;  // "" if only the running Hushlet knows the texts
  std::string body;
};

// Reports that notifications were posted, changed or closed. One thread.
class HLNotificationChanges {
 public:
  HLNotificationChanges() = default;
  HLNotificationChanges(const HLNotificationChanges&) = delete;
  HLNotificationChanges& operator=(const HLNotificationChanges&) = delete;
  virtual ~HLNotificationChanges() = default;

  // Readable after a change, until take().
  [[nodiscard]] virtual int descriptor() const = 0;

  // Consumes the changes so far. Returns false once no more will be reported. Does not block.
  [[nodiscard]] virtual bool take() = 0;
};

// Thread-safe. Calls may block for the bus's timeout.
class HLOpenNotifications {
 public:
  HLOpenNotifications() = default;
  HLOpenNotifications(const HLOpenNotifications&) = delete;
  HLOpenNotifications& operator=(const HLOpenNotifications&) = delete;
  virtual ~HLOpenNotifications() = default;

  // Begins to learn what is posted, in a process that stays in the session: watch() works afterwards if the bus can be
  // watched. Idempotent. Main thread.
  virtual void prepareToStay() {}

  // Returns for each banner the open notification that it shows, each notification at most once, or nullopt where none
  // matches without doubt.
  [[nodiscard]] virtual std::vector<std::optional<HLNotificationName>> match(
      const std::vector<HLShownTexts>& banners) = 0;

  // Returns what is known of the session's server. Where it lacks a tree, shown() says what is on screen.
  [[nodiscard]] virtual HLServerTraits serverTraits() { return {}; }

  // Returns what is on screen of a server without a usable tree, oldest first, or nullopt if that is not known.
  [[nodiscard]] virtual std::optional<std::vector<HLListedNotification>> shown() = 0;

  // Asks the server to close it. Returns false if the server refused, did not answer, or is known to answer untruly.
  [[nodiscard]] virtual bool close(const HLNotificationName& name) = 0;

  // Returns nullptr where changes are not known, as in a process without a monitor. The result must not outlive this.
  [[nodiscard]] virtual std::unique_ptr<HLNotificationChanges> watch() { return nullptr; }
};
