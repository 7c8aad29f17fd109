// D-Bus calls with a timeout: to the session bus, to the accessibility bus, or directly to one application.
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
inline constexpr const char* HLNotificationPath = "/org/freedesktop/Notifications";

// The default timeout of a call, and that of a call to a peer that has let one time out, until it answers again.
inline constexpr std::chrono::milliseconds HLBusTimeout{1000};
inline constexpr std::chrono::milliseconds HLUnresponsiveTimeout{250};

enum class HLBusOutcome {
  answered,
  refused,       // the peer answered with an error
  disconnected,  // the peer has exited, or the connection is lost
  timedOut,
};

// A method to call. Direct connections ignore the destination.
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
  HLBusOutcome outcome = HLBusOutcome::disconnected;
  HLBusMessage message;  // nullptr unless answered
  std::string error;     // the D-Bus error's name, if refused

  explicit operator bool() const { return outcome == HLBusOutcome::answered; }
  // Whether the connection is of no further use.
  [[nodiscard]] bool isLost() const {
    return outcome == HLBusOutcome::disconnected || outcome == HLBusOutcome::timedOut;
  }
};

// A D-Bus connection. Opening it and each call block for at most the connection's timeout. No call starts the service
// that it is sent to. One thread at a time.
class HLBus {
 public:
  using Timeout = std::chrono::milliseconds;

  // Return nullptr if the bus does not exist or does not answer.
  [[nodiscard]] static std::unique_ptr<HLBus> openSession(Timeout timeout = HLBusTimeout);
  [[nodiscard]] static std::unique_ptr<HLBus> openBus(const std::string& address, Timeout timeout = HLBusTimeout);
  [[nodiscard]] static std::unique_ptr<HLBus> openPeer(const std::string& address, Timeout timeout = HLBusTimeout);

  // Of the calls from now on.
  void setTimeout(Timeout timeout) { timeout_ = timeout; }

  HLBus(const HLBus&) = delete;
  HLBus& operator=(const HLBus&) = delete;
  ~HLBus();

  // Calls a method and waits for the reply. The arguments are those of sd_bus_message_append(). Blocks.
  template <class... Argument>
  [[nodiscard]] HLBusReply call(const HLBusCall& to, const char* types = "", Argument... arguments) {
    HLBusMessage message = newCall(to);
    if (message == nullptr || sd_bus_message_append(message.get(), types, arguments...) < 0) return {};
    return finish(message.get());
  }

  // The same for arguments that `append` appends to the message; it returns a negative number if it cannot.
  [[nodiscard]] HLBusReply callWith(const HLBusCall& to, const std::function<int(sd_bus_message*)>& append) {
    HLBusMessage message = newCall(to);
    if (message == nullptr || append(message.get()) < 0) return {};
    return finish(message.get());
  }

  // Queues a call. settle() runs the handler, unless it fails before the reply arrives.
  template <class... Argument>
  void start(const HLBusCall& to, std::function<void(const HLBusReply&)> handler, const char* types = "",
             Argument... arguments) {
    HLBusMessage message = newCall(to);
    if (message == nullptr || sd_bus_message_append(message.get(), types, arguments...) < 0) return lose();
    enqueue(message.get(), std::move(handler));
  }

  // Waits until at most `unanswered` of the queued calls are unanswered. Returns `answered`, or, once the connection is
  // of no further use, `disconnected` or `timedOut`. Blocks.
  HLBusOutcome settle(std::size_t unanswered);

  // Subscribes to the signals that match the rule. Returns false if the bus refuses.
  [[nodiscard]] bool watch(const std::string& rule);
  // The connection, for calls that this class does not wrap. Stays this object's.
  [[nodiscard]] sd_bus* handle() const { return bus_; }

  // Readable when a message has arrived.
  [[nodiscard]] int descriptor() const { return sd_bus_get_fd(bus_); }
  // Consumes the messages that have arrived. Returns how many watched signals were among them, or nullopt if the
  // connection is lost. Does not block.
  [[nodiscard]] std::optional<int> takeSignals();

 private:
  struct Pending {
    HLBus* bus;
    std::function<void(const HLBusReply&)> handler;
  };

  HLBus(sd_bus* bus, bool isPeer, Timeout timeout) : bus_(bus), isPeer_(isPeer), timeout_(timeout) {}
  static std::unique_ptr<HLBus> finishOpening(sd_bus* bus, bool isPeer, Timeout timeout);
  static std::unique_ptr<HLBus> openAddress(const std::string& address, bool isPeer, Timeout timeout);
  static int count(sd_bus_message* message, void* bus, sd_bus_error* error);
  static int deliver(sd_bus_message* message, void* pending, sd_bus_error* error);

  [[nodiscard]] HLBusMessage newCall(const HLBusCall& to) const;
  [[nodiscard]] HLBusReply finish(sd_bus_message* message);
  void enqueue(sd_bus_message* message, std::function<void(const HLBusReply&)> handler);
  void lose() { lost_ = HLBusOutcome::disconnected; }

  sd_bus* bus_;
  const bool isPeer_;
  Timeout timeout_;
  std::deque<Pending> pending_;  // calls since the last time all were answered; sd-bus keeps their addresses
  std::size_t unanswered_ = 0;
  int signals_ = 0;
  std::chrono::steady_clock::time_point lastAnswer_;
  HLBusOutcome lost_ = HLBusOutcome::answered;
};
