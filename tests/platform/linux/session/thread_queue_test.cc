// Queues where threads cannot be started.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <functional>
#include <limits>
#include <memory>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/session/linux_run_loop.h"
#include "platform/threads/thread_safety.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kUnlimited = std::numeric_limits<int>::max();
std::atomic<int> threadsLeft = kUnlimited;

// Lets so many more threads start while it lives.
class ThreadLimit {
 public:
  explicit ThreadLimit(int count) { threadsLeft = count; }
  ~ThreadLimit() { threadsLeft = kUnlimited; }
  ThreadLimit(const ThreadLimit&) = delete;
  ThreadLimit& operator=(const ThreadLimit&) = delete;
};

// Waits a hundredth of the time, and adds up what it was to wait.
class HastyRunLoop : public HLLinuxRunLoop {
 public:
  double asked = 0;

  void postToMainQueueAfter(double seconds, std::function<void()> step) override {
    asked += seconds;
    HLLinuxRunLoop::postToMainQueueAfter(seconds / 100, std::move(step));
  }
};

class WithoutThreads : public testing::Test {
 protected:
  [[nodiscard]] std::unique_ptr<HLOperationQueue> queue(int limit) {
    return loop_.makeOperationQueue("test", HLQualityOfService::userInitiated, limit);
  }

  HastyRunLoop loop_;
};

TEST_F(WithoutThreads, OperationsRunOnTheWaitingThread) {
  const ThreadLimit limit(0);
  const auto operations = queue(4);
  std::vector<int> seen;
  std::set<std::thread::id> threads;
  for (int i = 0; i < 5; ++i) {
    operations->addOperation([&, i] {
      seen.push_back(i);
      threads.insert(std::this_thread::get_id());
    });
  }
  EXPECT_THAT(seen, IsEmpty());
  operations->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(seen, ElementsAre(0, 1, 2, 3, 4));
  EXPECT_THAT(threads, ElementsAre(std::this_thread::get_id()));
}

TEST_F(WithoutThreads, DestroyingAQueueRunsItsOperations) {
  const ThreadLimit limit(0);
  int done = 0;
  queue(2)->addOperation([&done] { ++done; });
  EXPECT_EQ(done, 1);
}

TEST_F(WithoutThreads, OperationsShareTheThreadsThatStart) {
  const ThreadLimit limit(1);
  const auto operations = queue(4);
  HLMutex mutex;
  std::set<std::thread::id> threads;
  for (int i = 0; i < 20; ++i) {
    operations->addOperation([&] {
      const HLLock lock(mutex);
      threads.insert(std::this_thread::get_id());
    });
  }
  operations->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST_F(WithoutThreads, RunsGlobalWorkOnceThreadStarts) {
  std::atomic<bool> done = false;
  bool refused = false;
  {
    const ThreadLimit limit(0);
    loop_.postToGlobalQueue(
        HLQualityOfService::userInitiated, [&done] { done = true; }, [&refused] { refused = true; });
    loop_.runFor(0.01);
    EXPECT_FALSE(done);
  }
  while (!done && !refused) loop_.runFor(0.001);
  EXPECT_TRUE(done);
  EXPECT_LT(loop_.asked, HLThreadStartTimeout);
}

TEST_F(WithoutThreads, RefusesGlobalWorkAfterFiveSeconds) {
  const ThreadLimit limit(0);
  bool done = false;
  bool refused = false;
  loop_.postToGlobalQueue(
      HLQualityOfService::userInitiated, [&done] { done = true; }, [&refused] { refused = true; });
  while (!refused) loop_.runFor(0.001);
  EXPECT_FALSE(done);
  EXPECT_NEAR(loop_.asked, 5, 1e-9);
}

}  // namespace

// Takes the place of the system's in this program.
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*), void* data) {
  static const auto create = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
  if (threadsLeft != kUnlimited && --threadsLeft < 0) return EAGAIN;
  return create(thread, attributes, start, data);
}
