// What every host's platform promises, tested alike on all of them. A host's test program includes this once and says
// how to get at a desktop of its own:
//
//   INSTANTIATE_TEST_SUITE_P(Simulator, PlatformContract, testing::Values(ContractHost{"Simulator", makeDesktop}),
//                            ContractHostName);
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/process_info.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"

// A desktop on which one application shows a window with at least two elements below it.
class ContractDesktop {
 public:
  ContractDesktop() = default;
  ContractDesktop(const ContractDesktop&) = delete;
  ContractDesktop& operator=(const ContractDesktop&) = delete;
  virtual ~ContractDesktop() = default;

  [[nodiscard]] virtual const HLPlatform& platform() = 0;
  // That application.
  [[nodiscard]] virtual std::int32_t pid() = 0;
  // An action of an element below that application which takes the element away.
  [[nodiscard]] virtual std::string removingAction() = 0;
};

struct ContractHost {
  std::string name;
  std::function<std::unique_ptr<ContractDesktop>()> make;
};

inline void PrintTo(const ContractHost& host, std::ostream* stream) { *stream << host.name; }
inline std::string ContractHostName(const testing::TestParamInfo<ContractHost>& info) { return info.param.name; }

class PlatformContract : public testing::TestWithParam<ContractHost> {
 protected:
  [[nodiscard]] HLAccessibility& accessibility() { return desktop_->platform().accessibility; }
  [[nodiscard]] HLRunningApplications& applications() { return desktop_->platform().runningApplications; }
  [[nodiscard]] HLRunLoop& runLoop() { return desktop_->platform().runLoop; }
  [[nodiscard]] HLProcessInfo& process() { return desktop_->platform().process; }
  [[nodiscard]] HLElementRef root() { return accessibility().createApplication(desktop_->pid()); }

  [[nodiscard]] static std::vector<HLElementRef> members(const HLElementRef& element, std::string_view list) {
    std::vector<HLElementRef> found;
    const HLAttribute attribute = element->copyAttributeValue(list);
    if (const HLArray* array = attribute.value.as<HLArray>()) {
      for (const HLValue& value : *array) {
        if (const HLElementRef* member = value.as<HLElementRef>()) found.push_back(*member);
      }
    }
    return found;
  }

  // Everything below the application, no node twice; the root is not among them.
  [[nodiscard]] std::vector<HLElementRef> tree() {
    constexpr std::size_t kEnough = 500;
    std::vector<HLElementRef> found;
    const auto add = [&found](const std::vector<HLElementRef>& elements) {
      for (const HLElementRef& element : elements) {
        const auto isSame = [&element](const HLElementRef& known) { return known->isEqual(*element); };
        if (found.size() < kEnough && std::none_of(found.begin(), found.end(), isSame)) found.push_back(element);
      }
    };
    add(members(root(), "AXWindows"));
    for (std::size_t i = 0; i < found.size(); ++i) {
      const HLElementRef element = found[i];
      for (std::string_view list : {"AXChildren", "AXRows", "AXVisibleChildren"}) add(members(element, list));
    }
    return found;
  }

  // An element that lists the action which takes it away.
  [[nodiscard]] HLElementRef removable() {
    for (const HLElementRef& element : tree()) {
      const std::vector<std::string> names = element->copyActionNames().names;
      if (std::find(names.begin(), names.end(), desktop_->removingAction()) != names.end()) return element;
    }
    return nullptr;
  }

  // Lets time pass until it holds; false when it does not within ten seconds.
  [[nodiscard]] bool eventually(const std::function<bool()>& condition) {
    const double deadline = runLoop().now() + 10;
    while (!condition()) {
      if (runLoop().now() > deadline) return false;
      runLoop().runFor(0.02);
    }
    return true;
  }

  std::unique_ptr<ContractDesktop> desktop_ = GetParam().make();
};

// Elements

TEST_P(PlatformContract, TrustsAProcessThatCanRead) { EXPECT_TRUE(accessibility().isProcessTrusted(false)); }

