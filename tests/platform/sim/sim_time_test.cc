// The virtual clock: whose turn it is, and when time passes. The real one, where it differs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/threads/thread_safety.h"
#include "tests/platform/sim/scene_desktop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What threads did, in the order in which they did it, each with the moment in milliseconds.
class Journal {
 public:
  explicit Journal(SimulatedDesktop& desktop) : desktop_(desktop) {}

  void note(const std::string& what) {
    const long milliseconds = std::lround(desktop_.simulator().elapsed() * 1000);
    const HLLock lock(mutex_);
    entries_.push_back(what + "@" + std::to_string(milliseconds));
  }
  [[nodiscard]] std::vector<std::string> entries() {
    const HLLock lock(mutex_);
    return entries_;
  }

 private:
  SimulatedDesktop& desktop_;
  HLMutex mutex_;
  std::vector<std::string> entries_ HL_GUARDED_BY(mutex_);
};

class VirtualTime : public testing::Test {
 protected:
  void makeDesktop(const std::string& scene, HLSimulatorSetup setup = {}) {
    desktop_ = std::make_unique<SimulatedDesktop>(scene, std::move(setup));
    journal_ = std::make_unique<Journal>(*desktop_);
  }
  [[nodiscard]] std::unique_ptr<HLOperationQueue> queue(int limit) {
    return desktop_->runLoop().makeOperationQueue("test", HLQualityOfService::userInitiated, limit);
  }
  void note(const std::string& what) { journal_->note(what); }
  void sleep(double seconds) { desktop_->sleep(seconds); }
  // Notes its name, then again after each sleep.
  [[nodiscard]] std::function<void()> sleeper(const std::string& name, std::vector<double> naps) {
    return [this, name, naps = std::move(naps)] {
      note(name);
      for (double nap : naps) {
        sleep(nap);
        note(name);
      }
    };
  }

  std::unique_ptr<SimulatedDesktop> desktop_;
  std::unique_ptr<Journal> journal_;
};

TEST_F(VirtualTime, RunsOperationsInlineWithoutThreads) {
  makeDesktop("{}", {.refusesThreads = [] { return true; }});
  const auto pool = queue(4);
  const std::thread::id here = std::this_thread::get_id();
  for (const char* name : {"a", "b"}) {
    pool->addOperation([this, name, here] {
      EXPECT_EQ(std::this_thread::get_id(), here);
      note(name);
      sleep(1);
    });
  }
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(journal_->entries(), testing::ElementsAre("a@0", "b@1000"));
}

TEST_F(VirtualTime, SharesTheThreadsThatStart) {
  int started = 0;
  makeDesktop("{}", {.refusesThreads = [&started] { return started++ == 2; }});
  const auto pool = queue(4);
  for (const char* name : {"a", "b", "c"}) pool->addOperation(sleeper(name, {1}));
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(journal_->entries(), testing::ElementsAre("a@0", "b@0", "a@1000", "b@1000", "c@1000", "c@2000"));
}

TEST_F(VirtualTime, PassesOnlyWhileEveryThreadWaits) {
  makeDesktop("{}");
  const double start = desktop_->runLoop().now();
  for (int i = 0; i < 1000; ++i) EXPECT_EQ(desktop_->runLoop().now(), start);
  sleep(0.25);
  EXPECT_NEAR(desktop_->runLoop().now() - start, 0.25, 1e-6);
  EXPECT_EQ(desktop_->simulator().elapsed(), 0.25);
}

TEST_F(VirtualTime, PassesDaysAtOnce) {
  makeDesktop("{}");
  const auto begin = std::chrono::steady_clock::now();
  sleep(86400.0 * 365);
  desktop_->runLoop().runFor(86400.0 * 365);
  EXPECT_EQ(desktop_->simulator().elapsed(), 2 * 86400.0 * 365);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST_F(VirtualTime, StopsAtTheClocksEnd) {
  makeDesktop("{}");
  for (int i = 0; i < 100; ++i) {
    const double before = desktop_->simulator().elapsed();
    sleep(1e300);
    desktop_->runLoop().runFor(1e300);
    ASSERT_GE(desktop_->simulator().elapsed(), before);
  }
}

TEST_F(VirtualTime, RoundsToMicroseconds) {
  makeDesktop("{}");
  sleep(0.0000014);
  EXPECT_EQ(desktop_->simulator().elapsed(), 0.000001);
  sleep(0.0000016);
  EXPECT_EQ(desktop_->simulator().elapsed(), 0.000003);
}

TEST_F(VirtualTime, RunsTheSceneBeforeSleepers) {
  makeDesktop(
      Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {"AXPress": {"after": 1, "effects": [{"remove": "w"}]}}},
    {"id": "v"})",
            R"(, "timeline": [{"at": 1, "remove": "v"}])"));
  EXPECT_EQ(desktop_->press("w"), HLAXErrorSuccess);
  sleep(1);
  EXPECT_THAT(desktop_->present(), IsEmpty());
}

