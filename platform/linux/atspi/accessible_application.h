// An application on the accessibility bus, and the connection to it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/atspi/shown_application.h"
#include "platform/linux/notifications/open_notifications.h"
#include "platform/linux/session/bus.h"
#include "platform/linux/session/process_watch.h"
#include "platform/threads/thread_safety.h"

// Returns the address of the session's accessibility bus, or "". Starts no bus.
[[nodiscard]] std::string HLAccessibilityBusAddress(HLBus& session);

// Calls to the application are serialized.
class HLAccessibleApplication : public HLShownApplication {
 public:
  // Returns nullptr if the process is not on the bus or does not answer. Blocks. Banners without a close control are
  // looked up in `notifications`, which may be nullptr and must outlive the result.
  [[nodiscard]] static std::unique_ptr<HLAccessibleApplication> connect(const std::string& busAddress, std::int32_t pid,
                                                                        HLProcessKind kind,
                                                                        HLOpenNotifications* notifications = nullptr);

  [[nodiscard]] std::unique_ptr<const Interface> read() override;
  [[nodiscard]] HLAXError perform(const Interface& interface, const HLMappedAction& action) override;
  [[nodiscard]] std::vector<HLEventSource> watch() override;
  [[nodiscard]] bool hasEnded() const override { return process_.hasEnded(); }
  [[nodiscard]] std::int32_t pid() const override { return process_.pid(); }
  [[nodiscard]] const std::string& busName() const { return name_; }

 private:
  HLAccessibleApplication(const std::string& busAddress, std::int32_t pid, HLProcessKind kind,
                          HLOpenNotifications* notifications)
      : process_(pid), kind_(kind), busAddress_(busAddress), notifications_(notifications) {}

  [[nodiscard]] bool findOnBus();
  [[nodiscard]] std::unique_ptr<const Interface> readOnce();
  // Whether a banner that the server has queued may be about to show.
  [[nodiscard]] bool expectsQueuedBanner(const Interface& interface);
  // Reads the tree with the details that its banners need. Returns false if the application does not answer.
  [[nodiscard]] bool readTree(HLRawTree& tree, std::vector<HLBanner>& banners);
  [[nodiscard]] HLAXError press(const std::string& path, int action);
  [[nodiscard]] HLBus* connection() HL_REQUIRES(mutex_);
  void drop(HLBusOutcome outcome) HL_REQUIRES(mutex_);

  const HLProcessWatch process_;
  const HLProcessKind kind_;
  const std::string busAddress_;
  HLOpenNotifications* const notifications_;
  std::string name_;         // on the accessibility bus
  std::string peerAddress_;  // of the application's own socket; "" if calls go over the bus

  HLMutex mutex_;
  std::unique_ptr<HLBus> connection_ HL_GUARDED_BY(mutex_);
  bool isUnresponsive_ HL_GUARDED_BY(mutex_) = false;
  std::chrono::steady_clock::time_point lastTimeout_ HL_GUARDED_BY(mutex_){};
  std::chrono::steady_clock::time_point queuedUntil_ HL_GUARDED_BY(mutex_){};  // until then a queued banner may come
  bool isWatched_ HL_GUARDED_BY(mutex_) = false;  // an event tells of the next banner, so that no read waits for it
};
