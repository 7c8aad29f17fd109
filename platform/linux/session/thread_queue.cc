#include "platform/linux/session/thread_queue.h"

#include <pthread.h>

#include <utility>

#include "platform/threads/thread_start.h"

namespace {

constexpr std::size_t kNameLimit = 15;  // the kernel's

}  // namespace

HLThreadQueue::~HLThreadQueue() {
  {
    const HLLock lock(mutex_);
    finishAll();
    ending_ = true;
  }
  added_.notifyAll();
  for (std::thread& worker : workers_) worker.join();
}

void HLThreadQueue::addOperation(std::function<void()> operation) {
  const HLLock lock(mutex_);
  (void)provideWorker();
  add(std::move(operation));
}

bool HLThreadQueue::addIfThreadStarts(const std::function<void()>& operation) {
  const HLLock lock(mutex_);
  if (!provideWorker()) return false;
  add(operation);
  return true;
}

void HLThreadQueue::waitUntilAllOperationsAreFinished() {
  const HLLock lock(mutex_);
  finishAll();
}

void HLThreadQueue::add(std::function<void()> operation) {
  operations_.push_back(std::move(operation));
  ++unfinished_;
  added_.notifyOne();
}

bool HLThreadQueue::provideWorker() {
  if (unfinished_ < workers_.size() || workers_.size() == limit_) return true;
  std::thread worker = HLTryStartThread([this] { work(); });
  if (!worker.joinable()) return false;
  pthread_setname_np(worker.native_handle(), name_.substr(0, kNameLimit).c_str());
  workers_.push_back(std::move(worker));
  return true;
}

void HLThreadQueue::work() {
  const HLLock lock(mutex_);
  for (;;) {
    while (!ending_ && operations_.empty()) added_.wait(mutex_);
    if (operations_.empty()) return;
    performNext();
  }
}

void HLThreadQueue::performNext() {
  std::function<void()> operation = std::move(operations_.front());
  operations_.pop_front();
  mutex_.unlock();
  operation();
  operation = nullptr;  // may own what its owner destroys once the queue is idle
  mutex_.lock();
  if (--unfinished_ == 0) idle_.notifyAll();
}

void HLThreadQueue::finishAll() {
  while (workers_.empty() && !operations_.empty()) performNext();
  while (unfinished_ > 0) idle_.wait(mutex_);
}
