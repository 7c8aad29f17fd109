// An operation queue on threads of this process.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "platform/run_loop.h"
#include "platform/threads/thread_safety.h"

// Starts a worker only when an operation finds none idle, so that a queue of one operation costs one thread. Where no
// worker can be started, the operation waits for a busy one, and without any worker for the thread that waits for the
// queue.
class HLThreadQueue : public HLOperationQueue {
 public:
  // Threads are named `name`, cut to what the kernel keeps.
  HLThreadQueue(std::string name, int limit) : name_(std::move(name)), limit_(static_cast<std::size_t>(limit)) {}
  ~HLThreadQueue() override;

  void addOperation(std::function<void()> operation) override;
  void waitUntilAllOperationsAreFinished() override;

  // Adds the operation unless a thread for it cannot be started. Returns whether it was added. Thread-safe.
  [[nodiscard]] bool addIfThreadStarts(const std::function<void()>& operation);

 private:
  void add(std::function<void()> operation) HL_REQUIRES(mutex_);
  // Whether another operation would find an idle worker, one started for it, or all of them at work.
  [[nodiscard]] bool provideWorker() HL_REQUIRES(mutex_);
  void work();
  void performNext() HL_REQUIRES(mutex_);
  void finishAll() HL_REQUIRES(mutex_);

  const std::string name_;
  const std::size_t limit_;
  HLMutex mutex_;
  HLCondition added_;
  HLCondition idle_;
  std::deque<std::function<void()>> operations_ HL_GUARDED_BY(mutex_);
  std::size_t unfinished_ HL_GUARDED_BY(mutex_) = 0;
  bool ending_ HL_GUARDED_BY(mutex_) = false;
  std::vector<std::thread> workers_ HL_GUARDED_BY(mutex_);
};
