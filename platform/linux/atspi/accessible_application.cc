#include "platform/linux/atspi/accessible_application.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <variant>

#include "platform/linux/atspi/banners.h"
#include "platform/linux/atspi/closing.h"
#include "platform/linux/atspi/tree_reader.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kRegistry = "org.a11y.atspi.Registry";

// A server that has just started owns its D-Bus service before it registers on the accessibility bus.
constexpr std::chrono::milliseconds kStartupTime{2000};
constexpr std::chrono::milliseconds kStartupPoll{20};

constexpr std::chrono::milliseconds kQueuePoll{60};

// Returns the bus names of all registered applications.
std::vector<std::string> registeredNames(HLBus& bus) {
  std::vector<std::string> names;
  const HLBusReply reply = bus.call({kRegistry, HLAccessibleRootPath, HLAccessibleInterface, "GetChildren"});
  if (!reply || sd_bus_message_enter_container(reply.message.get(), 'a', "(so)") <= 0) return names;
  const char* name = nullptr;
  const char* path = nullptr;
  while (sd_bus_message_read(reply.message.get(), "(so)", &name, &path) > 0) names.emplace_back(name);
  return names;
}

std::string nameOfProcess(HLBus& bus, std::int32_t pid) {
  std::string found;
  for (const std::string& name : registeredNames(bus)) {
    const HLBusCall call{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                         "GetConnectionUnixProcessID"};
    bus.start(
        call,
        [&found, name, pid](const HLBusReply& reply) {
          std::uint32_t owner = 0;
          if (!reply || sd_bus_message_read_basic(reply.message.get(), 'u', &owner) <= 0) return;
          if (static_cast<std::int32_t>(owner) == pid && found.empty()) found = name;
        },
        "s", name.c_str());
  }
  return bus.settle(0) == HLBusOutcome::answered ? found : "";
}

// Returns the AX error of an answer or an error reply to DoAction.
HLAXError errorOf(const HLBusReply& reply) {
  if (!reply) {
    const bool unknown = std::string_view(reply.error).starts_with("org.freedesktop.DBus.Error.Unknown");
    return unknown ? HLAXErrorInvalidElement : HLAXErrorFailure;
  }
  int done = 0;
  sd_bus_message_read_basic(reply.message.get(), 'b', &done);
  return done != 0 ? HLAXErrorSuccess : HLAXErrorFailure;
}

// Applications send only events for which a listener is registered with the registry.
constexpr std::array kWantedEvents = {"object:children-changed", "object:state-changed:showing",
                                      "object:property-change:accessible-name",
                                      "object:property-change:accessible-description", "window:create"};

// Subscribes to the events of the application with that bus name. Returns nullptr if the bus cannot be reached.
std::shared_ptr<HLBus> watchEvents(const std::string& busAddress, const std::string& application) {
  std::shared_ptr<HLBus> bus = HLBus::openBus(busAddress);
  if (bus == nullptr) return nullptr;
  for (const char* interface : {"org.a11y.atspi.Event.Object", "org.a11y.atspi.Event.Window"}) {
    if (!bus->watch("type='signal',sender='" + application + "',interface='" + interface + "'")) return nullptr;
  }
  for (const char* event : kWantedEvents) {
    const HLBusCall call{kRegistry, "/org/a11y/atspi/registry", "org.a11y.atspi.Registry", "RegisterEvent"};
    if (!bus->call(call, "sass", event, 0U, "")) return nullptr;
  }
  return bus;
}

}  // namespace

std::string HLAccessibilityBusAddress(HLBus& session) {
  const char* given = std::getenv("AT_SPI_BUS_ADDRESS");
  if (given != nullptr && *given != '\0') return given;
  const HLBusReply reply = session.call({"org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"});
  const char* address = nullptr;
  return reply && sd_bus_message_read_basic(reply.message.get(), 's', &address) > 0 ? address : "";
}

std::unique_ptr<HLAccessibleApplication> HLAccessibleApplication::connect(const std::string& busAddress,
                                                                          std::int32_t pid, HLProcessKind kind,
                                                                          HLOpenNotifications* notifications) {
  std::unique_ptr<HLAccessibleApplication> application(
      new HLAccessibleApplication(busAddress, pid, kind, notifications));
  return application->findOnBus() ? std::move(application) : nullptr;
}

// Closes the bus connection if the application accepts a direct one: GetApplicationBusAddress and GetItems make a GTK
// application send every event to the caller for as long as that connection exists.
bool HLAccessibleApplication::findOnBus() {
  const HLLock lock(mutex_);
  std::unique_ptr<HLBus> bus = HLBus::openBus(busAddress_);
  if (bus == nullptr) return false;
  name_ = nameOfProcess(*bus, pid());
  while (name_.empty() && !hasEnded() && process_.age() < kStartupTime) {
    std::this_thread::sleep_for(kStartupPoll);
    name_ = nameOfProcess(*bus, pid());
  }
  if (name_.empty()) return false;
  const HLBusReply reply =
      bus->call({name_, HLAccessibleRootPath, "org.a11y.atspi.Application", "GetApplicationBusAddress"}, "s", "");
  const char* address = nullptr;
  if (reply && sd_bus_message_read_basic(reply.message.get(), 's', &address) > 0) peerAddress_ = address;
  if (!peerAddress_.empty()) connection_ = HLBus::openPeer(peerAddress_);
  if (connection_ == nullptr) {
    peerAddress_.clear();
    connection_ = std::move(bus);
  }
  return reply || reply.outcome == HLBusOutcome::refused;
}

