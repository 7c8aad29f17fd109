// One application on the accessibility bus: its connection, and what it last showed.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/accessibility.h"
#include "platform/linux/atspi/presentation.h"
#include "platform/linux/session/bus.h"
#include "platform/linux/session/process_watch.h"
#include "platform/thread_safety.h"

// The address of the session's accessibility bus; "" when there is none. Starts none.
[[nodiscard]] std::string HLAccessibilityBusAddress(HLBus& session);

// Any thread; calls to the application itself are made one after the other.
class HLAccessibleApplication {
 public:
  // nullptr when the process is not on the bus or does not answer.
  [[nodiscard]] static std::unique_ptr<HLAccessibleApplication> connect(const std::string& busAddress, std::int32_t pid,
                                                                        HLProcessKind kind);

  struct Interface {
    HLRawTree tree;
    HLPresentation presentation;
  };
  // What is on screen now; nothing when the application does not answer.
  [[nodiscard]] std::unique_ptr<const Interface> read();

  // Performs one of the actions of the node with that path.
  [[nodiscard]] HLAXError press(const std::string& path, int action);

  [[nodiscard]] bool hasEnded() const { return process_.hasEnded(); }
  [[nodiscard]] std::int32_t pid() const { return process_.pid(); }
  [[nodiscard]] const std::string& busName() const { return name_; }

 private:
  HLAccessibleApplication(const std::string& busAddress, std::int32_t pid, HLProcessKind kind)
      : process_(pid), kind_(kind), busAddress_(busAddress) {}

  [[nodiscard]] bool findOnBus();
  [[nodiscard]] HLBus* connection() HL_REQUIRES(mutex_);
  void drop(HLBusOutcome outcome) HL_REQUIRES(mutex_);

  const HLProcessWatch process_;
  const HLProcessKind kind_;
  const std::string busAddress_;
  std::string name_;         // the application's on the bus
  std::string peerAddress_;  // where it takes calls without the bus between; may be ""

  HLMutex mutex_;
  std::unique_ptr<HLBus> connection_ HL_GUARDED_BY(mutex_);
  bool isSilent_ HL_GUARDED_BY(mutex_) = false;
  std::chrono::steady_clock::time_point lastSilence_ HL_GUARDED_BY(mutex_){};
};
