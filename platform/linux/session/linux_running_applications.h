// The desktop's notification server: the one application that the program has to do with here.
#pragma once

#include <cstdint>
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

  // Reports the launch of the listed process again as soon as `isReady`, which may block, returns true. Calls `isReady`
  // after 0.5 s and then at doubled intervals, ten times at most in the life of the process. Stops if another process
  // is listed. Main thread.
  void reportAgainWhenReady(std::int32_t pid, std::function<bool()> isReady);

 private:
  // The last process whose launch is to be reported again.
  struct Awaited {
    std::int32_t pid = 0;
    int asked = 0;
    std::function<bool()> isReady;
    std::unique_ptr<HLTimer> timer;  // nullptr unless the process is waited for
  };

  void waitForAwaited();
  void askAwaited();

  HLLinuxRunLoop& runLoop_;
  std::vector<std::function<void(const HLRunningApplication&)>> observers_;
  Awaited awaited_;
  HLMutex mutex_;
  std::shared_ptr<const HLProcessWatch> signalled_ HL_GUARDED_BY(mutex_);  // until the bus was asked for its successor
};
