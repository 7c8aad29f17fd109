#include "platform/linux/session/linux_user_notifications.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstring>
#include <memory>
#include <thread>

#include "platform/file_mode_mask.h"
#include "platform/linux/session/bus.h"
#include "platform/threads/due_queue.h"

namespace {

// A service that the bus has to start first takes a while to answer.
constexpr std::chrono::seconds kStartTimeout{10};

// Whether the service is there, if need be because the bus has now started it.
bool haveService(HLBus& bus) {
  const auto ask = [](const char* member) -> HLBusCall {
    return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", member};
  };
  const HLBusReply owned = bus.call(ask("NameHasOwner"), "s", HLNotificationService);
  int isOwned = 0;
  if (owned && sd_bus_message_read_basic(owned.message.get(), 'b', &isOwned) > 0 && isOwned != 0) return true;
  return static_cast<bool>(bus.call(ask("StartServiceByName"), "su", HLNotificationService, std::uint32_t{0}));
}

void post(const HLUserNotification& notification) {
  const std::unique_ptr<HLBus> bus = HLBus::openSession(kStartTimeout);
  if (bus == nullptr) return;
  if (!haveService(*bus)) return;
  const HLBusCall notify{HLNotificationService, HLNotificationPath, HLNotificationService, "Notify"};
  const auto none = static_cast<unsigned>(0);
  const char* sound = notification.sound ? "message-new-instant" : "";
  (void)bus->call(notify, "susssasa{sv}i", "Hushlet", std::uint32_t{0}, "", notification.title.c_str(),
                  notification.body.c_str(), none, 1U, "sound-name", "s", sound, std::int32_t{-1});
}

// In the forked process: lets go of everything that the program's caller may wait for, then waits and posts.
[[noreturn]] void postDetached(const HLUserNotification& notification) {
  setsid();
  HLRestoreFileModeMask();
  if (fork() != 0) _exit(0);  // the one that goes on is nobody's child, and no zombie
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (int standard = 0; standard <= 2; ++standard) dup2(nowhere, standard);
  // A connection that is open here too would keep its bus names when the program ends.
  syscall(SYS_close_range, 3U, ~0U, 0U);
  std::this_thread::sleep_for(std::chrono::microseconds(HLMicrosecondsFromSeconds(notification.delay)));
  post(notification);
  _exit(0);
}

}  // namespace

void HLLinuxUserNotifications::requestAuthorization(
    std::function<void(bool granted, std::optional<std::string> error)> answer) {
  const std::unique_ptr<HLBus> bus = HLBus::openSession(kStartTimeout);
  if (bus == nullptr) return answer(false, "there is no session bus");
  if (!haveService(*bus)) return answer(false, "the session has no notification service");
  answer(true, std::nullopt);
}

void HLLinuxUserNotifications::add(const HLUserNotification& notification,
                                   std::function<void(std::optional<std::string> error)> answer) {
  const pid_t child = fork();
  if (child < 0) return answer(std::string(std::strerror(errno)));
  if (child == 0) postDetached(notification);
  waitpid(child, nullptr, 0);
  answer(std::nullopt);
}
