#include "platform/linux/session/linux_run_loop.h"

#include <pthread.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <deque>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/thread_safety.h"

namespace {

constexpr std::int64_t kLongestWait = 60'000;  // milliseconds; what is left is waited for again
constexpr int kGlobalThreads = 8;

// A worker is started only when an operation finds no idle one, so that a batch of one costs one thread.
class ThreadQueue : public HLOperationQueue {
 public:
  ThreadQueue(std::string name, int limit) : name_(std::move(name)), limit_(static_cast<std::size_t>(limit)) {}

  ~ThreadQueue() override {
    {
      const HLLock lock(mutex_);
      while (unfinished_ > 0) idle_.wait(mutex_);
      ending_ = true;
    }
    work_.notifyAll();
    for (std::thread& worker : workers_) worker.join();
  }

  void addOperation(std::function<void()> operation) override {
    const HLLock lock(mutex_);
    operations_.push_back(std::move(operation));
    ++unfinished_;
    if (unfinished_ > workers_.size() && workers_.size() < limit_) {
      workers_.emplace_back([this] { run(); });
      pthread_setname_np(workers_.back().native_handle(), name_.substr(0, kNameLimit).c_str());
    } else {
      work_.notifyOne();
    }
  }

  void waitUntilAllOperationsAreFinished() override {
    const HLLock lock(mutex_);
    while (unfinished_ > 0) idle_.wait(mutex_);
  }

 private:
  static constexpr std::size_t kNameLimit = 15;  // the kernel's

  void run() {
    const HLLock lock(mutex_);
    while (true) {
      while (!ending_ && operations_.empty()) work_.wait(mutex_);
      if (operations_.empty()) return;
      std::function<void()> operation = std::move(operations_.front());
      operations_.pop_front();
      mutex_.unlock();
      operation();
      operation = nullptr;
      mutex_.lock();
      if (--unfinished_ == 0) idle_.notifyAll();
    }
  }

  const std::string name_;
  const std::size_t limit_;
  HLMutex mutex_;
  HLCondition work_;
  HLCondition idle_;
  std::deque<std::function<void()>> operations_ HL_GUARDED_BY(mutex_);
  std::size_t unfinished_ HL_GUARDED_BY(mutex_) = 0;
  bool ending_ HL_GUARDED_BY(mutex_) = false;
  std::vector<std::thread> workers_ HL_GUARDED_BY(mutex_);
};

class Semaphore : public HLSemaphore {
 public:
  void signal() override {
    const HLLock lock(mutex_);
    ++count_;
    signaled_.notifyOne();
  }

  bool wait(double seconds) override {
    const HLLock lock(mutex_);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::nanoseconds>(
                                                                 std::chrono::duration<double>(std::max(seconds, 0.0)));
    while (count_ == 0 && std::chrono::steady_clock::now() < deadline) signaled_.waitUntil(mutex_, deadline);
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
  if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

HLLinuxRunLoop::HLLinuxRunLoop()
    : poll_(epoll_create1(EPOLL_CLOEXEC)),
      waker_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      alarm_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)) {
  for (int descriptor : {waker_, alarm_}) {
    epoll_event event{EPOLLIN, {}};
    epoll_ctl(poll_, EPOLL_CTL_ADD, descriptor, &event);
  }
}

HLLinuxRunLoop::~HLLinuxRunLoop() {
  global_ = nullptr;
  for (int descriptor : {poll_, waker_, alarm_}) close(descriptor);
}

void HLLinuxRunLoop::runFor(double seconds) {
  const Clock::time_point end =
      Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(std::max(seconds, 0.0)));
  for (;;) {
    serve();  // first: what has arrived may have been taken off the descriptor already
    const Clock::duration left = end - Clock::now();
    if (left <= Clock::duration::zero()) return;
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    epoll_event event{};
    epoll_wait(poll_, &event, 1, static_cast<int>(std::min<std::int64_t>(milliseconds, kLongestWait)));
  }
}

