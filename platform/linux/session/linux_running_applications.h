// The desktop's notification server: the one application that the program has to do with here.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "platform/linux/session/linux_run_loop.h"
#include "platform/linux/session/process_watch.h"
#include "platform/running_applications.h"
#include "platform/threads/thread_safety.h"

// The process that owns the notification service of the session bus, or the shell behind a helper that owns it, is
// listed under Notification Center's bundle identifier; nobody else is listed. Asking never starts a server, but a
// list() after the death of one that was sent a signal has the bus start its successor. A shell is never sent one.
class HLLinuxRunningApplications : public HLRunningApplications {
 public:
  // Launches are told by the run loop.
  explicit HLLinuxRunningApplications(HLLinuxRunLoop& runLoop) : runLoop_(runLoop) {}

  [[nodiscard]] std::vector<HLRunningApplication> list() override;
  [[nodiscard]] std::optional<HLRunningApplication> find(std::int32_t pid) override;
  void observeLaunches(std::function<void(const HLRunningApplication&)> observer) override;
  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override;

 private:
  HLLinuxRunLoop& runLoop_;
  HLMutex mutex_;
  std::shared_ptr<const HLProcessWatch> signalled_ HL_GUARDED_BY(mutex_);  // until the bus was asked for its successor
};
