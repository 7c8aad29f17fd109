// A mutex, a lock and a condition variable that Clang's thread-safety analysis understands (std's are not annotated),
// and the annotations for what they guard. tools/lint/thread-safety runs the analysis; other compilers ignore it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#ifdef __clang__
#define HL_THREAD_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define HL_THREAD_ATTRIBUTE(attribute)
#endif

// A type that can be held, such as a mutex, and a type whose objects hold one while they live.
#define HL_CAPABILITY(kind) HL_THREAD_ATTRIBUTE(capability(kind))
#define HL_SCOPED_CAPABILITY HL_THREAD_ATTRIBUTE(scoped_lockable)
// A variable, and what a pointer points to, that are used only while the mutex is held.
#define HL_GUARDED_BY(mutex) HL_THREAD_ATTRIBUTE(guarded_by(mutex))
#define HL_PT_GUARDED_BY(mutex) HL_THREAD_ATTRIBUTE(pt_guarded_by(mutex))
// A function that takes the mutex, that releases it, or whose caller holds it. Without an argument: its own object.
#define HL_ACQUIRE(...) HL_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define HL_RELEASE(...) HL_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define HL_REQUIRES(...) HL_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
// For a callback that only a holder of the mutex calls: from here on the analysis takes the mutex as held.
#define HL_ASSERT_CAPABILITY(...) HL_THREAD_ATTRIBUTE(assert_capability(__VA_ARGS__))

class HL_CAPABILITY("mutex") HLMutex {
 public:
  HLMutex() = default;
  HLMutex(const HLMutex&) = delete;
  HLMutex& operator=(const HLMutex&) = delete;

  void lock() HL_ACQUIRE() { mutex_.lock(); }
  void unlock() HL_RELEASE() { mutex_.unlock(); }
  void assertHeld() const HL_ASSERT_CAPABILITY(this) {}

 private:
  friend class HLCondition;
  std::mutex mutex_;
};

// Holds a mutex while it lives.
template <class Mutex>
class HL_SCOPED_CAPABILITY HLLock {
 public:
  explicit HLLock(Mutex& mutex) HL_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
  ~HLLock() HL_RELEASE() { mutex_.unlock(); }
  HLLock(const HLLock&) = delete;
  HLLock& operator=(const HLLock&) = delete;

 private:
  Mutex& mutex_;
};

// Waiting releases the mutex and takes it again; wakes without cause happen, so wait in a loop. Thread-safe.
class HLCondition {
 public:
  HLCondition() = default;
  HLCondition(const HLCondition&) = delete;
  HLCondition& operator=(const HLCondition&) = delete;

  void wait(HLMutex& mutex) HL_REQUIRES(mutex) {
    std::unique_lock lock(mutex.mutex_, std::adopt_lock);
    condition_.wait(lock);
    lock.release();
  }
  void waitUntil(HLMutex& mutex, std::chrono::steady_clock::time_point time) HL_REQUIRES(mutex) {
    std::unique_lock lock(mutex.mutex_, std::adopt_lock);
    condition_.wait_until(lock, time);
    lock.release();
  }
  void notifyOne() { condition_.notify_one(); }
  void notifyAll() { condition_.notify_all(); }

 private:
  std::condition_variable condition_;
};
