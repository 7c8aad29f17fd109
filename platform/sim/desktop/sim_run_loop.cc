#include "platform/sim/desktop/sim_run_loop.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>
#include <vector>

#include "platform/threads/thread_start.h"

namespace {

// Returns a thread that is not joinable if none can be started.
std::thread startThread(HLSimDesktop& desktop, HLSimWork& work, std::function<void()> body) HL_REQUIRES(desktop.clock) {
  if (desktop.refusesThreads && desktop.refusesThreads()) return {};
  return desktop.clock->startThread(work, std::move(body));
}

class OperationQueue : public HLOperationQueue {
 public:
  OperationQueue(HLSimDesktop& desktop, int limit) : desktop_(desktop), limit_(limit) {}

  ~OperationQueue() override {
    OperationQueue::waitUntilAllOperationsAreFinished();
    for (std::thread& thread : threads_) thread.join();
  }

  void addOperation(std::function<void()> operation) override {
    const HLSimLock lock(*desktop_.clock);
    pending_.push_back(std::move(operation));
    if (workers_ >= limit_) return;
    HLSimWork& work = works_.emplace_back(HLSimWork{this, 0});
    std::thread thread = startThread(desktop_, work, [this, &work] {
      desktop_.clock->assertHeld();
      runWorker(work);
    });
    if (!thread.joinable()) return works_.pop_back();
    ++workers_;
    threads_.push_back(std::move(thread));
  }

  void waitUntilAllOperationsAreFinished() override {
    const HLSimLock lock(*desktop_.clock);
    while (workers_ > 0) desktop_.clock->waitFor(idle_, HLNever);
    if (pending_.empty()) return;
    ++workers_;
    HLSimWork own{this, 0};
    runWorker(own);
  }

 private:
  void runWorker(HLSimWork& work) HL_REQUIRES(desktop_.clock) {
    while (!pending_.empty()) {
      std::function<void()> operation = std::move(pending_.front());
      pending_.pop_front();
      work.operation = started_++;
      desktop_.clock->unlock();
      operation();
      operation = nullptr;
      desktop_.clock->lock();
      if (!pending_.empty()) desktop_.clock->yield();
    }
    if (--workers_ == 0) desktop_.clock->give(idle_);
  }

  HLSimDesktop& desktop_;
  const int limit_;
  std::deque<std::function<void()>> pending_ HL_GUARDED_BY(desktop_.clock);
  std::int64_t started_ HL_GUARDED_BY(desktop_.clock) = 0;
  int workers_ HL_GUARDED_BY(desktop_.clock) = 0;
  HLSimSignal idle_ HL_GUARDED_BY(desktop_.clock);
  // The owner thread's, one entry per thread.
  std::deque<HLSimWork> works_;
  std::vector<std::thread> threads_;
};

class Semaphore : public HLSemaphore {
 public:
  explicit Semaphore(HLSimDesktop& desktop) : desktop_(desktop) {}

  void signal() override {
    const HLSimLock lock(*desktop_.clock);
    ++count_;
    desktop_.clock->give(given_);
  }

  bool wait(double seconds) override {
    const HLSimLock lock(*desktop_.clock);
    const HLMicroseconds end = HLTimeAfter(desktop_.clock->now(), seconds);
    while (count_ == 0 && desktop_.clock->now() < end) desktop_.clock->waitFor(given_, end);
    if (count_ == 0) return false;
    --count_;
    return true;
  }

 private:
  HLSimDesktop& desktop_;
  int count_ HL_GUARDED_BY(desktop_.clock) = 0;
  HLSimSignal given_ HL_GUARDED_BY(desktop_.clock);
};

double wallClock() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

HLSimRunLoop::HLSimRunLoop(HLSimDesktop& desktop) : desktop_(desktop), start_(wallClock()) {}

double HLSimRunLoop::now() {
  const HLSimLock lock(*desktop_.clock);
  return start_ + HLSecondsFromMicroseconds(desktop_.clock->now());
}

void HLSimRunLoop::sleep(double seconds) {
  if (!(seconds > 0)) return;
  const HLSimLock lock(*desktop_.clock);
  desktop_.clock->sleepUntil(HLTimeAfter(desktop_.clock->now(), seconds));
}

// The main thread's steps

class HLSimRunLoop::Timer : public HLTimer {
 public:
  Timer(HLSimRunLoop& loop, double interval, std::function<void()> action)
      : loop_(loop),
        interval_(std::max<HLMicroseconds>(HLMicrosecondsFromSeconds(interval), 1)),
        action_(std::move(action)) {
    const HLSimLock lock(*loop_.desktop_.clock);
    ++loop_.timers_;
    scheduleAfter(loop_.desktop_.clock->now());
  }
  ~Timer() override {
    const HLSimLock lock(*loop_.desktop_.clock);
    --loop_.timers_;
    loop_.due_.cancel(key_);
  }

 private:
  void scheduleAfter(HLMicroseconds due) HL_REQUIRES(loop_.desktop_.clock) {
    key_ = loop_.schedule(HLNextTick(due, interval_, loop_.desktop_.clock->now()), [this] { fire(); });
  }

  void fire() {
    {
      const HLSimLock lock(*loop_.desktop_.clock);
      scheduleAfter(key_.time);
    }
    const std::function<void()> action = action_;  // the action may destroy the timer
    action();
  }

