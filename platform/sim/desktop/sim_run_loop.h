// The simulated desktop's main run loop and queues.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/run_loop.h"
#include "platform/sim/desktop/desktop.h"
#include "platform/threads/due_queue.h"

class HLSimRunLoop : public HLRunLoop {
 public:
  explicit HLSimRunLoop(HLSimDesktop& desktop);
  ~HLSimRunLoop() override;

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

  // Queues `step` for the main run loop. `time`, now or earlier, is when its cause was due. With the lock held.
  void post(HLMicroseconds time, HLDueQueue::Step step);

 private:
  class Timer;

  HLDueQueue::Key schedule(HLMicroseconds time, HLDueQueue::Step step) HL_REQUIRES(desktop_.clock);
  // Runs the next step that is due by now and by `limit`. False if there is none: the loop is idle.
  bool runNext(HLMicroseconds limit) HL_REQUIRES(desktop_.clock);
  // False if no thread can be started for the work.
  [[nodiscard]] bool startWork(const std::function<void()>& work);
  void perform(std::function<void()> work) HL_REQUIRES(desktop_.clock);
  [[nodiscard]] bool onlyTimersAreDue() const HL_REQUIRES(desktop_.clock);

  HLSimDesktop& desktop_;
  double start_;  // the wall clock at the desktop's beginning
  // Runs before due_, so that what the scene has due precedes the program's own steps.
  HLDueQueue posted_ HL_GUARDED_BY(desktop_.clock);
  HLDueQueue due_ HL_GUARDED_BY(desktop_.clock);       // delayed steps and repeating timers
  HLSimSignal changed_ HL_GUARDED_BY(desktop_.clock);  // given when a step is queued
  std::size_t working_ HL_GUARDED_BY(desktop_.clock) = 0;
  HLSimSignal idle_ HL_GUARDED_BY(desktop_.clock);
  // The main thread's.
  std::size_t timers_ = 0;
  bool stopped_ = false;

  // One entry per thread of the global queue.
  std::deque<HLSimWork> works_ HL_GUARDED_BY(desktop_.clock);
  std::vector<std::thread> threads_ HL_GUARDED_BY(desktop_.clock);
};