TEST_F(VirtualTime, StartsOperationsInOrder) {
  makeDesktop("{}");
  const auto pool = queue(4);
  for (int i = 1; i <= 10; ++i) pool->addOperation([this, i] { note(std::to_string(i)); });
  note("added");
  pool->waitUntilAllOperationsAreFinished();
  note("done");
  EXPECT_THAT(journal_->entries(),
              ElementsAre("added@0", "1@0", "2@0", "3@0", "4@0", "5@0", "6@0", "7@0", "8@0", "9@0", "10@0", "done@0"));
}

TEST_F(VirtualTime, LetsOperationsSleepSideBySide) {
  makeDesktop("{}");
  const auto pool = queue(2);
  pool->addOperation(sleeper("a", {0.1}));
  pool->addOperation(sleeper("b", {0.1}));
  pool->addOperation(sleeper("c", {0.1}));
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(journal_->entries(), ElementsAre("a@0", "b@0", "a@100", "b@100", "c@100", "c@200"));
  EXPECT_EQ(desktop_->simulator().elapsed(), 0.2);
}

TEST_F(VirtualTime, WakesOperationsInOrder) {
  makeDesktop("{}");
  const auto pool = queue(3);
  pool->addOperation(sleeper("a", {0.1, 0.1}));
  pool->addOperation(sleeper("b", {0.05, 0.15}));
  pool->addOperation(sleeper("c", {0.2}));
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(journal_->entries(), ElementsAre("a@0", "b@0", "c@0", "b@50", "a@100", "a@200", "b@200", "c@200"));
}

TEST_F(VirtualTime, WakesOtherSleepersInOrder) {
  makeDesktop("{}");
  const auto first = queue(1);
  const auto second = queue(1);
  first->addOperation(sleeper("first", {0.1, 0.1}));
  second->addOperation(sleeper("second", {0.2}));
  sleep(0.2);
  note("main");
  first->waitUntilAllOperationsAreFinished();
  second->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(journal_->entries(),
              ElementsAre("first@0", "second@0", "first@100", "main@200", "second@200", "first@200"));
}

