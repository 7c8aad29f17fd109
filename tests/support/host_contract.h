// What every host promises of its run loop, its operation queues and its process, tested alike on all of them. A host's
// test program includes this once and says how to make the host:
//
//   INSTANTIATE_TEST_SUITE_P(Linux, HostContract, testing::Values(HostContract::Case{"Linux", makeHost}),
//                            ContractCaseName);
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/run_loop.h"

class ContractHost {
 public:
  ContractHost() = default;
  ContractHost(const ContractHost&) = delete;
  ContractHost& operator=(const ContractHost&) = delete;
  virtual ~ContractHost() = default;

  [[nodiscard]] virtual const HLPlatform& platform() = 0;
};

// `Host` is ContractHost or derived from it.
template <class Host>
struct ContractCase {
  std::string name;
  std::function<std::unique_ptr<Host>()> make;

  friend void PrintTo(const ContractCase& one, std::ostream* stream) { *stream << one.name; }
};

inline constexpr auto ContractCaseName = [](const auto& info) { return info.param.name; };

class HostContract : public testing::TestWithParam<ContractCase<ContractHost>> {
 public:
  using Case = ContractCase<ContractHost>;

 protected:
  [[nodiscard]] HLRunLoop& runLoop() { return host_->platform().runLoop; }
  [[nodiscard]] HLProcessInfo& process() { return host_->platform().process; }

 private:
  std::unique_ptr<ContractHost> host_ = GetParam().make();
};

// Run loop and queues

TEST_P(HostContract, UsesTheWallClock) {
  const double wall = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  EXPECT_NEAR(runLoop().now(), wall, 60);
}

TEST_P(HostContract, SleepsLongEnough) {
  const double before = runLoop().now();
  runLoop().sleep(0.03);
  EXPECT_GE(runLoop().now() - before, 0.03 - 1e-3);
}

TEST_P(HostContract, SkipsEmptySleeps) {
  const double before = runLoop().now();
  for (double seconds : {0.0, -1.0, -1e300, std::numeric_limits<double>::quiet_NaN()}) runLoop().sleep(seconds);
  EXPECT_LT(runLoop().now() - before, 1);
}

TEST_P(HostContract, RunsLongEnough) {
  const double before = runLoop().now();
  runLoop().runFor(0.03);
  EXPECT_GE(runLoop().now() - before, 0.03 - 1e-3);
  const double between = runLoop().now();
  runLoop().runFor(0);
  runLoop().runFor(-1);
  EXPECT_LT(runLoop().now() - between, 1);
}

TEST_P(HostContract, KeepsStepsDelayedForCenturies) {
  bool ran = false;
  for (const double seconds : {9.3e9, 1e18, 1e300}) {
    runLoop().postToMainQueueAfter(seconds, [&ran] { ran = true; });
    const auto timer = runLoop().scheduleTimer(seconds, [&ran] { ran = true; });
    runLoop().runFor(0.01);
    EXPECT_FALSE(ran) << seconds;
  }
}

TEST_P(HostContract, WaitsCenturiesForASignal) {
  for (const double seconds : {9.3e9, 1e18, 1e300}) {
    const auto semaphore = runLoop().makeSemaphore();
    const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 1);
    queue->addOperation([&] {
      runLoop().sleep(0.01);
      semaphore->signal();
    });
    EXPECT_TRUE(semaphore->wait(seconds)) << seconds;
  }
}

TEST_P(HostContract, WaitsForAllOperations) {
  std::atomic<int> done = 0;
  const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 3);
  queue->waitUntilAllOperationsAreFinished();
  for (int round = 1; round <= 3; ++round) {
    for (int i = 0; i < 10; ++i) {
      queue->addOperation([&] {
        runLoop().sleep(0.001);
        ++done;
      });
    }
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_EQ(done, 10 * round);
  }
}