TEST_P(PlatformContract, ShowsWindowsWithElementsBelow) {
  ASSERT_NE(root(), nullptr);
  EXPECT_FALSE(members(root(), "AXWindows").empty());
  EXPECT_GE(tree().size(), 3U);
}

TEST_P(PlatformContract, CopiesFactsAsReadByName) {
  std::vector<HLElementRef> elements = tree();
  elements.push_back(root());
  for (const HLElementRef& element : elements) {
    const HLElementFacts copied = element->copyFacts();
    const HLElementFacts byName = element->HLElement::copyFacts();
    for (const HLTextAttribute& attribute : HLTextAttributes) {
      EXPECT_EQ(copied.*attribute.text, byName.*attribute.text) << attribute.name;
    }
    EXPECT_EQ(copied.frame, byName.frame);
    EXPECT_EQ(copied.actionNames, byName.actionNames);
    const auto isSame = [](const HLElementRef& a, const HLElementRef& b) { return a->isEqual(*b); };
    EXPECT_TRUE(std::equal(copied.children.begin(), copied.children.end(), byName.children.begin(),
                           byName.children.end(), isSame));
  }
}

TEST_P(PlatformContract, ReturnsNoValueWithAnError) {
  for (const HLElementRef& element : tree()) {
    for (std::string_view name : {"AXRole", "AXTitle", "AXPosition", "AXRows", "AXNoSuchThing"}) {
      const HLAttribute attribute = element->copyAttributeValue(name);
      EXPECT_TRUE(attribute.error == HLAXErrorSuccess || attribute.value.isMissing()) << name;
    }
  }
}

TEST_P(PlatformContract, RejectsUnknownAttributes) {
  for (const HLElementRef& element : tree()) {
    EXPECT_NE(element->copyAttributeValue("AXNoSuchThing").error, HLAXErrorSuccess);
  }
}

TEST_P(PlatformContract, TypesPositionsAndSizes) {
  int framed = 0;
  for (const HLElementRef& element : tree()) {
    const HLAttribute position = element->copyAttributeValue("AXPosition");
    const HLAttribute size = element->copyAttributeValue("AXSize");
    EXPECT_TRUE(position.value.isMissing() || position.value.as<HLPoint>() != nullptr);
    EXPECT_TRUE(size.value.isMissing() || size.value.as<HLSize>() != nullptr);
    if (!position.value.isMissing() && !size.value.isMissing()) ++framed;
  }
  EXPECT_GT(framed, 0);
}

TEST_P(PlatformContract, KeepsTheOrderOfActions) {
  bool some = false;
  for (const HLElementRef& element : tree()) {
    const HLActionList first = element->copyActionNames();
    EXPECT_EQ(first.error, HLAXErrorSuccess);
    EXPECT_EQ(element->copyActionNames().names, first.names);
    some |= !first.names.empty();
  }
  EXPECT_TRUE(some);
}

TEST_P(PlatformContract, RejectsUnlistedActions) {
  const std::size_t before = tree().size();
  for (const HLElementRef& element : tree()) EXPECT_NE(element->performAction("AXNoSuchAction"), HLAXErrorSuccess);
  EXPECT_EQ(tree().size(), before);
}

TEST_P(PlatformContract, ComparesElementsConsistently) {
  const std::vector<HLElementRef> first = tree();
  const std::vector<HLElementRef> second = tree();
  ASSERT_EQ(first.size(), second.size());
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_TRUE(first[i]->isEqual(*first[i]));
    EXPECT_EQ(first[i]->hash(), second[i]->hash()) << i;
    for (std::size_t j = 0; j < second.size(); ++j) {
      EXPECT_EQ(first[i]->isEqual(*second[j]), i == j) << i << ", " << j;
      EXPECT_EQ(second[j]->isEqual(*first[i]), i == j) << i << ", " << j;
    }
  }
}

