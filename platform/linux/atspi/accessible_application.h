// An application on the accessibility bus, and the connection to it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/accessibility.h"
#include "platform/linux/atspi/mapped_tree.h"
#include "platform/linux/session/bus.h"
#include "platform/linux/session/process_watch.h"
#include "platform/threads/thread_safety.h"

// Returns the address of the session's accessibility bus, or "". Starts no bus.
[[nodiscard]] std::string HLAccessibilityBusAddress(HLBus& session);

// Thread-safe. Calls to the application are serialized.
class HLAccessibleApplication {
 public:
  // Returns nullptr if the process is not on the bus or does not answer. Blocks.
  [[nodiscard]] static std::unique_ptr<HLAccessibleApplication> connect(const std::string& busAddress, std::int32_t pid,
                                                                        HLProcessKind kind);

  struct Interface {
    HLRawTree tree;
    HLMappedTree mapped;
  };
  // Reads the application's elements. Returns nullptr if the application does not answer. Blocks.
  [[nodiscard]] std::unique_ptr<const Interface> read();

  // Performs an action of the element at that object path. Returns InvalidElement once the element is destroyed or the
  // process has exited, CannotComplete on a timeout or a lost connection. Blocks.
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
  std::string name_;         // on the accessibility bus
  std::string peerAddress_;  // of the application's own socket; "" if calls go over the bus

  HLMutex mutex_;
  std::unique_ptr<HLBus> connection_ HL_GUARDED_BY(mutex_);
  bool isUnresponsive_ HL_GUARDED_BY(mutex_) = false;
  std::chrono::steady_clock::time_point lastTimeout_ HL_GUARDED_BY(mutex_){};
};
