#include "daemon/test_notifications.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/format.h"
#include "base/log.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/threads/thread_safety.h"
#include "platform/user_notifications.h"

namespace {

constexpr double kPermissionSeconds = 5;

// The last one consists of words that count against a control: content must not keep a notification on screen.
constexpr std::array<std::string_view, 3> kBodies = {
    "If you can see this, HL should be able to dismiss it.",
    "menu items renamed to say what they do, and the top action now really works",
    "reply open options show view menu item clear menu - content words must not block dismissal"};

struct Permission {
  bool granted = false;
  std::optional<std::string> error;
};

// The answer arrives on another thread, possibly after the timeout.
struct PendingPermission {
  HLMutex mutex;
  Permission permission HL_GUARDED_BY(mutex);
  std::unique_ptr<HLSemaphore> answered = HLCurrentPlatform().runLoop->makeSemaphore();
};

// Returns no permission and no error after a timeout.
Permission askPermission() {
  const auto pending = std::make_shared<PendingPermission>();
  HLCurrentPlatform().userNotifications->requestAuthorization(
      [pending](bool granted, std::optional<std::string> error) {
        {
          const HLLock lock(pending->mutex);
          pending->permission = {granted, std::move(error)};
        }
        pending->answered->signal();
      });
  if (!pending->answered->wait(kPermissionSeconds)) return {};
  const HLLock lock(pending->mutex);
  return pending->permission;
}

void schedule(std::int64_t number) {
  const std::string identifier = HLFormat("hushlet-local-test-%ld", number);
  const HLUserNotification notification{identifier, HLFormat("Dismiss test %ld", number),
                                        std::string(kBodies[static_cast<std::size_t>(number - 1)]),
                                        static_cast<double>(number), true};
  HLCurrentPlatform().userNotifications->add(notification, [identifier](const std::optional<std::string>& error) {
    if (error) {
      HLAppendLog("sendTestNotifications add failed identifier=%@ error=%@", identifier,
                  error->empty() ? "unknown" : error->c_str());
    }
  });
}

}  // namespace

int HLSendTestNotifications() {
  const Permission permission = askPermission();
  if (!permission.granted) {
    HLAppendLog("sendTestNotificationsLaunch scheduled=0 permissionGranted=false error=%@",
                permission.error.value_or("none"));
    return EXIT_SUCCESS;
  }
  constexpr auto kCount = static_cast<std::int64_t>(kBodies.size());
  for (std::int64_t number = 1; number <= kCount; ++number) schedule(number);
  HLAppendLog("sendTestNotificationsLaunch scheduled=%ld permissionGranted=true", kCount);
  return EXIT_SUCCESS;
}
