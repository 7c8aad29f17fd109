#include "platform/linux/notifications/notification_monitor.h"

#include <malloc.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <utility>

#include "platform/linux/notifications/bus_events.h"
#include "platform/linux/notifications/notification_protocol.h"
#include "platform/linux/session/bus.h"
#include "platform/threads/thread_start.h"

namespace {

HLBusCall toBus(const char* member, const char* interface = "org.freedesktop.DBus") {
  return {"org.freedesktop.DBus", "/org/freedesktop/DBus", interface, member};
}

// Messages carry images of megabytes. From this size on a block is returned to the system when it is freed; by default
// the C library raises this size to the largest block so far, and keeps what is smaller.
void returnLargeBlocks() {
#ifdef M_MMAP_THRESHOLD
  constexpr int kLarge = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, kLarge);
#endif
}

bool becomeMonitor(HLBus& bus) {
  const HLBusReply reply =
      bus.callWith(toBus("BecomeMonitor", "org.freedesktop.DBus.Monitoring"), [](sd_bus_message* message) {
        sd_bus_message_open_container(message, 'a', "s");
        for (const char* rule : HLMonitorRules) sd_bus_message_append(message, "s", rule);
        sd_bus_message_close_container(message);
        return sd_bus_message_append(message, "u", std::uint32_t{0});
      });
  return static_cast<bool>(reply);
}

// Returns "" if nobody owns the name.
std::string ownerOf(HLBus& bus, const char* name) {
  const HLBusReply reply = bus.call(toBus("GetNameOwner"), "s", name);
  const char* owner = nullptr;
  return reply && sd_bus_message_read_basic(reply.message.get(), 's', &owner) > 0 ? owner : "";
}

// Feeds what has arrived, but no more than a burst of it. Returns a negative number once the connection is lost, 0 if
// nothing is left. Passing each message out keeps sd-bus from answering the calls of others.
int feed(HLBus& monitor, HLNotificationTable& table) {
  constexpr int kBurst = 256;
  for (int i = 0; i < kBurst; ++i) {
    sd_bus_message* received = nullptr;
    const int processed = sd_bus_process(monitor.handle(), &received);
    const HLBusMessage message(received);
    if (processed <= 0) return processed;
    if (message != nullptr) HLFeedTable(table, message.get(), std::chrono::steady_clock::now());
  }
  return 1;
}

// Answers at most one question.
int serve(HLBus& service) { return sd_bus_process(service.handle(), nullptr); }

pollfd pollEntry(const HLBus& bus) {
  const int events = sd_bus_get_events(bus.handle());
  return {bus.descriptor(), static_cast<short>(events < 0 ? POLLIN : events), 0};
}

}  // namespace

HLNotificationMonitor::~HLNotificationMonitor() {
  std::thread thread;
  {
    const HLLock lock(mutex_);
    thread = std::move(thread_);
  }
  const std::uint64_t one = 1;
  if (stop_ >= 0) (void)!write(stop_, &one, sizeof one);
  if (thread.joinable()) thread.join();
  if (stop_ >= 0) close(stop_);
}

void HLNotificationMonitor::start() {
  const HLLock lock(mutex_);
  if (isRunning_) return;
  if (thread_.joinable()) thread_.join();  // it has ended, or is about to
  if (stop_ < 0) stop_ = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (stop_ < 0) return;
  returnLargeBlocks();
  thread_ = HLTryStartThread([this] { run(); });
  isRunning_ = thread_.joinable();
  if (isRunning_) pthread_setname_np(thread_.native_handle(), "notifications");
}

void HLNotificationMonitor::waitUntilStarted() {
  const auto deadline = std::chrono::steady_clock::now() + HLBusTimeout;
  const HLLock lock(mutex_);
  while (isRunning_ && !isWatching_ && std::chrono::steady_clock::now() < deadline)
    changed_.waitUntil(mutex_, deadline);
}

bool HLNotificationMonitor::isWatching() const {
  const HLLock lock(mutex_);
  return isWatching_;
}

void HLNotificationMonitor::setWatching(bool isWatching) {
  const HLLock lock(mutex_);
  isWatching_ = isWatching;
  changed_.notifyAll();
}

void HLNotificationMonitor::run() {
  watch();
  setWatching(false);
  table_.setServer("");
  table_.setNamedServer("");
  const HLLock lock(mutex_);
  isRunning_ = false;
  changed_.notifyAll();
}

void HLNotificationMonitor::watch() {
  const std::unique_ptr<HLBus> monitor = HLBus::openSession();
  const std::unique_ptr<HLBus> service = HLBus::openSession();
  if (monitor == nullptr || service == nullptr || !becomeMonitor(*monitor)) return;
  // Changes since BecomeMonitor are received after this and lead to the same owners.
  table_.setServer(ownerOf(*service, HLNotificationService));
  table_.setNamedServer(ownerOf(*service, "org.gtk.Notifications"));
  setWatching(true);
  if (HLServeNotifications(service->handle(), answers_) < 0) return;
  for (;;) {
    const int fed = feed(*monitor, table_);
    const int served = serve(*service);
    if (fed < 0 || served < 0) return;
    std::array<pollfd, 3> entries = {pollEntry(*monitor), pollEntry(*service), {stop_, POLLIN, 0}};
    if (poll(entries.data(), entries.size(), fed > 0 || served > 0 ? 0 : -1) < 0 && errno != EINTR) return;
    if (entries.back().revents != 0) return;
  }
}
