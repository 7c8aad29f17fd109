// The session's notification server, as a client of it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/notifications/notification_server.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/session/bus.h"
#include "platform/threads/thread_safety.h"

struct HLPresentServer {
  std::string owner;  // the unique name
  HLServerInformation information;
  HLServerTraits traits;
};

// Opens its connection to the session bus when it is first asked, and again after it was lost. Starts no server.
// Thread-safe. A call blocks for the timeout at most. One to a process that has let the last call to it time out fails
// at once for HLUnresponsiveTimeout, and from then on blocks for that time at most, until the process answers again.
class HLServerConnection {
 public:
  explicit HLServerConnection(HLBus::Timeout timeout = HLBusTimeout) : timeout_(timeout) {}

  // Returns nullopt if there is no server or it does not answer. A server is asked for its information once.
  [[nodiscard]] std::optional<HLPresentServer> server();

  // Asks the server to close a notification, or, if it has no number, to remove it. Returns false if the server
  // refused, did not answer, or is known to answer untruly.
  [[nodiscard]] bool close(const HLNotificationName& name);

  // A call to the server or another process of the session, as by HLBus::callWith() and HLBus::call().
  [[nodiscard]] HLBusReply callWith(const HLBusCall& to, const std::function<int(sd_bus_message*)>& append);
  template <class... Argument>
  [[nodiscard]] HLBusReply call(const HLBusCall& to, const char* types = "", Argument... arguments) {
    return callWith(to, [&](sd_bus_message* message) { return sd_bus_message_append(message, types, arguments...); });
  }

  // Has that server known as untruthful, as long as it is the present one.
  void distrust(const HLPresentServer& server);

 private:
  const HLBus::Timeout timeout_;
  HLMutex mutex_;
  std::unique_ptr<HLBus> bus_ HL_GUARDED_BY(mutex_);
  std::string unresponsive_ HL_GUARDED_BY(mutex_);  // the destination that has let a call time out; "" if it answered
  std::chrono::steady_clock::time_point lastTimeout_ HL_GUARDED_BY(mutex_){};
  std::optional<HLPresentServer> known_ HL_GUARDED_BY(mutex_);
};
