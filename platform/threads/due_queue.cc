#include "platform/threads/due_queue.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr HLMicroseconds kLast = HLNever - 1;

}  // namespace

HLMicroseconds HLMicrosecondsFromSeconds(double seconds) {
  constexpr double kMost = 9.2e18;  // the double nearest to kLast is already larger than kLast
  const double microseconds = seconds * 1e6;
  return std::isnan(microseconds) ? 0 : std::llround(std::clamp(microseconds, -kMost, kMost));
}

HLMicroseconds HLTimeAfter(HLMicroseconds start, double seconds) {
  const HLMicroseconds delay = std::max<HLMicroseconds>(HLMicrosecondsFromSeconds(seconds), 0);
  return start > kLast - delay ? kLast : start + delay;
}

HLMicroseconds HLSteadyNow() {
  const auto time = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

std::chrono::steady_clock::time_point HLSteadyTime(HLMicroseconds time) {
  constexpr HLMicroseconds kMost = INT64_MAX / 1000;
  return std::chrono::steady_clock::time_point(std::chrono::microseconds(std::min(time, kMost)));
}

HLDueQueue::Key HLDueQueue::schedule(HLMicroseconds time, Step step) {
  const Key key = {time, scheduled_++};
  steps_.emplace(key, std::move(step));
  return key;
}

HLDueQueue::Step HLDueQueue::take(HLMicroseconds limit) {
  if (steps_.empty() || next() > limit) return nullptr;
  return std::move(steps_.extract(steps_.begin()).mapped());
}

HLMicroseconds HLNextTick(HLMicroseconds due, HLMicroseconds interval, HLMicroseconds now) {
  const HLMicroseconds missed = now > due ? (now - due) / interval : 0;
  const HLMicroseconds last = due + missed * interval;
  return last > kLast - interval ? HLNever : last + interval;
}
