// Real time and real threads.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "platform/linux/session/thread_queue.h"
#include "platform/run_loop.h"
#include "platform/threads/due_queue.h"
#include "platform/threads/thread_safety.h"

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
  void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                         std::function<void()> refused) override;
  [[nodiscard]] std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;
  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override;

  // The source's number, to take it out by. Both may be called while sources are served.
  [[nodiscard]] int addSource(Source source);
  void removeSource(int number);

  // For another event loop (Qt's) that replaces this one: when descriptor() is readable, call serve(), which never
  // waits for events. Main thread.
  [[nodiscard]] int descriptor() const { return poll_; }
  void serve();

 private:
  class Timer;

  void serveSources();
  HLDueQueue::Key schedule(HLMicroseconds time, HLDueQueue::Step step);
  void cancel(const HLDueQueue::Key& key);
  void armAlarm() HL_REQUIRES(mutex_);
  [[nodiscard]] HLDueQueue::Step takeDue();
  void wake();

  int poll_;   // the sources and the two below
  int waker_;  // readable once after a source was added
  int alarm_;  // readable when a step is due
  std::map<int, Source> sources_;
  int nextNumber_ = 0;

  HLMutex mutex_;
  HLDueQueue due_ HL_GUARDED_BY(mutex_);
  std::unique_ptr<HLThreadQueue> global_;
};
