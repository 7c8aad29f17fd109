#include "platform/sim/run_loop.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

namespace {

class OperationQueue : public HLOperationQueue {
 public:
  OperationQueue(HLSimDesktop& desktop, int limit) : desktop_(desktop), limit_(limit) {}

  ~OperationQueue() override {
    OperationQueue::waitUntilAllOperationsAreFinished();
    for (std::thread& thread : threads_) thread.join();
  }

  void addOperation(std::function<void()> operation) override {
    const HLSimLock lock = desktop_.clock->lock();
    pending_.push_back(std::move(operation));
    if (workers_ >= limit_) return;
    ++workers_;
    HLSimWork& work = works_.emplace_back(HLSimWork{this, 0});
    threads_.push_back(
        desktop_.clock->startThread(work, [this, &work](HLSimLock& workerLock) { runWorker(workerLock, work); }));
  }

  void waitUntilAllOperationsAreFinished() override {
    HLSimLock lock = desktop_.clock->lock();
    while (workers_ > 0) desktop_.clock->waitFor(lock, idle_, HLSimNever);
  }

 private:
  void runWorker(HLSimLock& lock, HLSimWork& work) {
    while (!pending_.empty()) {
      std::function<void()> operation = std::move(pending_.front());
      pending_.pop_front();
      work.operation = started_++;
      lock.unlock();
      operation();
      operation = nullptr;
      lock.lock();
      if (!pending_.empty()) desktop_.clock->standBack(lock);
    }
    if (--workers_ == 0) desktop_.clock->give(idle_);
  }

  HLSimDesktop& desktop_;
  const int limit_;
  std::deque<std::function<void()>> pending_;
  std::int64_t started_ = 0;
  int workers_ = 0;
  std::deque<HLSimWork> works_;  // one per thread
  std::vector<std::thread> threads_;
  HLSimSignal idle_;
};

class Semaphore : public HLSemaphore {
 public:
  explicit Semaphore(HLSimDesktop& desktop) : desktop_(desktop) {}

  void signal() override {
    const HLSimLock lock = desktop_.clock->lock();
    ++count_;
    desktop_.clock->give(given_);
  }

  bool wait(double seconds) override {
    HLSimLock lock = desktop_.clock->lock();
    const HLSimMoment end = desktop_.clock->now() + (seconds > 0 ? HLSimMomentFromSeconds(seconds) : 0);
    while (count_ == 0 && desktop_.clock->now() < end) desktop_.clock->waitFor(lock, given_, end);
    if (count_ == 0) return false;
    --count_;
    return true;
  }

 private:
  HLSimDesktop& desktop_;
  int count_ = 0;
  HLSimSignal given_;
};

double wallClock() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

HLSimRunLoop::HLSimRunLoop(HLSimDesktop& desktop) : desktop_(desktop), start_(wallClock()) {}

double HLSimRunLoop::now() {
  const HLSimLock lock = desktop_.clock->lock();
  return start_ + static_cast<double>(desktop_.clock->now()) / 1e6;
}

void HLSimRunLoop::sleep(double seconds) {
  if (!(seconds > 0)) return;
  HLSimLock lock = desktop_.clock->lock();
  desktop_.clock->sleepUntil(lock, desktop_.clock->now() + HLSimMomentFromSeconds(seconds));
}

void HLSimRunLoop::runFor(double seconds) {
  HLSimLock lock = desktop_.clock->lock();
  const HLSimMoment end = desktop_.clock->now() + (seconds > 0 ? HLSimMomentFromSeconds(seconds) : 0);
  for (;;) {
    while (!deliveries_.empty()) {
      const std::function<void()> delivery = std::move(deliveries_.front());
      deliveries_.pop_front();
      lock.unlock();
      delivery();
      lock = desktop_.clock->lock();
    }
    if (std::exchange(desktop_.promptPending, false)) desktop_.world->setTrusted(true);
    const HLSimMoment now = desktop_.clock->now();
    if (now >= end && desktop_.world->nextDue() > now) return;
    desktop_.clock->waitFor(lock, posted_, std::max(now, end));
  }
}

void HLSimRunLoop::post(std::function<void()> delivery) {
  deliveries_.push_back(std::move(delivery));
  desktop_.clock->give(posted_);
}

std::unique_ptr<HLOperationQueue> HLSimRunLoop::makeOperationQueue(const std::string&, HLQualityOfService,
                                                                   int maxConcurrentOperations) {
  return std::make_unique<OperationQueue>(desktop_, std::max(maxConcurrentOperations, 1));
}

std::unique_ptr<HLSemaphore> HLSimRunLoop::makeSemaphore() { return std::make_unique<Semaphore>(desktop_); }
