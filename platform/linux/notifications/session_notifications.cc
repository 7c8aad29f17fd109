#include "platform/linux/notifications/session_notifications.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cstdint>
#include <utility>

#include "platform/linux/files/linux_user_defaults.h"
#include "platform/linux/notifications/screen_list.h"

namespace {

constexpr const char* kWatches = "HLWatchNotifications";

class Changes : public HLNotificationChanges {
 public:
  Changes(HLNotificationTable& table, const HLNotificationMonitor& monitor)
      : table_(table), monitor_(monitor), event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    table_.startSignaling(event_);
  }
  ~Changes() override {
    table_.stopSignaling(event_);
    if (event_ >= 0) ::close(event_);
  }

  [[nodiscard]] int descriptor() const override { return event_; }
  [[nodiscard]] bool take() override {
    std::uint64_t count = 0;
    (void)!read(event_, &count, sizeof count);
    return event_ >= 0 && monitor_.isWatching();
  }

 private:
  HLNotificationTable& table_;
  const HLNotificationMonitor& monitor_;
  const int event_;
};

}  // namespace

bool HLMayWatchNotifications(HLProcessInfo& process) {
  HLLinuxUserDefaults defaults(HLUserDefaultsPath(process));
  defaults.registerDefaults({{kWatches, true}});
  return HLBooleanDefault(defaults, kWatches);
}

void HLSessionNotifications::prepareToStay() {
  if (stays_ || !mayWatch_()) return;
  stays_ = true;
  monitor_.start();
  // The auto-closer of an application observes the server next, and does not try again.
  monitor_.waitUntilStarted();
}

bool HLSessionNotifications::knows() {
  if (!stays_) return false;
  if (!monitor_.isWatching()) monitor_.start();
  return monitor_.isWatching();
}

std::vector<std::optional<HLNotificationName>> HLSessionNotifications::match(const std::vector<HLShownTexts>& banners) {
  return knows() ? own_.match(banners) : asked_.match(banners);
}

std::optional<std::vector<HLListedNotification>> HLSessionNotifications::shown() {
  if (knows()) return own_.shown();
  const std::optional<HLPresentServer> server = connection_.server();
  if (!server || !server->traits.lacksTree()) return std::nullopt;
  // Some servers say themselves what they show, and all that they show nothing.
  if (auto listed = HLListScreen(connection_, *server, std::nullopt)) return listed;
  return asked_.shown();
}

std::unique_ptr<HLNotificationChanges> HLSessionNotifications::watch() {
  return knows() ? std::make_unique<Changes>(table_, monitor_) : nullptr;
}
