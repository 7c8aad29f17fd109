// Times of a run loop, and the queue of the steps that it runs at these times.
#pragma once

#include <chrono>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>

// A time or a duration. A time counts from a start that its clock chooses.
using HLMicroseconds = std::int64_t;
inline constexpr HLMicroseconds HLNever = INT64_MAX;

// Rounds to the nearest microsecond. Saturates; NaN is 0.
[[nodiscard]] HLMicroseconds HLMicrosecondsFromSeconds(double seconds);
[[nodiscard]] constexpr double HLSecondsFromMicroseconds(HLMicroseconds time) {
  return static_cast<double>(time) / 1e6;
}
// The time `seconds` after `start`, or `start` for 0 or less. Saturates just before HLNever.
[[nodiscard]] HLMicroseconds HLTimeAfter(HLMicroseconds start, double seconds);

// The host's monotonic clock, for real waits. A time too late for nanoseconds in 64 bits becomes the last one that
// fits.
[[nodiscard]] HLMicroseconds HLSteadyNow();
[[nodiscard]] std::chrono::steady_clock::time_point HLSteadyTime(HLMicroseconds time);

// Runs nothing itself. Not thread-safe: the owner locks, and calls a step that it took without the lock.
class HLDueQueue {
 public:
  using Step = std::function<void()>;
  struct Key {
    HLMicroseconds time = HLNever;
    std::int64_t number = 0;  // FIFO among steps of one time
    auto operator<=>(const Key&) const = default;
  };

  Key schedule(HLMicroseconds time, Step step);
  void cancel(const Key& key) { steps_.erase(key); }

  // The time of the earliest step; HLNever if empty.
  [[nodiscard]] HLMicroseconds next() const { return steps_.empty() ? HLNever : steps_.begin()->first.time; }
  // Removes and returns the earliest step if its time is `limit` or earlier, else an empty function.
  [[nodiscard]] Step take(HLMicroseconds limit);

  [[nodiscard]] std::size_t size() const { return steps_.size(); }

 private:
  std::map<Key, Step> steps_;
  std::int64_t scheduled_ = 0;
};

// When a repeating timer fires next. `due` is the time of its last tick; ticks missed by `now` are skipped. HLNever
// once the clock has reached its end.
[[nodiscard]] HLMicroseconds HLNextTick(HLMicroseconds due, HLMicroseconds interval, HLMicroseconds now);