TEST_F(VirtualTime, HidesEffectsWithinABatch) {
  makeDesktop(Scene(R"({"id": "a", "actions": ["AXPress"], "onAction": {"AXPress": {"effects": [{"remove": "b"}]}}},
    {"id": "b", "actions": ["AXPress"], "onAction": {"AXPress": {"effects": [{"remove": "a"}]}}})"));
  const auto pool = queue(4);
  std::vector<HLAXError> codes(2);
  pool->addOperation([&] { codes[0] = desktop_->press("a"); });
  pool->addOperation([&] { codes[1] = desktop_->press("b"); });
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(codes, ElementsAre(HLAXErrorSuccess, HLAXErrorSuccess));
  EXPECT_EQ(desktop_->present().size(), 2U);
  sleep(0.001);
  EXPECT_THAT(desktop_->present(), IsEmpty());
}

TEST_F(VirtualTime, BlocksOnlyTheSlowAction) {
  makeDesktop(Scene(R"({"id": "slow", "actions": ["AXPress"], "onAction": {"AXPress": {"seconds": 2}}},
    {"id": "quick", "actions": ["AXPress"]})"));
  const auto pool = queue(4);
  for (const char* id : {"slow", "quick", "slow"}) {
    pool->addOperation([this, id] {
      EXPECT_EQ(desktop_->press(id), HLAXErrorSuccess);
      note(id);
    });
  }
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(journal_->entries(), ElementsAre("quick@0", "slow@2000", "slow@2000"));
}

TEST_F(VirtualTime, GoesTheSameWayEveryTime) {
  std::vector<std::vector<std::string>> runs;
  for (int run = 0; run < 20; ++run) {
    makeDesktop("{}");
    const auto pool = queue(3);
    for (int i = 0; i < 12; ++i) {
      pool->addOperation(sleeper(std::to_string(i), {0.001 * (i * 7 % 5), 0.001 * (i * 3 % 4), 0.002}));
    }
    pool->waitUntilAllOperationsAreFinished();
    runs.push_back(journal_->entries());
    EXPECT_EQ(runs.back(), runs.front());
  }
}

// The run loop

class Notifications : public VirtualTime {
 protected:
  // A desktop on which the process emits "AXCreated" at these moments, and "AXMoved" as an effect of pressing "w".
  void watch(const std::vector<double>& moments, const std::string& reaction = "{}") {
    std::string timeline;
    for (double moment : moments) {
      timeline += (timeline.empty() ? "" : ",") + (R"({"at": )" + std::to_string(moment)) +
                  R"(, "notify": "AXCreated", "element": "w"})";
    }
    makeDesktop(Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {"AXPress": )" + reaction + "}}",
                      R"(, "timeline": [)" + timeline + "]"));
    observer_ = desktop_->accessibility().createObserver(400, [this](const HLElementRef&, std::string_view name) {
      note(std::string(name));
      if (onNotified_) onNotified_();
    });
    ASSERT_EQ(observer_->addNotification(desktop_->element("w"), "AXCreated"), HLAXErrorSuccess);
    ASSERT_EQ(observer_->addNotification(desktop_->element("w"), "AXMoved"), HLAXErrorSuccess);
    observer_->attach();
  }

  void TearDown() override { observer_.reset(); }

  std::unique_ptr<HLObserver> observer_;
  std::function<void()> onNotified_;
};

TEST_F(Notifications, ArriveOnlyDuringTheRunLoop) {
  watch({1, 2, 3});
  sleep(1.5);
  EXPECT_THAT(journal_->entries(), IsEmpty());
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@1500", "AXCreated@2000"));
  EXPECT_EQ(desktop_->simulator().elapsed(), 2.5) << "it does not return early";
}

TEST_F(Notifications, ArriveAtARunsEnd) {
  watch({1, 1});
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@1000", "AXCreated@1000"));
  EXPECT_EQ(desktop_->simulator().elapsed(), 1);
}

TEST_F(Notifications, FollowEffectsOfACallback) {
  watch({1}, R"({"effects": [{"notify": "AXMoved", "element": "w"}]})");
  int presses = 0;
  onNotified_ = [&] {
    if (presses++ > 0) return;
    EXPECT_EQ(desktop_->press("w"), HLAXErrorSuccess);
  };
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@1000", "AXMoved@1000"));
  EXPECT_EQ(desktop_->simulator().elapsed(), 1);
}

TEST_F(Notifications, StopAtTheEnd) {
  watch({1.000001});
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(journal_->entries(), IsEmpty());
  desktop_->runLoop().runFor(0.000001);
  EXPECT_EQ(journal_->entries().size(), 1U);
}

TEST_F(Notifications, ArriveDuringAnEmptyRun) {
  watch({1});
  sleep(1);
  desktop_->runLoop().runFor(0);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@1000"));
}

TEST_F(Notifications, ArriveBeforeOtherSleepers) {
  watch({1});
  const auto pool = queue(1);
  pool->addOperation(sleeper("worker", {1}));
  desktop_->runLoop().runFor(2);
  EXPECT_THAT(journal_->entries(), ElementsAre("worker@0", "AXCreated@1000", "worker@1000"));
}

TEST_F(Notifications, WaitForASlowCallback) {
  watch({1, 2}, R"({"seconds": 5})");
  onNotified_ = [&] { EXPECT_EQ(desktop_->press("w"), HLAXErrorSuccess); };
  desktop_->runLoop().runFor(3);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@1000", "AXCreated@6000"));
  EXPECT_EQ(desktop_->simulator().elapsed(), 11);
}

// The callback at 0.5 lasts until 2.5. The event at 1 was due by the end, the later ones were not.
TEST_F(Notifications, LeaveLaterEvents) {
  watch({0.5, 1, 1.000001, 2, 2.5}, R"({"seconds": 2})");
  onNotified_ = [&] { EXPECT_EQ(desktop_->press("w"), HLAXErrorSuccess); };
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@500", "AXCreated@2500"));
  EXPECT_EQ(desktop_->simulator().elapsed(), 4.5);
}

