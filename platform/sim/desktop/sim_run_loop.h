// The simulated desktop's main run loop and queues.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/run_loop.h"
#include "platform/sim/desktop/desktop.h"

class HLSimRunLoop : public HLRunLoop {
 public:
  explicit HLSimRunLoop(HLSimDesktop& desktop);
  ~HLSimRunLoop() override;

  [[nodiscard]] double now() override;
  void sleep(double seconds) override;
  void runFor(double seconds) override;
  void postToMainQueue(std::function<void()> step) override;
  void postToMainQueueAfter(double seconds, std::function<void()> step) override;
  void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work) override;
  [[nodiscard]] std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;

  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override;

  // The application's event loop: until it is stopped, or nothing but repeating timers is due any more. Main thread.
  void runEventLoop();
  void stopEventLoop() { stopped_ = true; }
  // Whether something posted to the global queue has not ended. Main thread.
  [[nodiscard]] bool isWorking();
  // Waits for what was posted to the global queue. Main thread.
  void finishGlobalQueue();
  // Nothing that is waiting will run any more. Main thread.
  void forgetSteps();
  [[nodiscard]] std::size_t timers() const { return timers_; }

  // Has this run on the main thread, when its loop runs. With the lock held.
  void post(std::function<void()> delivery);

 private:
  class Timer;
  // The order of one moment is that in which it was asked for.
  using DueKey = std::pair<HLSimMoment, std::int64_t>;

  DueKey schedule(HLSimMoment moment, std::function<void()> action) HL_REQUIRES(desktop_.clock);
  // Runs the next step that is due. Returns false if none is: the loop is idle.
  bool runNext() HL_REQUIRES(desktop_.clock);
  void perform(std::function<void()> work) HL_REQUIRES(desktop_.clock);
  [[nodiscard]] bool onlyTimersAreDue() const HL_REQUIRES(desktop_.clock);

  HLSimDesktop& desktop_;
  double start_;  // the wall clock at the desktop's beginning
  std::deque<std::function<void()>> deliveries_ HL_GUARDED_BY(desktop_.clock);
  std::map<DueKey, std::function<void()>> due_ HL_GUARDED_BY(desktop_.clock);  // repeating timers included
  std::int64_t dueNumber_ HL_GUARDED_BY(desktop_.clock) = 0;
  HLSimSignal posted_ HL_GUARDED_BY(desktop_.clock);
  std::size_t working_ HL_GUARDED_BY(desktop_.clock) = 0;
  HLSimSignal idle_ HL_GUARDED_BY(desktop_.clock);
  // The main thread's.
  std::size_t timers_ = 0;
  bool stopped_ = false;

  std::deque<HLSimWork> works_;  // one per thread
  std::vector<std::thread> threads_;
};
