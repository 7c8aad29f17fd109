#include "platform/linux/settings/linux_trials.h"

#include <chrono>
#include <cstdint>
#include <utility>

#include "platform/linux/files/base_directories.h"
#include "platform/linux/notifications/server_connection.h"
#include "platform/linux/settings/do_not_disturb.h"

namespace {

// A server that the bus has to start first takes a while to answer.
constexpr std::chrono::seconds kStartTimeout{10};
constexpr std::int32_t kExpiry = 30'000;  // milliseconds

class PostedNotification final : public HLTrialNotification {
 public:
  PostedNotification(std::unique_ptr<HLServerConnection> connection, std::uint32_t number)
      : connection_(std::move(connection)), number_(number) {}

  void withdraw() override { (void)connection_->close({number_, "", ""}); }

 private:
  const std::unique_ptr<HLServerConnection> connection_;
  const std::uint32_t number_;
};

}  // namespace

std::optional<std::string> HLLinuxTrials::serverName() {
  const std::optional<HLPresentServer> server = HLServerConnection().server();
  if (!server || server->information.name.empty()) return std::nullopt;
  const auto& [name, vendor, version] = server->information;
  return version.empty() ? name : name + " " + version;
}

std::optional<std::string> HLLinuxTrials::unclosableReason() {
  const std::optional<HLPresentServer> server = HLServerConnection().server();
  if (!server || server->traits.unclosableReason.empty()) return std::nullopt;
  return std::string(server->traits.unclosableReason);
}

std::optional<bool> HLLinuxTrials::isDoNotDisturbOn() {
  HLServerConnection connection;
  return HLReadDoNotDisturb(connection, HLConfigHome(process_));
}

std::unique_ptr<HLTrialNotification> HLLinuxTrials::post(const std::string& title, const std::string& body) {
  auto connection = std::make_unique<HLServerConnection>(kStartTimeout);
  (void)connection->call(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "StartServiceByName"}, "su",
      HLNotificationService, std::uint32_t{0});
  // Transient: where the server keeps a history, the trial stays out of it.
  const HLBusReply reply = connection->call(
      {HLNotificationService, HLNotificationPath, HLNotificationService, "Notify"}, "susssasa{sv}i",
      displayName_.c_str(), std::uint32_t{0}, "", title.c_str(), body.c_str(), 0U, 1U, "transient", "b", 1, kExpiry);
  std::uint32_t number = 0;
  if (!reply || sd_bus_message_read_basic(reply.message.get(), 'u', &number) <= 0) return nullptr;
  return std::make_unique<PostedNotification>(std::move(connection), number);
}
