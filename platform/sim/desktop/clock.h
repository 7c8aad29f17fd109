// Time and turns. On the virtual clock one thread of the program runs at a time and time jumps when none can; on the
// real one threads run as they like and sleeps are real.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/sim/scene/scene.h"

// Guards the whole desktop, clock and world alike.
using HLSimLock = std::unique_lock<std::mutex>;

// The world's side of time, called with the lock held.
struct HLSimHappenings {
  std::function<HLSimMoment()> nextDue;
  std::function<void(HLSimMoment)> happenUntil;
};

// Something that a thread waits for besides a moment. One thread waits at a time.
struct HLSimSignal {
  bool given = false;
  void* waiting = nullptr;  // the clock's own record of that thread
};

// Which of a pool's operations a worker is at: of several that wake at one moment, those added first go first.
struct HLSimWork {
  const void* pool = nullptr;
  std::int64_t operation = 0;
};

class HLSimClock {
 public:
  HLSimClock() = default;
  HLSimClock(const HLSimClock&) = delete;
  HLSimClock& operator=(const HLSimClock&) = delete;
  virtual ~HLSimClock() = default;

  // The lock, and with it a world that is up to date.
  [[nodiscard]] virtual HLSimLock lock() = 0;
  [[nodiscard]] virtual HLSimMoment now() const = 0;

  // All of these give up the lock while they wait.
  virtual void sleepUntil(HLSimLock& lock, HLSimMoment moment) = 0;
  // Until the signal is given or the moment has come. Takes the signal back.
  virtual void waitFor(HLSimLock& lock, HLSimSignal& signal, HLSimMoment moment) = 0;
  virtual void give(HLSimSignal& signal) = 0;
  // Something new may be due.
  virtual void dueChanged() = 0;

  // A thread that may call all of this. Work is the thread's, and the worker changes it with the lock held.
  [[nodiscard]] virtual std::thread startThread(HLSimWork& work, std::function<void(HLSimLock&)> body) = 0;
  // Lets those go first that are able to run.
  virtual void standBack(HLSimLock& lock) = 0;
};

// The calling thread is the main thread and has the first turn.
[[nodiscard]] std::unique_ptr<HLSimClock> HLMakeVirtualClock(HLSimHappenings happenings);
[[nodiscard]] std::unique_ptr<HLSimClock> HLMakeRealClock(HLSimHappenings happenings);