TEST_F(Notifications, LeaveLaterSteps) {
  watch({0.5}, R"({"seconds": 2})");
  onNotified_ = [&] {
    desktop_->runLoop().postToMainQueueAfter(0.5, [this] { note("at the end"); });
    desktop_->runLoop().postToMainQueueAfter(0.6, [this] { note("after the end"); });
    EXPECT_EQ(desktop_->press("w"), HLAXErrorSuccess);
    desktop_->runLoop().postToMainQueue([this] { note("posted after the end"); });
  };
  desktop_->runLoop().runFor(1);
  EXPECT_THAT(journal_->entries(), ElementsAre("AXCreated@500", "at the end@2500"));
  desktop_->runLoop().runFor(0);
  EXPECT_THAT(journal_->entries(),
              ElementsAre("AXCreated@500", "at the end@2500", "posted after the end@2500", "after the end@2500"));
}

// The real clock

TEST(RealTime, SleepsForReal) {
  SimulatedDesktop desktop(R"({"clock": "real"})");
  const auto begin = std::chrono::steady_clock::now();
  desktop.sleep(0.05);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(50));
  EXPECT_GE(desktop.simulator().elapsed(), 0.05);
}

TEST(RealTime, AppliesTimelineAndEffects) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["AXPress"], "closes": "w"}, {"id": "v"})",
                                 R"(, "clock": "real", "timeline": [{"at": 0.02, "remove": "v"}])"));
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  const double pressed = desktop.simulator().actions().at(0).at;
  while (desktop.present().size() > 1 || desktop.simulator().elapsed() < 0.02) desktop.sleep(0.001);
  EXPECT_GE(desktop.simulator().elapsed(), 0.02);
  while (!desktop.present().empty()) desktop.sleep(0.001);
  EXPECT_GE(desktop.simulator().elapsed() - pressed, 0.05 - 1e-6);
}

TEST(RealTime, PassesWithoutWaiting) {
  SimulatedDesktop desktop(Scene(R"({"id": "w"})", R"(, "clock": "real", "timeline": [{"at": 0.01, "remove": "w"}])"));
  while (desktop.simulator().elapsed() < 0.01) EXPECT_LT(desktop.simulator().elapsed(), 20);
  EXPECT_EQ(desktop.error("w", "AXRole"), HLAXErrorInvalidElement);
}

TEST(RealTime, RunsSeveralThreadsAtOnce) {
  SimulatedDesktop desktop(R"({"clock": "real"})");
  const auto pool = desktop.runLoop().makeOperationQueue("test", HLQualityOfService::userInitiated, 2);
  // Each waits for the other one: with turns they would wait for ever.
  std::mutex mutex;
  std::condition_variable met;
  int here = 0;
  bool together = true;
  for (int i = 0; i < 2; ++i) {
    pool->addOperation([&] {
      std::unique_lock lock(mutex);
      ++here;
      met.notify_all();
      together &= met.wait_for(lock, std::chrono::seconds(20), [&here] { return here == 2; });
    });
  }
  pool->waitUntilAllOperationsAreFinished();
  EXPECT_TRUE(together);
}

TEST(RealTime, DeliversNotificationsOfAnothersAction) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {"AXPress": {"after": 0.01,
    "effects": [{"notify": "AXMoved", "element": "w"}]}}})",
                                 R"(, "clock": "real")"));
  int notified = 0;
  const auto observer =
      desktop.accessibility().createObserver(400, [&](const HLElementRef&, std::string_view) { ++notified; });
  EXPECT_EQ(observer->addNotification(desktop.element("w"), "AXMoved"), HLAXErrorSuccess);
  observer->attach();
  const auto pool = desktop.runLoop().makeOperationQueue("test", HLQualityOfService::userInitiated, 1);
  pool->addOperation([&] { EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess); });
  const double deadline = desktop.simulator().elapsed() + 20;
  while (notified == 0 && desktop.simulator().elapsed() < deadline) desktop.runLoop().runFor(0.02);
  EXPECT_EQ(notified, 1);
}

}  // namespace
