// Bounded calls over D-Bus: to the session's bus, to the accessibility bus, or straight to one application.
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>

inline constexpr const char* HLPropertiesInterface = "org.freedesktop.DBus.Properties";
inline constexpr const char* HLNotificationService = "org.freedesktop.Notifications";

// How long a peer may stay silent before a call is given up.
inline constexpr std::chrono::milliseconds HLBusPatience{1000};

enum class HLBusOutcome {
  answered,
  refused,  // the peer answered with an error
  gone,     // the peer, or the way to it, is no longer there
  silent,   // nothing came in time
};

// Where a call goes. A connection that leads straight to one application has no use for the destination.
struct HLBusCall {
  std::string destination;
  std::string path;
  const char* interface;
  const char* member;
};

struct HLBusMessageDeleter {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using HLBusMessage = std::unique_ptr<sd_bus_message, HLBusMessageDeleter>;

struct HLBusReply {
  HLBusOutcome outcome = HLBusOutcome::gone;
  HLBusMessage message;  // the answer, or nullptr
  std::string error;     // the name of the peer's error

  explicit operator bool() const { return outcome == HLBusOutcome::answered; }
};

// One connection. One thread at a time. None of the calls starts the service that it addresses, and none waits longer
// than the connection's patience, nor does opening it.
class HLBus {
 public:
  using Patience = std::chrono::milliseconds;

  // nullptr when the bus is not there or does not answer.
  [[nodiscard]] static std::unique_ptr<HLBus> openSession(Patience patience = HLBusPatience);
  [[nodiscard]] static std::unique_ptr<HLBus> openBus(const std::string& address, Patience patience = HLBusPatience);
  [[nodiscard]] static std::unique_ptr<HLBus> openPeer(const std::string& address, Patience patience = HLBusPatience);

  HLBus(const HLBus&) = delete;
  HLBus& operator=(const HLBus&) = delete;
  ~HLBus();

  // The arguments are appended as sd_bus_message_append takes them.
  template <class... Argument>
  [[nodiscard]] HLBusReply call(const HLBusCall& to, const char* types = "", Argument... arguments) {
    HLBusMessage message = newCall(to);
    if (message == nullptr || sd_bus_message_append(message.get(), types, arguments...) < 0) return {};
    return finish(message.get());
  }

  // Queues a call; its handler runs within a later settle(). After a settle() that failed, no handler runs any more.
  template <class... Argument>
  void start(const HLBusCall& to, std::function<void(const HLBusReply&)> handler, const char* types = "",
             Argument... arguments) {
    HLBusMessage message = newCall(to);
    if (message == nullptr || sd_bus_message_append(message.get(), types, arguments...) < 0) return lose();
    enqueue(message.get(), std::move(handler));
  }

  // Waits until at most so many of the started calls are unanswered. Fails as gone or silent, after which the
  // connection is of no further use.
  HLBusOutcome settle(std::size_t unanswered);

  // Has the bus send the signals that match the rule. False when it will not.
  [[nodiscard]] bool watch(const std::string& rule);
  // Becomes readable when something has arrived.
  [[nodiscard]] int descriptor() const { return sd_bus_get_fd(bus_); }
  // Takes what has arrived, without waiting: how many watched signals, or nothing when the connection has been lost.
  [[nodiscard]] std::optional<int> takeSignals();

 private:
  struct Pending {
    HLBus* bus;
    std::function<void(const HLBusReply&)> handler;
  };

  HLBus(sd_bus* bus, bool isPeer, Patience patience) : bus_(bus), isPeer_(isPeer), patience_(patience) {}
  static std::unique_ptr<HLBus> finishOpening(sd_bus* bus, bool isPeer, Patience patience);
  static std::unique_ptr<HLBus> openAddress(const std::string& address, bool isPeer, Patience patience);
  static int count(sd_bus_message* message, void* bus, sd_bus_error* error);
  static int deliver(sd_bus_message* message, void* pending, sd_bus_error* error);

  [[nodiscard]] HLBusMessage newCall(const HLBusCall& to) const;
  [[nodiscard]] HLBusReply finish(sd_bus_message* message);
  void enqueue(sd_bus_message* message, std::function<void(const HLBusReply&)> handler);
  void lose() { lost_ = HLBusOutcome::gone; }

  sd_bus* bus_;
  const bool isPeer_;
  const Patience patience_;
  std::deque<Pending> pending_;  // of the batch that is under way; the library keeps their addresses
  std::size_t unanswered_ = 0;
  int signals_ = 0;
  std::chrono::steady_clock::time_point lastAnswer_;
  HLBusOutcome lost_ = HLBusOutcome::answered;
};
