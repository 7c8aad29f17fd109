#include "platform/linux/settings/linux_trials.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include "platform/linux/files/base_directories.h"
#include "platform/linux/session/bus.h"
#include "platform/linux/settings/do_not_disturb.h"

namespace {

// A server that the bus has to start first takes a while to answer.
constexpr std::chrono::seconds kStartTimeout{10};
constexpr std::int32_t kExpiry = 30'000;  // milliseconds

HLBusCall callOf(const char* member) {
  return {HLNotificationService, "/org/freedesktop/Notifications", HLNotificationService, member};
}

class PostedNotification final : public HLTrialNotification {
 public:
  PostedNotification(std::unique_ptr<HLBus> bus, std::uint32_t number) : bus_(std::move(bus)), number_(number) {}

  void withdraw() override {
    const std::optional<HLServerInformation> server = HLReadServerInformation(*bus_);
    // GNOME's old notification-daemon forgets a notification without hiding it, and shows no other from then on.
    if (!server || (server->name == "Notification Daemon" && server->vendor == "GNOME")) return;
    (void)bus_->call(callOf("CloseNotification"), "u", number_);
  }

 private:
  const std::unique_ptr<HLBus> bus_;
  const std::uint32_t number_;
};

}  // namespace

std::optional<std::string> HLLinuxTrials::serverName() {
  const std::unique_ptr<HLBus> bus = HLBus::openSession();
  const std::optional<HLServerInformation> server = bus ? HLReadServerInformation(*bus) : std::nullopt;
  if (!server || server->name.empty()) return std::nullopt;
  return server->version.empty() ? server->name : server->name + " " + server->version;
}

std::optional<bool> HLLinuxTrials::isDoNotDisturbOn() {
  const std::unique_ptr<HLBus> bus = HLBus::openSession();
  return bus ? HLReadDoNotDisturb(*bus, HLConfigHome(process_)) : std::nullopt;
}

std::unique_ptr<HLTrialNotification> HLLinuxTrials::post(const std::string& title, const std::string& body) {
  std::unique_ptr<HLBus> bus = HLBus::openSession(kStartTimeout);
  if (bus == nullptr) return nullptr;
  (void)bus->call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "StartServiceByName"}, "su",
                  HLNotificationService, std::uint32_t{0});
  // Transient: where the server keeps a history, the trial stays out of it.
  const HLBusReply reply = bus->call(callOf("Notify"), "susssasa{sv}i", displayName_.c_str(), std::uint32_t{0}, "",
                                     title.c_str(), body.c_str(), 0U, 1U, "transient", "b", 1, kExpiry);
  std::uint32_t number = 0;
  if (!reply || sd_bus_message_read_basic(reply.message.get(), 'u', &number) <= 0) return nullptr;
  return std::make_unique<PostedNotification>(std::move(bus), number);
}
