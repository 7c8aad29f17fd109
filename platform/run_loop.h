// Time, waiting and work on other threads. Nothing above platform/ sleeps or starts a thread but through here.
#pragma once

#include <functional>
#include <memory>
#include <string>

// macOS's quality-of-service classes. Other hosts ignore them.
enum class HLQualityOfService { userInitiated = 25 };

// Runs operations on worker threads, as many as can be started; if none can, on the thread that waits for the queue.
// One owner thread adds operations and waits. Destruction waits too.
class HLOperationQueue {
 public:
  HLOperationQueue() = default;
  HLOperationQueue(const HLOperationQueue&) = delete;
  HLOperationQueue& operator=(const HLOperationQueue&) = delete;
  virtual ~HLOperationQueue() = default;

  // Operations start in the order in which they are added.
  virtual void addOperation(std::function<void()> operation) = 0;
  virtual void waitUntilAllOperationsAreFinished() = 0;
};

// Lets one thread wait for another. Thread-safe.
class HLSemaphore {
 public:
  HLSemaphore() = default;
  HLSemaphore(const HLSemaphore&) = delete;
  HLSemaphore& operator=(const HLSemaphore&) = delete;
  virtual ~HLSemaphore() = default;

  virtual void signal() = 0;
  // Waits up to `seconds` and consumes one signal. False on timeout.
  [[nodiscard]] virtual bool wait(double seconds) = 0;
};

// Repeating main-thread timer. Destroying it cancels it, even inside its callback. Main thread only.
class HLTimer {
 public:
  HLTimer() = default;
  HLTimer(const HLTimer&) = delete;
  HLTimer& operator=(const HLTimer&) = delete;
  virtual ~HLTimer() = default;
};

inline constexpr double HLThreadStartTimeout = 5;  // seconds

class HLRunLoop {
 public:
  HLRunLoop() = default;
  HLRunLoop(const HLRunLoop&) = delete;
  HLRunLoop& operator=(const HLRunLoop&) = delete;
  virtual ~HLRunLoop() = default;

  // The wall clock, in seconds since 1970. Any thread.
  [[nodiscard]] virtual double now() = 0;

  // Sleeps the calling thread; a time of 0 or less returns at once. Any thread.
  virtual void sleep(double seconds) = 0;

  // Runs the main run loop for `seconds` and does not return early. What is due by then is delivered, even late. Main
  // thread.
  virtual void runFor(double seconds) = 0;

  // Queues `step` for the main run loop, FIFO. Thread-safe.
  virtual void postToMainQueue(std::function<void()> step) = 0;
  // Queues `step` for the main run loop after `seconds`. Thread-safe.
  virtual void postToMainQueueAfter(double seconds, std::function<void()> step) = 0;

  // Runs `work` on another thread, never on the main thread. If no thread can be started for HLThreadStartTimeout,
  // drops `work` and queues `refused`, unless empty, for the main run loop. Thread-safe.
  virtual void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                                 std::function<void()> refused = nullptr) = 0;

  // Runs `action` on the main thread every `interval` seconds, first after `interval`. Main thread.
  [[nodiscard]] virtual std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) = 0;

  // Returns a queue that runs at most `maxConcurrentOperations` (1 or more) at once. Debuggers show `name`.
  [[nodiscard]] virtual std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                             HLQualityOfService quality,
                                                                             int maxConcurrentOperations) = 0;

  [[nodiscard]] virtual std::unique_ptr<HLSemaphore> makeSemaphore() = 0;
};