TEST_P(HostContract, LimitsConcurrentOperations) {
  for (const int limit : {1, 2, 4}) {
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, limit);
    for (int i = 0; i < 12; ++i) {
      queue->addOperation([&] {
        const int now = ++running;
        int known = most;
        while (known < now && !most.compare_exchange_weak(known, now)) {
        }
        runLoop().sleep(0.02);
        --running;
      });
    }
    queue->waitUntilAllOperationsAreFinished();
    EXPECT_EQ(most, limit);
  }
}

TEST_P(HostContract, StartsOperationsInOrder) {
  std::vector<int> started;
  const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 1);
  for (int i = 0; i < 20; ++i) queue->addOperation([&started, i] { started.push_back(i); });
  queue->waitUntilAllOperationsAreFinished();
  std::vector<int> expected(20);
  for (int i = 0; i < 20; ++i) expected[static_cast<std::size_t>(i)] = i;
  EXPECT_EQ(started, expected);
}

TEST_P(HostContract, RunsOperationsOnOtherThreads) {
  const std::thread::id here = std::this_thread::get_id();
  std::atomic<bool> elsewhere = false;
  const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 1);
  queue->addOperation([&] { elsewhere = std::this_thread::get_id() != here; });
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(elsewhere);
}

TEST_P(HostContract, FinishesOperationsOfDestroyedQueues) {
  std::atomic<int> done = 0;
  {
    const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 2);
    for (int i = 0; i < 6; ++i) {
      queue->addOperation([&] {
        runLoop().sleep(0.005);
        ++done;
      });
    }
  }
  EXPECT_EQ(done, 6);
}

TEST_P(HostContract, KeepsSignals) {
  const auto semaphore = runLoop().makeSemaphore();
  semaphore->signal();
  semaphore->signal();
  EXPECT_TRUE(semaphore->wait(0));
  EXPECT_TRUE(semaphore->wait(5));
  EXPECT_FALSE(semaphore->wait(0));
}

TEST_P(HostContract, TimesOutWithoutASignal) {
  const auto semaphore = runLoop().makeSemaphore();
  const double before = runLoop().now();
  EXPECT_FALSE(semaphore->wait(0.03));
  EXPECT_GE(runLoop().now() - before, 0.03 - 1e-3);
  const double between = runLoop().now();
  EXPECT_FALSE(semaphore->wait(-1));
  EXPECT_LT(runLoop().now() - between, 1);
}

TEST_P(HostContract, WakesOnAnotherThreadsSignal) {
  const auto semaphore = runLoop().makeSemaphore();
  const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 1);
  queue->addOperation([&] {
    runLoop().sleep(0.02);
    semaphore->signal();
  });
  const double before = runLoop().now();
  EXPECT_TRUE(semaphore->wait(30));
  EXPECT_LT(runLoop().now() - before, 25);
}

// Process

TEST_P(HostContract, ArgumentsBeginWithTheExecutable) {
  const std::vector<std::string> arguments = process().arguments();
  ASSERT_FALSE(arguments.empty());
  EXPECT_FALSE(arguments[0].empty());
}

TEST_P(HostContract, ReturnsNulloptForUnsetVariables) {
  EXPECT_FALSE(process().environment("HL_NOBODY_SETS_THIS").has_value());
  EXPECT_FALSE(process().environment("").has_value());
}

TEST_P(HostContract, ProcessIdentifiersArePositiveAndDiffer) {
  EXPECT_GT(process().processIdentifier(), 0);
  EXPECT_GT(process().parentProcessIdentifier(), 0);
  EXPECT_NE(process().processIdentifier(), process().parentProcessIdentifier());
}

TEST_P(HostContract, ReturnsAbsoluteDirectories) {
  const std::string home = process().homeDirectory();
  ASSERT_FALSE(home.empty());
  EXPECT_EQ(home.front(), '/');
  EXPECT_TRUE(home == "/" || home.back() != '/');
  if (const std::optional<std::string> support = process().applicationSupportDirectory()) {
    ASSERT_FALSE(support->empty());
    EXPECT_EQ(support->front(), '/');
    EXPECT_NE(support->back(), '/');
  }
}
