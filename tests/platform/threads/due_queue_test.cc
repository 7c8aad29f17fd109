#include "platform/threads/due_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using testing::Eq;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Seconds, BecomeTheNearestMicrosecond) {
  EXPECT_EQ(HLMicrosecondsFromSeconds(0.0000014), 1);
  EXPECT_EQ(HLMicrosecondsFromSeconds(0.0000016), 2);
  EXPECT_EQ(HLMicrosecondsFromSeconds(-0.0000016), -2);
  EXPECT_EQ(HLMicrosecondsFromSeconds(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(Seconds, SaturateBeyondTheClock) {
  for (const double seconds : {9.3e12, 1e300, kInfinity}) {
    EXPECT_GT(HLMicrosecondsFromSeconds(seconds), 9'000'000'000'000'000'000) << seconds;
    EXPECT_LT(HLMicrosecondsFromSeconds(-seconds), -9'000'000'000'000'000'000) << seconds;
    EXPECT_EQ(HLTimeAfter(HLNever - 2, seconds), HLNever - 1) << seconds;
  }
  EXPECT_EQ(HLTimeAfter(7, -kInfinity), 7);
}

TEST(SteadyTime, IsNeverInThePast) {
  for (const double seconds : {1.0, 9.3e9, 1e300}) {
    EXPECT_GT(HLSteadyTime(HLTimeAfter(HLSteadyNow(), seconds)), std::chrono::steady_clock::now()) << seconds;
  }
}

TEST(DueQueue, OrdersByTimeThenFifo) {
  HLDueQueue queue;
  std::string ran;
  for (const auto& [time, name] : {std::pair(2, 'a'), {1, 'b'}, {2, 'c'}, {1, 'd'}}) {
    queue.schedule(time, [&ran, step = name] { ran += step; });
  }
  EXPECT_EQ(queue.next(), 1);
  while (const HLDueQueue::Step step = queue.take(2)) step();
  EXPECT_EQ(ran, "bdac");
  EXPECT_EQ(queue.next(), HLNever);
}

TEST(DueQueue, KeepsStepsLaterThanTheLimit) {
  HLDueQueue queue;
  queue.schedule(5, [] {});
  EXPECT_THAT(queue.take(4), Eq(nullptr));
  EXPECT_EQ(queue.size(), 1U);
  EXPECT_NE(queue.take(5), nullptr);
}

TEST(DueQueue, DropsOnlyTheCancelledStep) {
  HLDueQueue queue;
  const HLDueQueue::Key first = queue.schedule(1, [] {});
  queue.schedule(1, [] {});
  queue.cancel(first);
  queue.cancel(first);
  EXPECT_EQ(queue.size(), 1U);
}

TEST(NextTick, SkipsMissedTicks) {
  EXPECT_EQ(HLNextTick(100, 10, 100), 110);
  EXPECT_EQ(HLNextTick(100, 10, 109), 110);
  EXPECT_EQ(HLNextTick(100, 10, 110), 120);
  EXPECT_EQ(HLNextTick(100, 10, 137), 140);
  EXPECT_EQ(HLNextTick(100, 10, 50), 110);
}

TEST(NextTick, NeverComesAtTheClocksEnd) {
  EXPECT_EQ(HLNextTick(HLNever - 5, 10, HLNever - 5), HLNever);
  EXPECT_EQ(HLNextTick(0, HLNever, 1), HLNever);
}

}  // namespace
