#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/sim/desktop/clock.h"

namespace {

using Steady = std::chrono::steady_clock;

// Brings the world up to date only when a thread takes the mutex: no thread can tell the difference.
class RealClock : public HLSimClock {
 public:
  explicit RealClock(HLSimWorldTime world) : world_(std::move(world)) {}

  HLSimMoment now() const override HL_REQUIRES(this) {
    return std::chrono::duration_cast<std::chrono::microseconds>(Steady::now() - start_).count();
  }

  void sleepUntil(HLSimMoment moment) override HL_REQUIRES(this) {
    unlock();
    std::this_thread::sleep_until(timeOf(moment));
    lock();
  }

  void waitFor(HLSimSignal& signal, HLSimMoment moment) override HL_REQUIRES(this) {
    while (!signal.given && now() < moment) {
      changed_.waitUntil(*this, timeOf(std::min(moment, world_.nextDue())));
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
    return std::thread([this, body = std::move(body)] {
      const HLSimLock own(*this);
      body();
    });
  }

 private:
  void catchUp() override HL_REQUIRES(this) { world_.advanceTo(now()); }

  [[nodiscard]] Steady::time_point timeOf(HLSimMoment moment) const {
    constexpr HLSimMoment kYears = 1'000'000'000'000'000;  // about thirty; steady_clock counts 292 in nanoseconds
    return start_ + std::chrono::microseconds(std::min(moment, kYears));
  }

  const HLSimWorldTime world_;
  HLCondition changed_;
  const Steady::time_point start_ = Steady::now();
};

}  // namespace

std::unique_ptr<HLSimClock> HLMakeRealClock(HLSimWorldTime world) {
  return std::make_unique<RealClock>(std::move(world));
}