void HLLinuxRunLoop::serve() {
  std::uint64_t count = 0;
  for (int descriptor : {waker_, alarm_}) (void)!read(descriptor, &count, sizeof count);
  serveSources();
  // One at a time: a step may run a loop of its own, which is then to find the others.
  while (const std::function<void()> step = takeDue()) step();
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

// What is posted and what is due

void HLLinuxRunLoop::postToMainQueue(std::function<void()> step) {
  {
    const HLLock lock(mutex_);
    posted_.push_back(std::move(step));
  }
  wake();
}

void HLLinuxRunLoop::postToMainQueueAfter(double seconds, std::function<void()> step) {
  const auto delay = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(std::max(seconds, 0.0)));
  (void)schedule(Clock::now() + delay, std::move(step));
}

std::function<void()> HLLinuxRunLoop::takeDue() {
  const HLLock lock(mutex_);
  std::function<void()> step;
  if (!posted_.empty()) {
    step = std::move(posted_.front());
    posted_.pop_front();
  } else if (!due_.empty() && due_.begin()->first.first <= Clock::now()) {
    step = std::move(due_.extract(due_.begin()).mapped());
    armAlarm();
  }
  return step;
}

HLLinuxRunLoop::DueKey HLLinuxRunLoop::schedule(Clock::time_point moment, std::function<void()> action) {
  const HLLock lock(mutex_);
  const DueKey key = {moment, dueNumber_++};
  due_.emplace(key, std::move(action));
  armAlarm();
  return key;
}

void HLLinuxRunLoop::unschedule(const DueKey& key) {
  const HLLock lock(mutex_);
  due_.erase(key);
  armAlarm();
}

void HLLinuxRunLoop::armAlarm() {
  itimerspec setting{};
  if (!due_.empty()) {
    const auto moment = due_.begin()->first.first.time_since_epoch();
    const auto nanoseconds = std::max<std::int64_t>(std::chrono::nanoseconds(moment).count(), 1);  // 0 would disarm it
    setting.it_value.tv_sec = static_cast<std::time_t>(nanoseconds / 1'000'000'000);
    setting.it_value.tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
  }
  timerfd_settime(alarm_, TFD_TIMER_ABSTIME, &setting, nullptr);
}

class HLLinuxRunLoop::Timer : public HLTimer {
 public:
  Timer(HLLinuxRunLoop& loop, double interval, std::function<void()> action)
      : loop_(loop),
        interval_(std::max(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(interval)),
                           Clock::duration(1))),
        action_(std::move(action)) {
    scheduleAfter(Clock::now());
  }
  ~Timer() override { loop_.unschedule(key_); }

 private:
  // Turns that have been missed are not made up for.
  void scheduleAfter(Clock::time_point last) {
    Clock::time_point next = last + interval_;
    const Clock::time_point now = Clock::now();
    if (next <= now) next += (now - next) / interval_ * interval_ + interval_;
    key_ = loop_.schedule(next, [this] { fire(); });
  }

  void fire() {
    scheduleAfter(key_.first);
    const std::function<void()> action = action_;  // it may end the timer
    action();
  }

  HLLinuxRunLoop& loop_;
  const Clock::duration interval_;
  const std::function<void()> action_;
  DueKey key_;
};

std::unique_ptr<HLTimer> HLLinuxRunLoop::scheduleTimer(double interval, std::function<void()> action) {
  return std::make_unique<Timer>(*this, interval, std::move(action));
}

// Queues

void HLLinuxRunLoop::postToGlobalQueue(HLQualityOfService quality, std::function<void()> work) {
  HLOperationQueue* queue = nullptr;
  {
    const HLLock lock(mutex_);
    if (global_ == nullptr) global_ = makeOperationQueue("hushlet.global", quality, kGlobalThreads);
    queue = global_.get();
  }
  queue->addOperation(std::move(work));
}

std::unique_ptr<HLOperationQueue> HLLinuxRunLoop::makeOperationQueue(const std::string& name, HLQualityOfService,
                                                                     int maxConcurrentOperations) {
  return std::make_unique<ThreadQueue>(name, std::max(1, maxConcurrentOperations));
}

std::unique_ptr<HLSemaphore> HLLinuxRunLoop::makeSemaphore() { return std::make_unique<Semaphore>(); }
