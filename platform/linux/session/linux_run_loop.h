// Real time and real threads.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "platform/run_loop.h"
#include "platform/thread_safety.h"

class HLLinuxRunLoop : public HLRunLoop {
 public:
  HLLinuxRunLoop();
  ~HLLinuxRunLoop() override;

  // Something that the main thread waits for while its loop runs. Main thread only.
  struct Source {
    int descriptor = -1;          // readable when there may be something to take
    std::function<bool()> ready;  // takes what there is; false when nothing will ever come again
  };

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

  // The source's number, to take it out by. Both may be called while sources are served.
  [[nodiscard]] int addSource(Source source);
  void removeSource(int number);

  // For an event loop of another kind that takes this one's place: a descriptor that is readable when there is
  // something to do, and the doing of it, which never waits. Main thread.
  [[nodiscard]] int descriptor() const { return poll_; }
  void serve();

 private:
  class Timer;
  using Clock = std::chrono::steady_clock;
  // The order of one moment is that in which it was asked for.
  using DueKey = std::pair<Clock::time_point, std::int64_t>;

  void serveSources();
  DueKey schedule(Clock::time_point moment, std::function<void()> action);
  void unschedule(const DueKey& key);
  void armAlarm() HL_REQUIRES(mutex_);
  [[nodiscard]] std::function<void()> takeDue();
  void wake();

  int poll_;   // the sources and the two below
  int waker_;  // readable when something has been posted
  int alarm_;  // readable when something of due_ is due
  std::map<int, Source> sources_;
  int nextNumber_ = 0;

  HLMutex mutex_;
  std::deque<std::function<void()>> posted_ HL_GUARDED_BY(mutex_);
  std::map<DueKey, std::function<void()>> due_ HL_GUARDED_BY(mutex_);
  std::int64_t dueNumber_ HL_GUARDED_BY(mutex_) = 0;
  std::unique_ptr<HLOperationQueue> global_ HL_GUARDED_BY(mutex_);  // made when first needed
};
