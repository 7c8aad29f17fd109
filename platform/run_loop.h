// Time, waiting and work on other threads. Nothing above platform/ sleeps or starts a thread but through here.
#pragma once

#include <functional>
#include <memory>
#include <string>

// The home platform's classes of urgency; a host without them takes all alike.
enum class HLQualityOfService { userInitiated = 25 };

// Runs operations on worker threads. One owner thread adds and waits; destruction waits too.
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

// Lets one thread wait for another. Any thread.
class HLSemaphore {
 public:
  HLSemaphore() = default;
  HLSemaphore(const HLSemaphore&) = delete;
  HLSemaphore& operator=(const HLSemaphore&) = delete;
  virtual ~HLSemaphore() = default;

  virtual void signal() = 0;
  // Waits for a signal, which it takes, for at most so many seconds; whether there was one.
  [[nodiscard]] virtual bool wait(double seconds) = 0;
};

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

  // Runs the main thread's loop for that many seconds, delivering what is due; it does not return early after an event.
  // Main thread.
  virtual void runFor(double seconds) = 0;

  // A queue that runs at most that many operations at once (1 or more). The name is shown by debuggers.
  [[nodiscard]] virtual std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                             HLQualityOfService quality,
                                                                             int maxConcurrentOperations) = 0;

  [[nodiscard]] virtual std::unique_ptr<HLSemaphore> makeSemaphore() = 0;
};
