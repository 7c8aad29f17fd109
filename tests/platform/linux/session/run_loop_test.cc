// What the main thread's loop delivers: what is posted, what is due, what its sources bring.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "platform/linux/session/linux_run_loop.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Clock = std::chrono::steady_clock;

class MainLoop : public testing::Test {
 protected:
  // Runs the loop until the condition holds; false when it does not in a long while.
  bool runUntil(const std::function<bool()>& condition) {
    const Clock::time_point deadline = Clock::now() + std::chrono::seconds(20);
    while (!condition()) {
      if (Clock::now() >= deadline) return false;
      loop_.runFor(0.005);
    }
    return true;
  }

  [[nodiscard]] bool isReadable(milliseconds timeout = milliseconds(0)) const {
    pollfd wanted{loop_.descriptor(), POLLIN, 0};
    return poll(&wanted, 1, static_cast<int>(timeout.count())) == 1;
  }

  HLLinuxRunLoop loop_;
  std::vector<int> seen_;
};

TEST_F(MainLoop, RunsPostsInOrderWhileRunning) {
  for (int i = 0; i < 5; ++i) {
    loop_.postToMainQueue([this, i] { seen_.push_back(i); });
  }
  EXPECT_THAT(seen_, IsEmpty());
  loop_.runFor(0);
  EXPECT_THAT(seen_, ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(MainLoop, KeepsPostOrderOfEachThread) {
  constexpr int kThreads = 8;
  constexpr int kSteps = 500;
  std::vector<std::vector<int>> of(kThreads);
  std::vector<std::thread> threads;
  int done = 0;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&, thread] {
      for (int i = 0; i < kSteps; ++i) {
        loop_.postToMainQueue([&, thread, i] {
          of[static_cast<std::size_t>(thread)].push_back(i);
          ++done;
        });
      }
    });
  }
  EXPECT_TRUE(runUntil([&] { return done == kThreads * kSteps; }));
  for (std::thread& thread : threads) thread.join();
  std::vector<int> inOrder;
  for (int i = 0; i < kSteps; ++i) inOrder.push_back(i);
  for (const std::vector<int>& steps : of) EXPECT_EQ(steps, inOrder);
}

TEST_F(MainLoop, WakesForWhatAnotherThreadPosts) {
  // Far longer than it may take: the loop must not first wait to the end.
  std::thread other([this] { loop_.postToMainQueue([this] { seen_.push_back(1); }); });
  other.join();
  EXPECT_TRUE(isReadable());
  loop_.serve();
  EXPECT_THAT(seen_, ElementsAre(1));
}

TEST_F(MainLoop, RunsPostMadeByPostedStep) {
  loop_.postToMainQueue([this] {
    seen_.push_back(1);
    loop_.postToMainQueue([this] { seen_.push_back(2); });
  });
  loop_.runFor(0);
  EXPECT_THAT(seen_, ElementsAre(1, 2));
}

TEST_F(MainLoop, RunsDelayedStepsWhenDue) {
  const Clock::time_point begin = Clock::now();
  Clock::time_point moment;
  loop_.postToMainQueueAfter(0.06, [&] {
    seen_.push_back(3);
    moment = Clock::now();
  });
  loop_.postToMainQueueAfter(0.03, [this] { seen_.push_back(2); });
  loop_.postToMainQueueAfter(-1, [this] { seen_.push_back(1); });
  EXPECT_TRUE(runUntil([this] { return seen_.size() == 3; }));
  EXPECT_THAT(seen_, ElementsAre(1, 2, 3));
  EXPECT_GE(moment - begin, milliseconds(60));
}

TEST_F(MainLoop, RunsDelayedStepsFromManyThreads) {
  std::vector<std::thread> threads;
  int done = 0;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      for (int i = 0; i < 100; ++i) loop_.postToMainQueueAfter(0.0001 * i, [&done] { ++done; });
    });
  }
  EXPECT_TRUE(runUntil([&] { return done == 400; }));
  for (std::thread& thread : threads) thread.join();
}

TEST_F(MainLoop, RepeatsTimerUntilItEnds) {
  const Clock::time_point begin = Clock::now();
  int turns = 0;
  std::unique_ptr<HLTimer> timer = loop_.scheduleTimer(0.01, [&turns] { ++turns; });
  EXPECT_TRUE(runUntil([&] { return turns >= 3; }));
  EXPECT_GE(Clock::now() - begin, milliseconds(30));
  timer = nullptr;
  const int last = turns;
  loop_.runFor(0.05);
  EXPECT_EQ(turns, last);
}

TEST_F(MainLoop, LetsTimerEndItself) {
  int turns = 0;
  std::unique_ptr<HLTimer> timer;
  const auto kept = std::make_shared<int>(7);
  timer = loop_.scheduleTimer(0.005, [&turns, &timer, kept] {
    timer = nullptr;
    turns += *kept == 7 ? 1 : 100;  // what the action holds is there to its end
  });
  EXPECT_TRUE(runUntil([&] { return turns > 0; }));
  loop_.runFor(0.03);
  EXPECT_EQ(turns, 1);
}

