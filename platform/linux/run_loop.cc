#include "platform/linux/run_loop.h"

#include <poll.h>
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace {

constexpr std::int64_t kLongestWait = 60'000;  // milliseconds; what is left is waited for again

// A worker is started only when an operation finds no idle one, so that a batch of one costs one thread.
class ThreadQueue : public HLOperationQueue {
 public:
  ThreadQueue(std::string name, int limit) : name_(std::move(name)), limit_(static_cast<std::size_t>(limit)) {}

  ~ThreadQueue() override {
    {
      std::unique_lock lock(mutex_);
      idle_.wait(lock, [this] { return unfinished_ == 0; });
      ending_ = true;
    }
    work_.notify_all();
    for (std::thread& worker : workers_) worker.join();
  }

  void addOperation(std::function<void()> operation) override {
    const std::lock_guard lock(mutex_);
    operations_.push_back(std::move(operation));
    ++unfinished_;
    if (unfinished_ > workers_.size() && workers_.size() < limit_) {
      workers_.emplace_back([this] { run(); });
      pthread_setname_np(workers_.back().native_handle(), name_.substr(0, kNameLimit).c_str());
    } else {
      work_.notify_one();
    }
  }

  void waitUntilAllOperationsAreFinished() override {
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [this] { return unfinished_ == 0; });
  }

 private:
  static constexpr std::size_t kNameLimit = 15;  // the kernel's

  void run() {
    std::unique_lock lock(mutex_);
    while (true) {
      work_.wait(lock, [this] { return ending_ || !operations_.empty(); });
      if (operations_.empty()) return;
      {
        const std::function<void()> operation = std::move(operations_.front());
        operations_.pop_front();
        lock.unlock();
        operation();
      }
      lock.lock();
      if (--unfinished_ == 0) idle_.notify_all();
    }
  }

  const std::string name_;
  const std::size_t limit_;
  std::mutex mutex_;
  std::condition_variable work_;
  std::condition_variable idle_;
  std::deque<std::function<void()>> operations_;
  std::size_t unfinished_ = 0;
  bool ending_ = false;
  std::vector<std::thread> workers_;
};

class Semaphore : public HLSemaphore {
 public:
  void signal() override {
    const std::lock_guard lock(mutex_);
    ++count_;
    signaled_.notify_one();
  }

  bool wait(double seconds) override {
    std::unique_lock lock(mutex_);
    const std::chrono::duration<double> patience(std::max(seconds, 0.0));
    if (!signaled_.wait_for(lock, patience, [this] { return count_ > 0; })) return false;
    --count_;
    return true;
  }

 private:
  std::mutex mutex_;
  std::condition_variable signaled_;
  int count_ = 0;
};

}  // namespace

double HLLinuxRunLoop::now() {
  return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void HLLinuxRunLoop::sleep(double seconds) {
  if (seconds > 0) std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

void HLLinuxRunLoop::runFor(double seconds) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point end =
      Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(std::max(seconds, 0.0)));
  for (;;) {
    serveSources();  // first: what has arrived may have been taken off the descriptor already
    const Clock::duration left = end - Clock::now();
    if (left <= Clock::duration::zero()) return;
    std::vector<pollfd> descriptors;
    for (const auto& [number, source] : sources_) descriptors.push_back({source.descriptor, POLLIN, 0});
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    ::poll(descriptors.data(), descriptors.size(),
           static_cast<int>(std::min<std::int64_t>(milliseconds, kLongestWait)));
  }
}

int HLLinuxRunLoop::addSource(Source source) {
  sources_.emplace(++nextNumber_, std::move(source));
  return nextNumber_;
}

void HLLinuxRunLoop::removeSource(int number) { sources_.erase(number); }

void HLLinuxRunLoop::serveSources() {
  std::vector<int> numbers;
  for (const auto& [number, source] : sources_) numbers.push_back(number);
  for (int number : numbers) {
    const auto found = sources_.find(number);
    if (found == sources_.end()) continue;
    const std::function<bool()> ready = found->second.ready;  // it may remove its own source
    if (!ready()) sources_.erase(number);
  }
}

std::unique_ptr<HLOperationQueue> HLLinuxRunLoop::makeOperationQueue(const std::string& name, HLQualityOfService,
                                                                     int maxConcurrentOperations) {
  return std::make_unique<ThreadQueue>(name, std::max(1, maxConcurrentOperations));
}

std::unique_ptr<HLSemaphore> HLLinuxRunLoop::makeSemaphore() { return std::make_unique<Semaphore>(); }
