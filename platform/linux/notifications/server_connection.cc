#include "platform/linux/notifications/server_connection.h"

#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kNamed = "org.gtk.Notifications";
constexpr const char* kNamedPath = "/org/gtk/Notifications";

}  // namespace

HLBusReply HLServerConnection::callWith(const HLBusCall& to, const std::function<int(sd_bus_message*)>& append) {
  const HLLock lock(mutex_);
  const bool isUnresponsive = to.destination == unresponsive_;
  HLBusReply reply;
  reply.outcome = HLBusOutcome::timedOut;
  // Calls that waited for the mutex meanwhile fail instead of waiting for another timeout each.
  if (isUnresponsive && Clock::now() - lastTimeout_ < HLUnresponsiveTimeout) return reply;
  const HLBus::Timeout timeout = isUnresponsive ? HLUnresponsiveTimeout : timeout_;
  if (bus_ == nullptr) bus_ = HLBus::openSession(timeout);
  if (bus_ != nullptr) {
    bus_->setTimeout(timeout);
    reply = bus_->callWith(to, append);
  }
  // A service without an owner is reported like a lost connection.
  if (reply.isLost()) bus_ = nullptr;
  if (reply.outcome == HLBusOutcome::timedOut) {
    unresponsive_ = to.destination;
    lastTimeout_ = Clock::now();
  } else if (isUnresponsive) {
    unresponsive_.clear();
  }
  return reply;
}

std::optional<HLPresentServer> HLServerConnection::server() {
  const HLBusReply owned =
      call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetNameOwner"}, "s",
           HLNotificationService);
  const char* owner = nullptr;
  if (!owned || sd_bus_message_read_basic(owned.message.get(), 's', &owner) <= 0) return std::nullopt;
  {
    const HLLock lock(mutex_);
    if (known_ && known_->owner == owner) return known_;
  }
  const HLBusReply reply = call({owner, HLNotificationPath, HLNotificationService, "GetServerInformation"});
  const char* name = nullptr;
  const char* vendor = nullptr;
  const char* version = nullptr;
  if (!reply || sd_bus_message_read(reply.message.get(), "sss", &name, &vendor, &version) <= 0) return std::nullopt;
  const HLServerInformation information{name, vendor, version};
  const HLPresentServer server{owner, information, HLTraitsOfServer(information)};
  const HLLock lock(mutex_);
  known_ = server;
  return server;
}

bool HLServerConnection::close(const HLNotificationName& name) {
  if (name.number == 0) {
    return static_cast<bool>(call({kNamed, kNamedPath, kNamed, "RemoveNotification"}, "ss", name.application.c_str(),
                                  name.identifier.c_str()));
  }
  const std::optional<HLPresentServer> present = server();
  if (!present || present->traits.trust == HLClosingTrust::untruthful) return false;
  // At the owner's own name: another server's notification of that number is never closed.
  const std::string_view closingName = present->traits.closingName;
  const std::string destination = closingName.empty() ? present->owner : std::string(closingName);
  return static_cast<bool>(
      call({destination, HLNotificationPath, HLNotificationService, "CloseNotification"}, "u", name.number));
}

void HLServerConnection::distrust(const HLPresentServer& server) {
  const HLLock lock(mutex_);
  if (known_ && known_->owner == server.owner) known_->traits.trust = HLClosingTrust::untruthful;
}
