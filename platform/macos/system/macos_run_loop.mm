#include "platform/macos/system/macos_run_loop.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <utility>

#include "platform/macos/values/values.h"
#include "platform/threads/due_queue.h"

static_assert(static_cast<int>(HLQualityOfService::userInitiated) == QOS_CLASS_USER_INITIATED);
static_assert(static_cast<int>(HLQualityOfService::userInitiated) == NSQualityOfServiceUserInitiated);

namespace {

// Returns the time `seconds` from now; now for 0, less and NaN.
dispatch_time_t timeAfter(double seconds) {
  constexpr HLMicroseconds kMost = 1'000'000'000'000'000;  // thirty years, whose nanoseconds fit into 60 bits
  const HLMicroseconds delay = std::clamp<HLMicroseconds>(HLMicrosecondsFromSeconds(seconds), 0, kMost);
  return dispatch_time(DISPATCH_TIME_NOW, delay * static_cast<HLMicroseconds>(NSEC_PER_USEC));
}

class OperationQueue : public HLOperationQueue {
 public:
  OperationQueue(const std::string& name, HLQualityOfService quality, int maxConcurrentOperations) {
    @autoreleasepool {
      queue_.name = HLMakeString(name);
      queue_.qualityOfService = static_cast<NSQualityOfService>(quality);
      queue_.maxConcurrentOperationCount = maxConcurrentOperations;
    }
  }
  ~OperationQueue() override { wait(); }

  void addOperation(std::function<void()> operation) override {
    @autoreleasepool {
      [queue_ addOperationWithBlock:^{
        operation();
      }];
    }
  }
  void waitUntilAllOperationsAreFinished() override { wait(); }

 private:
  void wait() {
    @autoreleasepool {
      [queue_ waitUntilAllOperationsAreFinished];
    }
  }

  NSOperationQueue* const queue_ = [[NSOperationQueue alloc] init];
};

class Semaphore : public HLSemaphore {
 public:
  void signal() override { dispatch_semaphore_signal(semaphore_); }
  bool wait(double seconds) override { return dispatch_semaphore_wait(semaphore_, timeAfter(seconds)) == 0; }

 private:
  const dispatch_semaphore_t semaphore_ = dispatch_semaphore_create(0);
};

class Timer : public HLTimer {
 public:
  Timer(double interval, std::function<void()> action)
      : timer_([NSTimer timerWithTimeInterval:interval
                                      repeats:YES
                                        block:^(NSTimer*) {
                                          const std::function<void()> held =
                                              action;  // the action may destroy the timer
                                          held();
                                        }]) {
    [NSRunLoop.mainRunLoop addTimer:timer_ forMode:NSDefaultRunLoopMode];
  }
  ~Timer() override { [timer_ invalidate]; }

 private:
  NSTimer* const timer_;
};

}  // namespace

double HLMacRunLoop::now() { return CFAbsoluteTimeGetCurrent() + kCFAbsoluteTimeIntervalSince1970; }

void HLMacRunLoop::sleep(double seconds) {
  @autoreleasepool {
    if (seconds > 0) [NSThread sleepForTimeInterval:seconds];
  }
}

void HLMacRunLoop::runFor(double seconds) {
  using Clock = std::chrono::steady_clock;
  const auto now = [] { return std::chrono::duration<double>(Clock::now().time_since_epoch()).count(); };
  double left = seconds > 0 ? seconds : 0;
  const double end = now() + left;
  for (;;) {
    @autoreleasepool {
      const CFRunLoopRunResult result = CFRunLoopRunInMode(kCFRunLoopDefaultMode, left, false);
      left = end - now();
      if (left <= 0) return;
      // A loop that has nothing to wait for returns at once.
      if (result == kCFRunLoopRunFinished) [NSThread sleepForTimeInterval:std::min(left, 0.01)];
    }
  }
}

void HLMacRunLoop::postToMainQueue(std::function<void()> step) {
  dispatch_async(dispatch_get_main_queue(), ^{
    step();
  });
}

void HLMacRunLoop::postToMainQueueAfter(double seconds, std::function<void()> step) {
  dispatch_after(timeAfter(seconds), dispatch_get_main_queue(), ^{
    step();
  });
}

// Grand Central Dispatch keeps a block for as long as it has no thread for it, and reports nothing.
void HLMacRunLoop::postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                                     std::function<void()> refused) {
  const auto isDecided = std::make_shared<std::atomic<bool>>(false);
  dispatch_async(dispatch_get_global_queue(static_cast<qos_class_t>(quality), 0), ^{
    if (!isDecided->exchange(true)) work();
  });
  dispatch_after(timeAfter(HLThreadStartTimeout), dispatch_get_main_queue(), ^{
    if (!isDecided->exchange(true) && refused) refused();
  });
}

std::unique_ptr<HLTimer> HLMacRunLoop::scheduleTimer(double interval, std::function<void()> action) {
  @autoreleasepool {
    return std::make_unique<Timer>(interval, std::move(action));
  }
}

std::unique_ptr<HLOperationQueue> HLMacRunLoop::makeOperationQueue(const std::string& name, HLQualityOfService quality,
                                                                   int maxConcurrentOperations) {
  return std::make_unique<OperationQueue>(name, quality, std::max(1, maxConcurrentOperations));
}

std::unique_ptr<HLSemaphore> HLMacRunLoop::makeSemaphore() { return std::make_unique<Semaphore>(); }
