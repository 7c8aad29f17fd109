// Time and threads. On the virtual clock one thread of the program runs at a time, and time jumps to the next thing due
// when no thread can run. On the real clock threads run freely and sleeps are real.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <thread>

#include "platform/threads/due_queue.h"
#include "platform/threads/thread_safety.h"

// The events that the world has scheduled. The clock calls both with its mutex held.
struct HLSimEvents {
  std::function<HLMicroseconds()> nextDue;
  std::function<void(HLMicroseconds)> advanceTo;
};

// A condition that one thread at a time waits for, with a deadline. The clock's mutex guards it.
struct HLSimSignal {
  bool given = false;
  void* waiting = nullptr;  // the clock's record of the waiting thread
};

// The operation of a pool that a worker performs: of several workers that wake at one time, those with the operations
// added first run first. The clock's mutex guards it.
struct HLSimWork {
  const void* pool = nullptr;
  std::int64_t operation = 0;
};

// The clock is the desktop's mutex too: it guards the world, the run loop and itself.
class HL_CAPABILITY("clock") HLSimClock : public HLMutex {
 public:
  virtual ~HLSimClock() = default;

  // Takes the mutex and brings the world up to date.
  void lock() HL_ACQUIRE() {
    HLMutex::lock();
    catchUp();
  }
  [[nodiscard]] virtual HLMicroseconds now() const HL_REQUIRES(this) = 0;

  // These release the mutex while they wait.
  virtual void sleepUntil(HLMicroseconds time) HL_REQUIRES(this) = 0;
  // Waits for the signal, and consumes it, but no longer than until `time`.
  virtual void waitFor(HLSimSignal& signal, HLMicroseconds time) HL_REQUIRES(this) = 0;
  // Lets the other threads that can run go first.
  virtual void yield() HL_REQUIRES(this) = 0;

  virtual void give(HLSimSignal& signal) HL_REQUIRES(this) = 0;
  // To be called when the world may have scheduled an earlier event.
  virtual void dueChanged() HL_REQUIRES(this) = 0;

  // Starts a thread that may call all of this, with the mutex held. `work` must outlive the thread. Returns a thread
  // that is not joinable if none can be started.
  [[nodiscard]] virtual std::thread startThread(HLSimWork& work, std::function<void()> body) HL_REQUIRES(this) = 0;

 protected:
  virtual void catchUp() HL_REQUIRES(this) = 0;
};

using HLSimLock = HLLock<HLSimClock>;

// The calling thread is the main thread and runs first.
[[nodiscard]] std::unique_ptr<HLSimClock> HLMakeVirtualClock(HLSimEvents events);
[[nodiscard]] std::unique_ptr<HLSimClock> HLMakeRealClock(HLSimEvents events);
