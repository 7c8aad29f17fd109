#include "platform/linux/session/linux_run_loop.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/threads/thread_safety.h"
#include "platform/threads/thread_start.h"

namespace {

constexpr std::int64_t kLongestWait = 60'000;  // milliseconds; what is left is waited for again
constexpr int kGlobalThreads = 8;

class Semaphore : public HLSemaphore {
 public:
  void signal() override {
    const HLLock lock(mutex_);
    ++count_;
    signaled_.notifyOne();
  }

  bool wait(double seconds) override {
    const HLLock lock(mutex_);
    const HLMicroseconds end = HLTimeAfter(HLSteadyNow(), seconds);
    while (count_ == 0 && HLSteadyNow() < end) signaled_.waitUntil(mutex_, HLSteadyTime(end));
    if (count_ == 0) return false;
    --count_;
    return true;
  }

 private:
  HLMutex mutex_;
  HLCondition signaled_;
  int count_ HL_GUARDED_BY(mutex_) = 0;
};

}  // namespace

double HLLinuxRunLoop::now() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void HLLinuxRunLoop::sleep(double seconds) {
  std::this_thread::sleep_for(std::chrono::microseconds(HLMicrosecondsFromSeconds(seconds)));
}

HLLinuxRunLoop::HLLinuxRunLoop()
    : poll_(epoll_create1(EPOLL_CLOEXEC)),
      waker_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      alarm_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      global_(std::make_unique<HLThreadQueue>("hushlet.global", kGlobalThreads)) {
  for (int descriptor : {waker_, alarm_}) {
    epoll_event event{EPOLLIN, {}};
    epoll_ctl(poll_, EPOLL_CTL_ADD, descriptor, &event);
  }
}

HLLinuxRunLoop::~HLLinuxRunLoop() {
  global_ = nullptr;  // waits for its work, which may still post steps
  for (int descriptor : {poll_, waker_, alarm_}) close(descriptor);
}

void HLLinuxRunLoop::runFor(double seconds) {
  const HLMicroseconds end = HLTimeAfter(HLSteadyNow(), seconds);
  for (;;) {
    serve();  // first: what has arrived may have been taken off the descriptor already
    const HLMicroseconds left = end - HLSteadyNow();
    if (left <= 0) return;
    epoll_event event{};
    epoll_wait(poll_, &event, 1, static_cast<int>(std::min((left + 999) / 1000, kLongestWait)));
  }
}

void HLLinuxRunLoop::serve() {
  std::uint64_t count = 0;
  for (int descriptor : {waker_, alarm_}) (void)!read(descriptor, &count, sizeof count);
  serveSources();
  // Dequeue one at a time: a step may run a nested loop, which must see the rest.
  while (const HLDueQueue::Step step = takeDue()) step();
}

int HLLinuxRunLoop::addSource(Source source) {
  epoll_event event{EPOLLIN, {}};
  epoll_ctl(poll_, EPOLL_CTL_ADD, source.descriptor, &event);
  sources_.emplace(++nextNumber_, std::move(source));
  wake();  // for what may have been taken off the descriptor already
  return nextNumber_;
}

void HLLinuxRunLoop::removeSource(int number) {
  const auto found = sources_.find(number);
  if (found == sources_.end()) return;
  epoll_ctl(poll_, EPOLL_CTL_DEL, found->second.descriptor, nullptr);
  sources_.erase(found);
}

void HLLinuxRunLoop::serveSources() {
  std::vector<int> numbers;
  for (const auto& [number, source] : sources_) numbers.push_back(number);
  for (int number : numbers) {
    const auto found = sources_.find(number);
    if (found == sources_.end()) continue;
    const std::function<bool()> ready = found->second.ready;  // it may remove its own source
    if (!ready()) removeSource(number);
  }
}

void HLLinuxRunLoop::wake() {
  const std::uint64_t one = 1;
  (void)!write(waker_, &one, sizeof one);
}

// Steps

void HLLinuxRunLoop::postToMainQueue(std::function<void()> step) { schedule(HLSteadyNow(), std::move(step)); }

void HLLinuxRunLoop::postToMainQueueAfter(double seconds, std::function<void()> step) {
  schedule(HLTimeAfter(HLSteadyNow(), seconds), std::move(step));
}

HLDueQueue::Step HLLinuxRunLoop::takeDue() {
  const HLLock lock(mutex_);
  HLDueQueue::Step step = due_.take(HLSteadyNow());
  armAlarm();
  return step;
}

HLDueQueue::Key HLLinuxRunLoop::schedule(HLMicroseconds time, HLDueQueue::Step step) {
  const HLLock lock(mutex_);
  const HLDueQueue::Key key = due_.schedule(time, std::move(step));
  armAlarm();
  return key;
}

void HLLinuxRunLoop::cancel(const HLDueQueue::Key& key) {
  const HLLock lock(mutex_);
  due_.cancel(key);
  armAlarm();
}

void HLLinuxRunLoop::armAlarm() {
  itimerspec setting{};
  if (const HLMicroseconds next = due_.next(); next != HLNever) {
    setting.it_value.tv_sec = static_cast<std::time_t>(next / 1'000'000);
    setting.it_value.tv_nsec = static_cast<long>(next % 1'000'000 * 1000);
  }
  timerfd_settime(alarm_, TFD_TIMER_ABSTIME, &setting, nullptr);
}

class HLLinuxRunLoop::Timer : public HLTimer {
 public:
  Timer(HLLinuxRunLoop& loop, double interval, std::function<void()> action)
      : loop_(loop),
        interval_(std::max<HLMicroseconds>(HLMicrosecondsFromSeconds(interval), 1)),
        action_(std::move(action)) {
    scheduleAfter(HLSteadyNow());
  }
  ~Timer() override { loop_.cancel(key_); }

 private:
  void scheduleAfter(HLMicroseconds due) {
    key_ = loop_.schedule(HLNextTick(due, interval_, HLSteadyNow()), [this] { fire(); });
  }

  void fire() {
    scheduleAfter(key_.time);
    const std::function<void()> action = action_;  // the action may destroy the timer
    action();
  }

  HLLinuxRunLoop& loop_;
  const HLMicroseconds interval_;
  const std::function<void()> action_;
  HLDueQueue::Key key_;
};

std::unique_ptr<HLTimer> HLLinuxRunLoop::scheduleTimer(double interval, std::function<void()> action) {
  return std::make_unique<Timer>(*this, interval, std::move(action));
}

// Queues

void HLLinuxRunLoop::postToGlobalQueue(HLQualityOfService, std::function<void()> work, std::function<void()> refused) {
  if (global_->addIfThreadStarts(work)) return;
  HLStartWhenPossible(
      *this, [this, work = std::move(work)] { return global_->addIfThreadStarts(work); }, std::move(refused));
}

std::unique_ptr<HLOperationQueue> HLLinuxRunLoop::makeOperationQueue(const std::string& name, HLQualityOfService,
                                                                     int maxConcurrentOperations) {
  return std::make_unique<HLThreadQueue>(name, std::max(1, maxConcurrentOperations));
}

std::unique_ptr<HLSemaphore> HLLinuxRunLoop::makeSemaphore() { return std::make_unique<Semaphore>(); }