  HLSimRunLoop& loop_;
  const HLMicroseconds interval_;
  const std::function<void()> action_;
  HLDueQueue::Key key_;
};

void HLSimRunLoop::post(HLMicroseconds time, HLDueQueue::Step step) {
  desktop_.clock->assertHeld();
  posted_.schedule(time, std::move(step));
  desktop_.clock->give(changed_);
}

HLDueQueue::Key HLSimRunLoop::schedule(HLMicroseconds time, HLDueQueue::Step step) {
  desktop_.clock->give(changed_);
  return due_.schedule(time, std::move(step));
}

std::unique_ptr<HLTimer> HLSimRunLoop::scheduleTimer(double interval, std::function<void()> action) {
  return std::make_unique<Timer>(*this, interval, std::move(action));
}

void HLSimRunLoop::postToMainQueue(std::function<void()> step) {
  const HLSimLock lock(*desktop_.clock);
  post(desktop_.clock->now(), std::move(step));
}

void HLSimRunLoop::postToMainQueueAfter(double seconds, std::function<void()> step) {
  const HLSimLock lock(*desktop_.clock);
  schedule(HLTimeAfter(desktop_.clock->now(), seconds), std::move(step));
}

// Running

bool HLSimRunLoop::runNext(HLMicroseconds limit) {
  limit = std::min(limit, desktop_.clock->now());
  HLDueQueue::Step next = posted_.take(limit);
  if (!next) next = due_.take(limit);
  if (!next) {
    if (std::exchange(desktop_.promptPending, false)) desktop_.world->setTrusted(true);
    return false;
  }
  desktop_.clock->unlock();
  next();
  next = nullptr;
  desktop_.clock->lock();
  return true;
}

void HLSimRunLoop::runFor(double seconds) {
  const HLSimLock lock(*desktop_.clock);
  const HLMicroseconds end = HLTimeAfter(desktop_.clock->now(), seconds);
  for (;;) {
    while (runNext(end)) {
    }
    const HLMicroseconds now = desktop_.clock->now();
    if (now >= end && desktop_.world->nextDue() > end) return;
    desktop_.clock->waitFor(changed_, std::max(now, std::min(due_.next(), end)));
  }
}

void HLSimRunLoop::runEventLoop() {
  const HLSimLock lock(*desktop_.clock);
  while (!stopped_) {
    if (runNext(HLNever)) continue;
    if (onlyTimersAreDue()) return;
    // Also wakes for the scene's events: after one, nothing may be due any more.
    desktop_.clock->waitFor(changed_, std::min(due_.next(), desktop_.world->nextDue()));
  }
}

void HLSimRunLoop::forgetSteps() {
  HLDueQueue posted;  // both are destroyed after the lock is released
  HLDueQueue due;
  const HLSimLock lock(*desktop_.clock);
  std::swap(posted, posted_);
  std::swap(due, due_);
}

bool HLSimRunLoop::onlyTimersAreDue() const {
  return due_.size() == timers_ && working_ == 0 && desktop_.world->nextDue() == HLNever;
}

// Queues

void HLSimRunLoop::postToGlobalQueue(HLQualityOfService, std::function<void()> work, std::function<void()> refused) {
  if (startWork(work)) return;
  HLStartWhenPossible(
      *this, [this, work = std::move(work)] { return startWork(work); }, std::move(refused));
}

bool HLSimRunLoop::startWork(const std::function<void()>& work) {
  const HLSimLock lock(*desktop_.clock);
  HLSimWork& own = works_.emplace_back(HLSimWork{this, static_cast<std::int64_t>(works_.size())});
  std::thread thread = startThread(desktop_, own, [this, work]() mutable {
    desktop_.clock->assertHeld();
    perform(std::move(work));
  });
  if (!thread.joinable()) {
    works_.pop_back();
    return false;
  }
  ++working_;
  threads_.push_back(std::move(thread));
  return true;
}

void HLSimRunLoop::perform(std::function<void()> work) {
  desktop_.clock->unlock();
  work();
  work = nullptr;
  desktop_.clock->lock();
  --working_;
  desktop_.clock->give(idle_);
  desktop_.clock->give(changed_);
}

bool HLSimRunLoop::isWorking() {
  const HLSimLock lock(*desktop_.clock);
  return working_ > 0;
}

void HLSimRunLoop::finishGlobalQueue() {
  std::vector<std::thread> ended;
  {
    const HLSimLock lock(*desktop_.clock);
    while (working_ > 0) desktop_.clock->waitFor(idle_, HLNever);
    ended.swap(threads_);
  }
  for (std::thread& thread : ended) thread.join();
}

HLSimRunLoop::~HLSimRunLoop() { finishGlobalQueue(); }

std::unique_ptr<HLOperationQueue> HLSimRunLoop::makeOperationQueue(const std::string&, HLQualityOfService,
                                                                   int maxConcurrentOperations) {
  return std::make_unique<OperationQueue>(desktop_, std::max(maxConcurrentOperations, 1));
}

std::unique_ptr<HLSemaphore> HLSimRunLoop::makeSemaphore() { return std::make_unique<Semaphore>(desktop_); }
