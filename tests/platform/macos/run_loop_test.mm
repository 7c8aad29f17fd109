// The main queue, timers and the global queue.
#include "platform/macos/system/macos_run_loop.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <memory>
#include <vector>

namespace {

class MainLoop : public testing::Test {
 protected:
  bool eventually(const std::function<bool()>& condition) {
    const double deadline = loop_.now() + 10;
    while (!condition() && loop_.now() < deadline) loop_.runFor(0.01);
    return condition();
  }

  HLMacRunLoop loop_;
};

TEST_F(MainLoop, RunsStepsInOrderWhileRunning) {
  std::vector<int> steps;
  for (int i = 0; i < 20; ++i) loop_.postToMainQueue([&steps, i] { steps.push_back(i); });
  EXPECT_TRUE(steps.empty());
  EXPECT_TRUE(eventually([&] { return steps.size() == 20; }));
  for (int i = 0; i < 20; ++i) EXPECT_EQ(steps[static_cast<std::size_t>(i)], i);
}

TEST_F(MainLoop, RunsNoStepBeforeItsTime) {
  const double start = loop_.now();
  double ran = 0;
  loop_.postToMainQueueAfter(0.05, [&] { ran = loop_.now(); });
  loop_.postToMainQueueAfter(-1, [] {});
  EXPECT_TRUE(eventually([&] { return ran > 0; }));
  EXPECT_GE(ran - start, 0.05 - 1e-3);
}

TEST_F(MainLoop, DoesNotReturnEarlyAfterEvents) {
  const double start = loop_.now();
  for (int i = 0; i < 5; ++i) loop_.postToMainQueueAfter(0.01 * i, [] {});
  loop_.runFor(0.1);
  EXPECT_GE(loop_.now() - start, 0.1 - 1e-3);
}

TEST_F(MainLoop, RepeatsATimerUntilItEnds) {
  int turns = 0;
  std::unique_ptr<HLTimer> timer = loop_.scheduleTimer(0.01, [&] { ++turns; });
  EXPECT_EQ(turns, 0);
  EXPECT_TRUE(eventually([&] { return turns >= 3; }));
  timer = nullptr;
  const int last = turns;
  loop_.runFor(0.05);
  EXPECT_EQ(turns, last);
}

TEST_F(MainLoop, LetsATimerEndItself) {
  int turns = 0;
  std::unique_ptr<HLTimer> timer;
  timer = loop_.scheduleTimer(0.01, [&] {
    ++turns;
    timer = nullptr;
  });
  EXPECT_TRUE(eventually([&] { return timer == nullptr; }));
  loop_.runFor(0.05);
  EXPECT_EQ(turns, 1);
}

TEST_F(MainLoop, RunsOnlyTimersWithinAStep) {
  int turns = 0;
  bool further = false;
  bool done = false;
  const std::unique_ptr<HLTimer> timer = loop_.scheduleTimer(0.01, [&] { ++turns; });
  loop_.postToMainQueue([&] {
    loop_.postToMainQueue([&] { further = true; });
    const double start = loop_.now();
    const int before = turns;
    loop_.runFor(0.2);
    EXPECT_GE(loop_.now() - start, 0.2 - 1e-3);
    EXPECT_GT(turns, before);
    EXPECT_FALSE(further);
    done = true;
  });
  EXPECT_TRUE(eventually([&] { return done && further; }));
}

TEST_F(MainLoop, GoesOnBesideTheGlobalQueue) {
  std::atomic<bool> elsewhere = false;
  bool back = false;
  loop_.postToGlobalQueue(
      HLQualityOfService::userInitiated,
      [&] {
        elsewhere = pthread_main_np() == 0 && qos_class_self() == QOS_CLASS_USER_INITIATED;
        loop_.postToMainQueue([&] { back = pthread_main_np() != 0; });
      },
      nullptr);
  EXPECT_TRUE(eventually([&] { return back; }));
  EXPECT_TRUE(elsewhere);
}

}  // namespace