TEST_P(PlatformContract, MakesEqualRoots) {
  const HLElementRef made = root();
  EXPECT_TRUE(made->isEqual(*root()));
  EXPECT_EQ(made->hash(), root()->hash());
  for (const HLElementRef& element : tree()) EXPECT_FALSE(made->isEqual(*element));
}

TEST_P(PlatformContract, KeepsHandlesBeyondTheirList) {
  HLElementRef kept;
  {
    const std::vector<HLElementRef> elements = tree();
    kept = elements.back();
  }
  EXPECT_EQ(kept->copyAttributeValue("AXRole").error, HLAXErrorSuccess);
}

TEST_P(PlatformContract, InvalidatesDestroyedElements) {
  const HLElementRef element = removable();
  ASSERT_NE(element, nullptr);
  EXPECT_EQ(element->performAction(desktop_->removingAction()), HLAXErrorSuccess);
  EXPECT_TRUE(eventually([&] { return element->copyAttributeValue("AXRole").error == HLAXErrorInvalidElement; }));
  EXPECT_EQ(element->copyActionNames().error, HLAXErrorInvalidElement);
  EXPECT_TRUE(element->copyActionNames().names.empty());
  EXPECT_EQ(element->performAction(desktop_->removingAction()), HLAXErrorInvalidElement);
  EXPECT_TRUE(element->isEqual(*element));
  for (const HLElementRef& left : tree()) EXPECT_FALSE(left->isEqual(*element));
}

TEST_P(PlatformContract, ShowsNothingForAMissingProcess) {
  const HLElementRef element = accessibility().createApplication(2147483646);
  if (element == nullptr) return;
  EXPECT_NE(element->copyAttributeValue("AXWindows").error, HLAXErrorSuccess);
  EXPECT_NE(element->copyActionNames().error, HLAXErrorSuccess);
}

TEST_P(PlatformContract, AllowsConcurrentReads) {
  const std::vector<HLElementRef> elements = tree();
  std::atomic<int> roles = 0;
  const auto queue = runLoop().makeOperationQueue("readers", HLQualityOfService::userInitiated, 4);
  for (int i = 0; i < 4; ++i) {
    queue->addOperation([&] {
      for (const HLElementRef& element : elements) roles += element->copyAttributeValue("AXRole").error == 0;
    });
  }
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_EQ(roles % 4, 0);
  EXPECT_GT(roles, 0);
}

// Running applications

TEST_P(PlatformContract, FindsListedApplicationsByPid) {
  const std::vector<HLRunningApplication> list = applications().list();
  EXPECT_TRUE(std::any_of(list.begin(), list.end(),
                          [this](const HLRunningApplication& running) { return running.pid == desktop_->pid(); }));
  for (const HLRunningApplication& running : list) {
    EXPECT_GT(running.pid, 0);
    const std::optional<HLRunningApplication> found = applications().find(running.pid);
    ASSERT_TRUE(found.has_value()) << running.pid;
    EXPECT_EQ(found->pid, running.pid);
    EXPECT_EQ(found->bundleIdentifier, running.bundleIdentifier);
    EXPECT_EQ(found->name, running.name);
    EXPECT_EQ(found->terminated, running.terminated);
  }
}

TEST_P(PlatformContract, FindsNothingForUnknownPids) {
  EXPECT_FALSE(applications().find(2147483646).has_value());
  EXPECT_FALSE(applications().find(0).has_value());
  EXPECT_FALSE(applications().find(-1).has_value());
}

// Run loop and queues

TEST_P(PlatformContract, UsesTheWallClock) {
  const double wall = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
  EXPECT_NEAR(runLoop().now(), wall, 60);
}

TEST_P(PlatformContract, SleepsLongEnough) {
  const double before = runLoop().now();
  runLoop().sleep(0.03);
  EXPECT_GE(runLoop().now() - before, 0.03 - 1e-3);
}

TEST_P(PlatformContract, SkipsEmptySleeps) {
  const double before = runLoop().now();
  for (double seconds : {0.0, -1.0, -1e300, std::numeric_limits<double>::quiet_NaN()}) runLoop().sleep(seconds);
  EXPECT_LT(runLoop().now() - before, 1);
}

