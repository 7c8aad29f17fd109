// The simulated desktop's main run loop and operation queues.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "platform/run_loop.h"
#include "platform/sim/desktop.h"

class HLSimRunLoop : public HLRunLoop {
 public:
  explicit HLSimRunLoop(HLSimDesktop& desktop);

  [[nodiscard]] double now() override;
  void sleep(double seconds) override;
  void runFor(double seconds) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;

  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override;

  // Has this run on the main thread, when its loop runs. With the lock held.
  void post(std::function<void()> delivery);

 private:
  HLSimDesktop& desktop_;
  double start_;  // the wall clock at the desktop's beginning
  std::deque<std::function<void()>> deliveries_;
  HLSimSignal posted_;
};
