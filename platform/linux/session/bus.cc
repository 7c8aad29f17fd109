#include "platform/linux/session/bus.h"

#include <cerrno>
#include <string_view>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

std::uint64_t microseconds(Clock::duration duration) {
  const auto count = std::chrono::duration_cast<std::chrono::microseconds>(duration).count();
  return count > 0 ? static_cast<std::uint64_t>(count) : 0;
}

// Whether the error means that the peer has disconnected. The bus sends NoReply when the peer disconnects during a
// call. sd-bus also reports timeouts as NoReply; finish() distinguishes them by elapsed time. sd-bus reports socket
// errors as "System.Error.*".
bool isPeerGone(std::string_view error) {
  return error == SD_BUS_ERROR_SERVICE_UNKNOWN || error == SD_BUS_ERROR_NAME_HAS_NO_OWNER ||
         error == SD_BUS_ERROR_NO_REPLY || error == SD_BUS_ERROR_DISCONNECTED || error == SD_BUS_ERROR_NO_SERVER ||
         error == SD_BUS_ERROR_TIMEOUT || error.starts_with("System.Error.");
}

HLBusReply failure(const sd_bus_error& error) {
  HLBusReply reply;
  reply.error = error.name == nullptr ? "" : error.name;
  reply.outcome = reply.error.empty() || isPeerGone(reply.error) ? HLBusOutcome::disconnected : HLBusOutcome::refused;
  return reply;
}

}  // namespace

std::unique_ptr<HLBus> HLBus::openSession(Timeout timeout) {
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) < 0) return nullptr;
  return finishOpening(bus, false, timeout);
}

std::unique_ptr<HLBus> HLBus::openBus(const std::string& address, Timeout timeout) {
  return openAddress(address, false, timeout);
}

std::unique_ptr<HLBus> HLBus::openPeer(const std::string& address, Timeout timeout) {
  return openAddress(address, true, timeout);
}

std::unique_ptr<HLBus> HLBus::openAddress(const std::string& address, bool isPeer, Timeout timeout) {
  sd_bus* bus = nullptr;
  if (sd_bus_new(&bus) < 0) return nullptr;
  // If one of these two fails, so does sd_bus_start().
  sd_bus_set_address(bus, address.c_str());
  sd_bus_set_bus_client(bus, isPeer ? 0 : 1);
  if (sd_bus_start(bus) < 0) {
    sd_bus_close_unref(bus);
    return nullptr;
  }
  return finishOpening(bus, isPeer, timeout);
}

// Waits until the handshake is complete. sd_bus_start() only begins it; the first call to a stopped peer would then
// block for sd-bus's own timeout.
std::unique_ptr<HLBus> HLBus::finishOpening(sd_bus* bus, bool isPeer, Timeout timeout) {
  std::unique_ptr<HLBus> opened(new HLBus(bus, isPeer, timeout));
  const Clock::time_point deadline = Clock::now() + timeout;
  while (sd_bus_is_ready(bus) == 0) {
    const int processed = sd_bus_process(bus, nullptr);
    if (processed < 0) return nullptr;
    if (processed > 0) continue;
    const Clock::duration left = deadline - Clock::now();
    if (left <= Clock::duration::zero()) return nullptr;
    if (sd_bus_wait(bus, microseconds(left)) < 0) return nullptr;
  }
  return sd_bus_is_ready(bus) > 0 ? std::move(opened) : nullptr;
}

HLBus::~HLBus() { sd_bus_close_unref(bus_); }

HLBusMessage HLBus::newCall(const HLBusCall& to) const {
  sd_bus_message* message = nullptr;
  const char* destination = isPeer_ ? nullptr : to.destination.c_str();
  if (sd_bus_message_new_method_call(bus_, &message, destination, to.path.c_str(), to.interface, to.member) < 0) {
    return nullptr;
  }
  HLBusMessage call(message);
  sd_bus_message_set_auto_start(message, 0);
  return call;
}

HLBusReply HLBus::finish(sd_bus_message* message) {
  HLBusReply reply;
  if (lost_ != HLBusOutcome::answered) {
    reply.outcome = lost_;
    return reply;
  }
  const Clock::time_point begin = Clock::now();
  sd_bus_error error{};
  sd_bus_message* answer = nullptr;
  if (sd_bus_call(bus_, message, microseconds(timeout_), &error, &answer) >= 0) {
    reply.message.reset(answer);
    reply.outcome = HLBusOutcome::answered;
  } else {
    reply = failure(error);
    if (reply.outcome == HLBusOutcome::disconnected && Clock::now() - begin >= timeout_)
      reply.outcome = HLBusOutcome::timedOut;
  }
  sd_bus_error_free(&error);
  return reply;
}

void HLBus::enqueue(sd_bus_message* message, std::function<void(const HLBusReply&)> handler) {
  if (lost_ != HLBusOutcome::answered) return;
  if (unanswered_ == 0) {
    pending_.clear();
    lastAnswer_ = Clock::now();
  }
  Pending& pending = pending_.emplace_back(Pending{this, std::move(handler)});
  // No timeout per call: settle() applies one to all of them.
  if (sd_bus_call_async(bus_, nullptr, message, &HLBus::deliver, &pending, UINT64_MAX) < 0) return lose();
  ++unanswered_;
}

int HLBus::deliver(sd_bus_message* message, void* pending, sd_bus_error*) {
  Pending& call = *static_cast<Pending*>(pending);
  HLBus& bus = *call.bus;
  if (bus.lost_ != HLBusOutcome::answered) return 0;
  --bus.unanswered_;
  bus.lastAnswer_ = Clock::now();
  const sd_bus_error* error = sd_bus_message_get_error(message);
  HLBusReply reply;
  if (error != nullptr) {
    reply = failure(*error);
  } else {
    reply.message.reset(sd_bus_message_ref(message));
    reply.outcome = HLBusOutcome::answered;
  }
  if (reply.outcome == HLBusOutcome::disconnected) {
    bus.lose();
    return 0;
  }
  const std::function<void(const HLBusReply&)> handler = std::move(call.handler);
  handler(reply);
  return 0;
}

HLBusOutcome HLBus::settle(std::size_t unanswered) {
  while (lost_ == HLBusOutcome::answered && unanswered_ > unanswered) {
    const int processed = sd_bus_process(bus_, nullptr);
    if (processed < 0) {
      lose();
    } else if (processed == 0) {
      const Clock::duration left = lastAnswer_ + timeout_ - Clock::now();
      if (left <= Clock::duration::zero()) {
        lost_ = HLBusOutcome::timedOut;
      } else if (sd_bus_wait(bus_, microseconds(left)) < 0) {
        lose();
      }
    }
  }
  return lost_;
}

bool HLBus::watch(const std::string& rule) {
  return sd_bus_add_match(bus_, nullptr, rule.c_str(), &HLBus::count, this) >= 0;
}

int HLBus::count(sd_bus_message*, void* bus, sd_bus_error*) {
  ++static_cast<HLBus*>(bus)->signals_;
  return 0;
}

std::optional<int> HLBus::takeSignals() {
  int processed = 0;
  while ((processed = sd_bus_process(bus_, nullptr)) > 0) {
  }
  if (processed < 0) return std::nullopt;
  return std::exchange(signals_, 0);
}