TEST_P(PlatformContract, RunsLongEnough) {
  const double before = runLoop().now();
  runLoop().runFor(0.03);
  EXPECT_GE(runLoop().now() - before, 0.03 - 1e-3);
  const double between = runLoop().now();
  runLoop().runFor(0);
  runLoop().runFor(-1);
  EXPECT_LT(runLoop().now() - between, 1);
}

TEST_P(PlatformContract, KeepsStepsDelayedForCenturies) {
  bool ran = false;
  for (const double seconds : {9.3e9, 1e18, 1e300}) {
    runLoop().postToMainQueueAfter(seconds, [&ran] { ran = true; });
    const auto timer = runLoop().scheduleTimer(seconds, [&ran] { ran = true; });
    runLoop().runFor(0.01);
    EXPECT_FALSE(ran) << seconds;
  }
}

TEST_P(PlatformContract, WaitsCenturiesForASignal) {
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

TEST_P(PlatformContract, WaitsForAllOperations) {
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

TEST_P(PlatformContract, LimitsConcurrentOperations) {
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

TEST_P(PlatformContract, StartsOperationsInOrder) {
  std::vector<int> started;
  const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 1);
  for (int i = 0; i < 20; ++i) queue->addOperation([&started, i] { started.push_back(i); });
  queue->waitUntilAllOperationsAreFinished();
  std::vector<int> expected(20);
  for (int i = 0; i < 20; ++i) expected[static_cast<std::size_t>(i)] = i;
  EXPECT_EQ(started, expected);
}

TEST_P(PlatformContract, RunsOperationsOnOtherThreads) {
  const std::thread::id here = std::this_thread::get_id();
  std::atomic<bool> elsewhere = false;
  const auto queue = runLoop().makeOperationQueue("work", HLQualityOfService::userInitiated, 1);
  queue->addOperation([&] { elsewhere = std::this_thread::get_id() != here; });
  queue->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(elsewhere);
}

TEST_P(PlatformContract, FinishesOperationsOfDestroyedQueues) {
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

TEST_P(PlatformContract, KeepsSignals) {
  const auto semaphore = runLoop().makeSemaphore();
  semaphore->signal();
  semaphore->signal();
  EXPECT_TRUE(semaphore->wait(0));
  EXPECT_TRUE(semaphore->wait(5));
  EXPECT_FALSE(semaphore->wait(0));
}

TEST_P(PlatformContract, TimesOutWithoutASignal) {
  const auto semaphore = runLoop().makeSemaphore();
  const double before = runLoop().now();
  EXPECT_FALSE(semaphore->wait(0.03));
  EXPECT_GE(runLoop().now() - before, 0.03 - 1e-3);
  const double between = runLoop().now();
  EXPECT_FALSE(semaphore->wait(-1));
  EXPECT_LT(runLoop().now() - between, 1);
}

TEST_P(PlatformContract, WakesOnAnotherThreadsSignal) {
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

TEST_P(PlatformContract, ArgumentsBeginWithTheExecutable) {
  const std::vector<std::string> arguments = process().arguments();
  ASSERT_FALSE(arguments.empty());
  EXPECT_FALSE(arguments[0].empty());
}

TEST_P(PlatformContract, ReturnsNulloptForUnsetVariables) {
  EXPECT_FALSE(process().environment("HL_NOBODY_SETS_THIS").has_value());
  EXPECT_FALSE(process().environment("").has_value());
}

TEST_P(PlatformContract, ProcessIdentifiersArePositiveAndDiffer) {
  EXPECT_GT(process().processIdentifier(), 0);
  EXPECT_GT(process().parentProcessIdentifier(), 0);
  EXPECT_NE(process().processIdentifier(), process().parentProcessIdentifier());
}

TEST_P(PlatformContract, ReturnsAbsoluteDirectories) {
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