TEST_F(MainLoop, LetsTimerEndAnotherDueTimer) {
  std::unique_ptr<HLTimer> first;
  std::unique_ptr<HLTimer> second;
  const auto action = [this, &first, &second] {
    seen_.push_back(1);
    first = nullptr;
    second = nullptr;
  };
  first = loop_.scheduleTimer(0.001, action);
  second = loop_.scheduleTimer(0.001, action);
  loop_.sleep(0.005);  // both are due together
  EXPECT_TRUE(runUntil([this] { return !seen_.empty(); }));
  loop_.runFor(0.02);
  EXPECT_THAT(seen_, ElementsAre(1));
}

TEST_F(MainLoop, SkipsMissedTurnsOfTimer) {
  int turns = 0;
  const std::unique_ptr<HLTimer> timer = loop_.scheduleTimer(0.02, [&turns] { ++turns; });
  loop_.sleep(0.11);
  loop_.serve();
  EXPECT_EQ(turns, 1);
}

TEST_F(MainLoop, RunsGlobalQueueOnOtherThreads) {
  std::atomic<int> done = 0;
  std::atomic<bool> elsewhere = true;
  const std::thread::id here = std::this_thread::get_id();
  const auto started = std::shared_ptr<HLSemaphore>(loop_.makeSemaphore());
  for (int i = 0; i < 3; ++i) {
    loop_.postToGlobalQueue(
        HLQualityOfService::userInitiated,
        [&, started] {
          if (std::this_thread::get_id() == here) elsewhere = false;
          started->signal();
          loop_.postToMainQueue([&done] { ++done; });
        },
        nullptr);
  }
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(started->wait(20)) << "without the loop running";
  EXPECT_TRUE(runUntil([&] { return done == 3; }));
  EXPECT_TRUE(elsewhere);
}

TEST_F(MainLoop, LetsGlobalWorkAwaitOtherWork) {
  const std::shared_ptr<HLSemaphore> second(loop_.makeSemaphore());
  const std::shared_ptr<HLSemaphore> finished(loop_.makeSemaphore());
  loop_.postToGlobalQueue(
      HLQualityOfService::userInitiated,
      [second, finished] {
        if (second->wait(20)) finished->signal();
      },
      nullptr);
  loop_.postToGlobalQueue(
      HLQualityOfService::userInitiated, [second] { second->signal(); }, nullptr);
  EXPECT_TRUE(finished->wait(20));
}

TEST_F(MainLoop, WaitsForGlobalQueueWhenEnding) {
  std::atomic<bool> done = false;
  {
    HLLinuxRunLoop loop;
    loop.postToGlobalQueue(
        HLQualityOfService::userInitiated,
        [&] {
          loop.sleep(0.02);
          done = true;
        },
        nullptr);
  }
  EXPECT_TRUE(done);
}

TEST_F(MainLoop, TellsForeignLoopWhenToServe) {
  loop_.serve();
  EXPECT_FALSE(isReadable());
  loop_.postToMainQueue([this] { seen_.push_back(1); });
  EXPECT_TRUE(isReadable());
  loop_.serve();
  EXPECT_THAT(seen_, ElementsAre(1));
  EXPECT_FALSE(isReadable()) << "nothing is left to do";
  loop_.postToMainQueueAfter(0.02, [this] { seen_.push_back(2); });
  EXPECT_FALSE(isReadable());
  loop_.serve();
  EXPECT_THAT(seen_, ElementsAre(1)) << "it never waits";
  EXPECT_TRUE(isReadable(milliseconds(20'000)));
  loop_.serve();
  EXPECT_THAT(seen_, ElementsAre(1, 2));
  EXPECT_FALSE(isReadable());
}

TEST_F(MainLoop, ServesASourceUntilItEnds) {
  const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  int taken = 0;
  (void)loop_.addSource({descriptor, [&] {
                           eventfd_t value = 0;
                           if (eventfd_read(descriptor, &value) == 0) taken += static_cast<int>(value);
                           return taken < 5;
                         }});
  loop_.serve();
  eventfd_write(descriptor, 2);
  EXPECT_TRUE(isReadable());
  loop_.serve();
  EXPECT_EQ(taken, 2);
  eventfd_write(descriptor, 3);
  loop_.serve();
  eventfd_write(descriptor, 3);
  EXPECT_FALSE(isReadable()) << "it has been taken out";
  loop_.serve();
  EXPECT_EQ(taken, 5);
  close(descriptor);
}

TEST_F(MainLoop, RunsOtherStepsInNestedLoop) {
  loop_.postToMainQueue([this] {
    seen_.push_back(1);
    loop_.runFor(0.02);
    seen_.push_back(4);
  });
  loop_.postToMainQueue([this] { seen_.push_back(2); });
  loop_.postToMainQueueAfter(0.005, [this] { seen_.push_back(3); });
  EXPECT_TRUE(runUntil([this] { return seen_.size() == 4; }));
  EXPECT_THAT(seen_, ElementsAre(1, 2, 3, 4));
}

TEST_F(MainLoop, KeepsTimerRunningInNestedLoop) {
  int depth = 0;
  int deepest = 0;
  const std::unique_ptr<HLTimer> timer = loop_.scheduleTimer(0.005, [&] {
    deepest = std::max(deepest, ++depth);
    if (depth < 3) loop_.runFor(0.03);
    --depth;
  });
  EXPECT_TRUE(runUntil([&] { return deepest >= 3; }));
}

}  // namespace
