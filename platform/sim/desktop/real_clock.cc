#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <utility>

#include "platform/sim/desktop/clock.h"

namespace {

using Steady = std::chrono::steady_clock;

// What the scene has due happens when somebody looks: nobody can tell the difference.
class RealClock : public HLSimClock {
 public:
  explicit RealClock(HLSimHappenings happenings) : happenings_(std::move(happenings)) {}

  HLSimLock lock() override {
    HLSimLock lock(mutex_);
    happenings_.happenUntil(now());
    return lock;
  }

  HLSimMoment now() const override {
    return std::chrono::duration_cast<std::chrono::microseconds>(Steady::now() - start_).count();
  }

  void sleepUntil(HLSimLock& lock, HLSimMoment moment) override {
    lock.unlock();
    std::this_thread::sleep_until(timeOf(moment));
    lock.lock();
    happenings_.happenUntil(now());
  }

  void waitFor(HLSimLock& lock, HLSimSignal& signal, HLSimMoment moment) override {
    while (!signal.given && now() < moment) {
      changed_.wait_until(lock, timeOf(std::min(moment, happenings_.nextDue())));
      happenings_.happenUntil(now());
    }
    signal.given = false;
  }

  void give(HLSimSignal& signal) override {
    signal.given = true;
    changed_.notify_all();
  }

  void dueChanged() override { changed_.notify_all(); }

  std::thread startThread(HLSimWork&, std::function<void(HLSimLock&)> body) override {
    return std::thread([this, body = std::move(body)] {
      HLSimLock own = lock();
      body(own);
    });
  }

  void standBack(HLSimLock&) override {}

 private:
  [[nodiscard]] Steady::time_point timeOf(HLSimMoment moment) const {
    constexpr HLSimMoment kYears = 1'000'000'000'000'000;  // some thirty, which the system's clock can still count
    return start_ + std::chrono::microseconds(std::min(moment, kYears));
  }

  HLSimHappenings happenings_;
  std::mutex mutex_;
  std::condition_variable changed_;
  const Steady::time_point start_ = Steady::now();
};

}  // namespace

std::unique_ptr<HLSimClock> HLMakeRealClock(HLSimHappenings happenings) {
  return std::make_unique<RealClock>(std::move(happenings));
}
