// The system's run loop, dispatch queues and operation queues.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/run_loop.h"

// The main queue is served by the main run loop in its common modes, timers and observers in the default mode. The
// queue is serial: a loop that is run within a step delivers timers and notifications, and further steps only after
// that one.
class HLMacRunLoop : public HLRunLoop {
 public:
  [[nodiscard]] double now() override;
  void sleep(double seconds) override;
  void runFor(double seconds) override;
  void postToMainQueue(std::function<void()> step) override;
  void postToMainQueueAfter(double seconds, std::function<void()> step) override;
  void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                         std::function<void()> refused) override;
  [[nodiscard]] std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;
  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override;
};
