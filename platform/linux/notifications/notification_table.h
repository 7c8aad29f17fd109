// The notifications that are open in a session, kept in memory only.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/linux/notifications/open_notifications.h"
#include "platform/threads/thread_safety.h"

// What an application asked its server to show.
struct HLPostedNotification {
  std::string application;
  std::string summary;
  std::string body;                           // as sent, with its markup
  bool isCut = false;                         // a text was longer than HLNotificationTextLimit
  int urgency = 1;                            // 0 to 2
  std::optional<std::int32_t> expireTimeout;  // in milliseconds; -1 is the server's choice, 0 is never
};

// Stores at most HLNotificationTextLimit bytes of `text`, whole characters only, and notes if that was not all.
inline constexpr std::size_t HLNotificationTextLimit = 4096;
void HLStoreNotificationText(std::string_view text, std::string& stored, bool& isCut);

struct HLOpenNotification {
  HLNotificationName name;
  HLPostedNotification posted;
  std::chrono::steady_clock::time_point time;  // of the posting
};
using HLOpenNotificationRef = std::shared_ptr<const HLOpenNotification>;

// Identifies a method call on the bus.
struct HLCallIdentity {
  std::string caller;  // the unique name
  std::uint64_t serial = 0;
  bool operator==(const HLCallIdentity&) const = default;
};

// Fed with what is seen on the session bus, in that order. A call counts once its reply has come.
//
// Memory is bounded: at most kMostOpen notifications, as many unanswered calls, and kMostBytes of texts. Beyond that
// the oldest are forgotten. Thread-safe.
class HLNotificationTable {
 public:
  static constexpr std::size_t kMostOpen = 1000;
  static constexpr std::size_t kMostBytes = std::size_t{2} << 20;
  static constexpr std::size_t kMostConfirmed = 64;
  using Time = std::chrono::steady_clock::time_point;

  // Notify was called. The caller must await the reply: without one the number stays unknown.
  void notifyCalled(HLCallIdentity call, HLPostedNotification posted);
  // CloseNotification was called. Its successful reply closes the notification, as NotificationClosed does.
  void closeCalled(HLCallIdentity call, std::uint32_t number);
  // The server replied. `number` is that of the reply, 0 if it has none. Replies to other calls change nothing.
  void answered(const HLCallIdentity& call, std::uint32_t number, Time now);
  void refused(const HLCallIdentity& call);
  void closed(std::uint32_t number);
  // The owner of org.freedesktop.Notifications is another process, or none (""). Numbers begin again. A process that
  // comes where there was none replies to the calls before: the first of them may have started it.
  void setServer(const std::string& owner);

  // The same for org.gtk.Notifications, whose calls have no reply and whose server reports no closing.
  void addNamed(const std::string& application, const std::string& identifier, HLPostedNotification posted, Time now);
  void removeNamed(const std::string& application, const std::string& identifier);
  void setNamedServer(const std::string& owner);

  [[nodiscard]] std::string server() const;
  [[nodiscard]] std::string namedServer() const;
  // Oldest first. A notification that replaces another counts as posted anew.
  [[nodiscard]] std::vector<HLOpenNotificationRef> open() const;
  // The notifications that the present server last said it closed on request, oldest first, with the time of its reply.
  struct Confirmed {
    HLOpenNotificationRef notification;
    Time time;
  };
  [[nodiscard]] std::vector<Confirmed> confirmedClosed() const;

  [[nodiscard]] std::size_t waitingCount() const;
  // Of all texts in the table.
  [[nodiscard]] std::size_t byteCount() const;

  // Writes to an event descriptor whenever open() changes, until stopped. The descriptor stays the caller's.
  void startSignaling(int eventDescriptor);
  void stopSignaling(int eventDescriptor);

 private:
  struct Waiting {
    HLCallIdentity call;
    bool closes = false;
    HLOpenNotificationRef closing;  // nullptr if the number is not in the table
    HLPostedNotification posted;
  };
  using Order = std::uint64_t;
  struct ByName {
    bool operator()(const HLNotificationName& a, const HLNotificationName& b) const {
      return std::tie(a.number, a.application, a.identifier) < std::tie(b.number, b.application, b.identifier);
    }
  };

  [[nodiscard]] std::vector<HLOpenNotificationRef> copyOpen() const HL_REQUIRES(mutex_);
  void wait(Waiting waiting) HL_REQUIRES(mutex_);
  [[nodiscard]] std::optional<Waiting> takeWaiting(const HLCallIdentity& call) HL_REQUIRES(mutex_);
  void insert(HLNotificationName name, HLPostedNotification posted, Time now) HL_REQUIRES(mutex_);
  [[nodiscard]] HLOpenNotificationRef find(const HLNotificationName& name) const HL_REQUIRES(mutex_);
  bool erase(const HLNotificationName& name) HL_REQUIRES(mutex_);
  void eraseAll(bool isNumbered) HL_REQUIRES(mutex_);
  void forgetBeyondLimits() HL_REQUIRES(mutex_);
  void forgetFirstWaiting() HL_REQUIRES(mutex_);
  void signalChange() HL_REQUIRES(mutex_);

  mutable HLMutex mutex_;
  std::string server_ HL_GUARDED_BY(mutex_);
  std::string namedServer_ HL_GUARDED_BY(mutex_);
  std::deque<Waiting> waiting_ HL_GUARDED_BY(mutex_);
  std::map<Order, HLOpenNotificationRef> open_ HL_GUARDED_BY(mutex_);
  std::map<HLNotificationName, Order, ByName> orders_ HL_GUARDED_BY(mutex_);
  Order last_ HL_GUARDED_BY(mutex_) = 0;
  std::size_t bytes_ HL_GUARDED_BY(mutex_) = 0;
  std::deque<Confirmed> confirmed_ HL_GUARDED_BY(mutex_);
  std::vector<int> signaled_ HL_GUARDED_BY(mutex_);
};