HLBus* HLAccessibleApplication::connection() {
  const HLBus::Timeout timeout = isUnresponsive_ ? HLUnresponsiveTimeout : HLBusTimeout;
  if (connection_ == nullptr) {
    connection_ = peerAddress_.empty() ? HLBus::openBus(busAddress_, timeout) : HLBus::openPeer(peerAddress_, timeout);
    if (connection_ == nullptr) drop(HLBusOutcome::timedOut);
  }
  if (connection_ != nullptr) connection_->setTimeout(timeout);
  return connection_.get();
}

void HLAccessibleApplication::drop(HLBusOutcome outcome) {
  connection_ = nullptr;
  if (outcome != HLBusOutcome::timedOut) return;
  isUnresponsive_ = true;
  lastTimeout_ = Clock::now();
}

std::unique_ptr<const HLShownApplication::Interface> HLAccessibleApplication::read() {
  std::unique_ptr<const Interface> interface = readOnce();
  while (interface != nullptr && expectsQueuedBanner(*interface)) {
    std::this_thread::sleep_for(kQueuePoll);
    interface = readOnce();
  }
  return interface;
}

bool HLAccessibleApplication::expectsQueuedBanner(const Interface& interface) {
  const std::vector<HLMappedNode>& nodes = interface.mapped.nodes;
  // The closed banner may still be fading, but has no action any more.
  const auto canBeClosed = [](const HLMappedNode& node) { return node.isBanner && !node.actions.empty(); };
  if (std::any_of(nodes.begin(), nodes.end(), canBeClosed)) return false;
  const HLLock lock(mutex_);
  return !isWatched_ && Clock::now() < queuedUntil_;
}

// match() may block, so it is called without the mutex: presses need not wait for it.
std::unique_ptr<const HLShownApplication::Interface> HLAccessibleApplication::readOnce() {
  auto interface = std::make_unique<Interface>();
  std::vector<HLBanner> banners;
  if (!readTree(interface->tree, banners)) return nullptr;
  const HLClosingActions closings = HLFindClosingActions(interface->tree, banners, notifications_);
  interface->mapped = HLMapTree(interface->tree, banners, closings, kind_);
  return interface;
}

bool HLAccessibleApplication::readTree(HLRawTree& tree, std::vector<HLBanner>& banners) {
  const HLLock lock(mutex_);
  HLBus* bus = connection();
  if (bus == nullptr) return false;
  HLBusOutcome outcome = HLReadTree(*bus, name_, tree);
  if (outcome == HLBusOutcome::answered) {
    if (kind_ == HLProcessKind::notificationServer) banners = HLFindBanners(tree);
    const HLNeededDetails needed = HLDetailsNeeded(tree, banners, kind_);
    outcome = HLReadDetails(*bus, name_, tree, needed.extentsOf, needed.actionsOf);
  }
  if (outcome != HLBusOutcome::answered) {
    drop(outcome);
    return false;
  }
  isUnresponsive_ = false;
  return true;
}

HLAXError HLAccessibleApplication::perform(const Interface& interface, const HLMappedAction& action) {
  if (const auto* name = std::get_if<HLNotificationName>(&action)) {
    if (hasEnded()) return HLAXErrorInvalidElement;
    if (!notifications_->close(*name)) return HLAXErrorFailure;
    const std::chrono::milliseconds queueTime = notifications_->serverTraits().queueTime;
    const HLLock lock(mutex_);
    queuedUntil_ = Clock::now() + queueTime;
    return HLAXErrorSuccess;
  }
  const HLRawAction& pressed = std::get<HLRawAction>(action);
  return press(interface.tree[static_cast<std::size_t>(pressed.node)].path, pressed.action);
}

std::vector<HLEventSource> HLAccessibleApplication::watch() {
  {
    const HLLock lock(mutex_);
    isWatched_ = true;
  }
  std::shared_ptr<HLBus> bus = watchEvents(busAddress_, name_);
  if (bus == nullptr) return {};
  std::vector<HLEventSource> sources = HLEventsOfNotifications(notifications_);
  const int descriptor = bus->descriptor();
  sources.push_back({descriptor, [bus = std::move(bus)] { return bus->takeSignals(); }});
  return sources;
}

HLAXError HLAccessibleApplication::press(const std::string& path, int action) {
  const Clock::time_point asked = Clock::now();
  const HLLock lock(mutex_);
  if (hasEnded()) return HLAXErrorInvalidElement;
  // Another call timed out while this one waited for the mutex. Fail instead of waiting for another timeout.
  if (lastTimeout_ > asked) return HLAXErrorCannotComplete;
  HLBus* bus = connection();
  if (bus == nullptr) return HLAXErrorCannotComplete;
  const HLBusReply reply = bus->call({name_, path, "org.a11y.atspi.Action", "DoAction"}, "i", action);
  if (reply.isLost()) {
    drop(reply.outcome);
    return hasEnded() ? HLAXErrorInvalidElement : HLAXErrorCannotComplete;
  }
  isUnresponsive_ = false;
  return errorOf(reply);
}
