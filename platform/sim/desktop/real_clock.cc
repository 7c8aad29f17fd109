#include <algorithm>
#include <utility>

#include "platform/sim/desktop/clock.h"
#include "platform/threads/thread_start.h"

namespace {

// Applies the world's events that are due whenever a thread takes the mutex: no thread can see the world without it.
class RealClock : public HLSimClock {
 public:
  explicit RealClock(HLSimEvents events) : events_(std::move(events)) {}

  HLMicroseconds now() const override HL_REQUIRES(this) { return HLSteadyNow() - start_; }

  void sleepUntil(HLMicroseconds moment) override HL_REQUIRES(this) {
    unlock();
    std::this_thread::sleep_until(steadyTime(moment));
    lock();
  }

  void waitFor(HLSimSignal& signal, HLMicroseconds moment) override HL_REQUIRES(this) {
    while (!signal.given && now() < moment) {
      changed_.waitUntil(*this, steadyTime(std::min(moment, events_.nextDue())));
      catchUp();
    }
    signal.given = false;
  }

  void yield() override HL_REQUIRES(this) {}

  void give(HLSimSignal& signal) override HL_REQUIRES(this) {
    signal.given = true;
    changed_.notifyAll();
  }

  void dueChanged() override HL_REQUIRES(this) { changed_.notifyAll(); }

  std::thread startThread(HLSimWork&, std::function<void()> body) override HL_REQUIRES(this) {
    return HLTryStartThread([this, body = std::move(body)] {
      const HLSimLock own(*this);
      body();
    });
  }

 private:
  void catchUp() override HL_REQUIRES(this) { events_.advanceTo(now()); }

  [[nodiscard]] std::chrono::steady_clock::time_point steadyTime(HLMicroseconds time) const {
    return HLSteadyTime(start_ + std::min(time, HLNever - start_));
  }

  const HLSimEvents events_;
  HLCondition changed_;
  const HLMicroseconds start_ = HLSteadyNow();
};

}  // namespace

std::unique_ptr<HLSimClock> HLMakeRealClock(HLSimEvents events) {
  return std::make_unique<RealClock>(std::move(events));
}
