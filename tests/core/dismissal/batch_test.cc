#include "core/dismissal/batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/dismissal/ordering.h"
#include "core/dismissal/result.h"
#include "core/scan/notification_center.h"
#include "platform/run_loop.h"
#include "platform/threads/thread_safety.h"
#include "tests/support/descriptions.h"
#include "tests/support/fake_element.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"

namespace {

using Lines = std::vector<std::string>;
using Counts = std::vector<std::int64_t>;

constexpr HLRect kSmall = {0, 0, 16, 16};
constexpr HLRect kLargeFrame = {0, 0, 360, 80};

HLDismissTarget targetOf(HLElementRef element, std::string action, std::string snapshot, HLRect frame = kSmall) {
  return {std::move(element), std::move(action), frame, 70, std::move(snapshot), "reason"};
}

Lines snapshots(const std::vector<HLDismissTarget>& targets) {
  Lines texts;
  for (const HLDismissTarget& target : targets) texts.push_back(target.snapshot);
  return texts;
}

// Notes the counts that are reported while it lives.
class ProgressRecord {
 public:
  ProgressRecord() {
    HLSetProgressHandler([this](std::int64_t count) {
      const HLLock lock(mutex_);
      counts_.push_back(count);
    });
  }
  ProgressRecord(const ProgressRecord&) = delete;
  ProgressRecord& operator=(const ProgressRecord&) = delete;
  ~ProgressRecord() { HLSetProgressHandler(nullptr); }

  [[nodiscard]] Counts counts() {
    const HLLock lock(mutex_);
    return counts_;
  }

 private:
  HLMutex mutex_;
  Counts counts_ HL_GUARDED_BY(mutex_);
};

// A window of pressable controls "c1", "c2", ...: pressing takes a second each.
std::string controls(int count) {
  return NotificationCenterScene(R"({"children": [{"repeat": )" + std::to_string(count) +
                                 R"(, "id": "c{n}", "title": "control {n}", "frame": [0, 0, 16, 16],
                                     "actions": ["AXPress"], "onAction": {"AXPress": {"seconds": 1}}}]})");
}

std::vector<HLDismissTarget> targetsOfControls(SimulatedDesktop& desktop, int count) {
  std::vector<HLDismissTarget> targets;
  for (int i = 1; i <= count; ++i) {
    targets.push_back(targetOf(desktop.element("c" + std::to_string(i)), "AXPress", "s" + std::to_string(i)));
  }
  return targets;
}

TEST(ProgressIdentityKey, JoinsActionAndSnapshotUnchanged) {
  EXPECT_EQ(HLProgressIdentityKeyForTarget(targetOf(nullptr, "Name:Close", "Mail, Hello")), "Name:Close|Mail, Hello");
  EXPECT_EQ(HLProgressIdentityKeyForTarget(targetOf(nullptr, "a|b", "c|d")), "a|b|c|d");
  EXPECT_EQ(HLProgressIdentityKeyForTarget(HLDismissTarget()), "|");
}

TEST(DismissBatch, StartsFourActionsAtATime) {
  SimulatedDesktop desktop(controls(10));
  ProgressRecord progress;
  HLKeySet ineffective;
  const auto accepted = HLRunDismissBatch(targetsOfControls(desktop, 10), ineffective);

  EXPECT_EQ(snapshots(accepted), (Lines{"s1", "s2", "s3", "s4", "s5", "s6", "s7", "s8", "s9", "s10"}));
  EXPECT_TRUE(ineffective.empty());
  EXPECT_EQ(desktop.elapsedMicroseconds(), 3'000'000);
  Lines started;
  for (const HLSimulatedAction& action : desktop.simulator().actions()) {
    started.push_back(action.element.value_or("?") + " " + action.action + " " +
                      std::to_string(action.at).substr(0, 5));
  }
  EXPECT_EQ(started, (Lines{"c1 AXPress 0.000", "c2 AXPress 0.000", "c3 AXPress 0.000", "c4 AXPress 0.000",
                            "c5 AXPress 1.000", "c6 AXPress 1.000", "c7 AXPress 1.000", "c8 AXPress 1.000",
                            "c9 AXPress 2.000", "c10 AXPress 2.000"}));
  Counts counts = progress.counts();
  std::sort(counts.begin(), counts.end());
  EXPECT_EQ(counts, (Counts{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=10 attempted=10 clear=0 close=10 failed=0 "
                                         "resolutionMs=0 actionWallMs=3000 actionSumMs=10000"});
}

TEST(DismissBatch, LimitsItsQueueToFour) {
  const std::string name = "com.tessaly.hushlet.actions";
  for (const int count : {1, 2, 3, 4, 5, 10}) {
    SimulatedDesktop desktop(controls(count));
    SpiedPlatform spied(desktop.platform());
    HLKeySet ineffective;
    EXPECT_EQ(HLRunDismissBatch(targetsOfControls(desktop, count), ineffective).size(),
              static_cast<std::size_t>(count));
    EXPECT_EQ(spied.runLoop.queues,
              (std::vector<SpyRunLoop::Queue>{{name, HLQualityOfService::userInitiated, std::min(count, 4)}}));
    EXPECT_EQ(desktop.elapsedMicroseconds(), (count + 3) / 4 * 1'000'000);
  }
}

TEST(DismissBatch, ReportsZeroAfterASingleAction) {
  SimulatedDesktop desktop(controls(1));
  ProgressRecord progress;
  HLKeySet ineffective;
  EXPECT_EQ(HLRunDismissBatch(targetsOfControls(desktop, 1), ineffective).size(), 1U);
  EXPECT_EQ(progress.counts(), Counts{0});
}

TEST(DismissBatch, LogsWithoutTargets) {
  SimulatedDesktop desktop("{}");
  SpiedPlatform spied(desktop.platform());
  ProgressRecord progress;
  HLKeySet ineffective;
  EXPECT_TRUE(HLRunDismissBatch({targetOf(nullptr, "AXPress", "no element")}, ineffective).empty());
  EXPECT_TRUE(ineffective.empty());
  EXPECT_EQ(progress.counts(), Counts{});
  ASSERT_EQ(spied.runLoop.queues.size(), 1U);
  EXPECT_EQ(spied.runLoop.queues[0].maxConcurrentOperations, 1);
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=1 attempted=0 clear=0 close=0 failed=0 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=0"});
}

TEST(DismissBatch, SkipsTargetsWithoutElements) {
  SimulatedDesktop desktop("{}");
  HLKeySet ineffective;
  const auto accepted = HLRunDismissBatch(
      {targetOf(nullptr, "AXPress", "none"), targetOf(std::make_shared<FakeElement>(), "AXPress", "a"),
       targetOf(nullptr, "AXPress", "none"), targetOf(std::make_shared<FakeElement>(), "AXPress", "b")},
      ineffective);
  EXPECT_EQ(snapshots(accepted), (Lines{"a", "b"}));
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=4 attempted=2 clear=0 close=2 failed=0 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=0"});
}

TEST(DismissBatch, PressesEqualElementsOnce) {
  SimulatedDesktop desktop("{}");
  const auto first = std::make_shared<FakeElement>();
  const auto again = std::make_shared<FakeElement>();
  const auto other = std::make_shared<FakeElement>();
  again->node = first->node;
  Lines pressed;
  first->onAction = [&pressed](std::string_view action) {
    pressed.push_back("first " + std::string(action));
    return 0;
  };
  again->onAction = [&pressed](std::string_view action) {
    pressed.push_back("again " + std::string(action));
    return 0;
  };
  HLKeySet ineffective;
  const auto accepted = HLRunDismissBatch(
      {targetOf(first, "Name:Close", "a"), targetOf(again, "AXPress", "b"), targetOf(other, "AXPress", "c")},
      ineffective);
  EXPECT_EQ(pressed, Lines{"first Name:Close"});
  EXPECT_EQ(snapshots(accepted), (Lines{"a", "c"}));
  EXPECT_TRUE(ineffective.empty());
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=3 attempted=2 clear=0 close=2 failed=0 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=0"});
}

TEST(DismissBatch, LeavesDuplicatesUnmarkedOnFailure) {
  SimulatedDesktop desktop("{}");
  const auto first = std::make_shared<FakeElement>();
  const auto again = std::make_shared<FakeElement>();
  again->node = first->node;
  first->onAction = [](std::string_view) { return HLAXErrorCannotComplete; };
  HLKeySet ineffective;
  EXPECT_TRUE(
      HLRunDismissBatch({targetOf(first, "AXPress", "a"), targetOf(again, "AXPress", "b")}, ineffective).empty());
  EXPECT_EQ(ineffective, HLKeySet{"AXPress|a"});
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=2 attempted=0 clear=0 close=0 failed=1 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=0"});
}

TEST(DismissBatch, ComparesResolvedElements) {
  SimulatedDesktop desktop(NotificationCenterScene(R"(
    {"id": "a", "frame": [0, 0, 360, 80],
     "attributes": {"AXCloseButton": {"element": {"id": "x", "actions": ["AXPress"]}}}},
    {"id": "b", "frame": [0, 0, 360, 80], "attributes": {"AXCloseButton": {"ref": "x"}}})"));
  HLKeySet ineffective;
  const auto accepted = HLRunDismissBatch({targetOf(desktop.element("a"), "AXPress", "a", kLargeFrame),
                                           targetOf(desktop.element("b"), "AXPress", "b", kLargeFrame)},
                                          ineffective);
  EXPECT_EQ(snapshots(accepted), Lines{"a"});
  const auto actions = desktop.simulator().actions();
  ASSERT_EQ(actions.size(), 1U);
  EXPECT_EQ(actions[0].element, "x");
}

TEST(PreparedBatch, ReportsTheControlOfEachTarget) {
  SimulatedDesktop desktop(NotificationCenterScene(R"(
    {"id": "a", "frame": [0, 0, 360, 80],
     "attributes": {"AXCloseButton": {"element": {"id": "x", "actions": ["AXPress"]}}}},
    {"id": "b", "actions": ["AXPress"]},
    {"id": "c", "frame": [0, 0, 360, 80], "attributes": {"AXCloseButton": {"ref": "x"}}})"));
  Lines reported;
  const HLPreparedBatch batch = HLPrepareBatch(
      {targetOf(desktop.element("a"), "AXPress", "a", kLargeFrame), targetOf(nullptr, "AXPress", "none"),
       targetOf(desktop.element("b"), "AXPress", "b"), targetOf(desktop.element("c"), "AXPress", "c", kLargeFrame)},
      [&reported](const HLResolutionStep& step) {
        reported.push_back(step.target.snapshot + " " + step.control.reason + " " + std::to_string(step.index));
      });
  EXPECT_EQ(reported,
            (Lines{"a attribute-control:AXCloseButton 0", "b reason 1", "c attribute-control:AXCloseButton 0"}));
  EXPECT_EQ(snapshots(batch.prepared), (Lines{"a", "b"}));
}

TEST(DismissBatch, ReturnsPreparedTargetsForResolvedControls) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"id": "banner", "frame": [0, 0, 360, 80],
      "actions": ["AXPress"], "attributes": {"AXCloseButton": {"element": {"id": "x", "actions": ["Name:Clear"]}}}})"));
  HLKeySet ineffective;
  const auto accepted =
      HLRunDismissBatch({targetOf(desktop.element("banner"), "AXPress", "mail", kLargeFrame)}, ineffective);
  EXPECT_EQ(Describe(accepted), Lines{"AXPress 70 (0,0,360,80) [mail] reason"});
  const auto actions = desktop.simulator().actions();
  ASSERT_EQ(actions.size(), 1U);
  EXPECT_EQ(actions[0].element, "x");
  EXPECT_EQ(actions[0].action, "Name:Clear");
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=1 attempted=1 clear=0 close=1 failed=0 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=0"})
      << "clear or close is told by the prepared target's action";
}

TEST(DismissBatch, MarksBothTargetsOnFailure) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"id": "banner", "frame": [0, 0, 360, 80],
      "actions": ["AXPress"], "attributes": {"AXCloseButton": {"element": {"id": "x", "actions": ["AXPress"],
        "onAction": {"AXPress": {"error": -25204}}}}}})"));
  HLKeySet ineffective = {"kept|from before"};
  EXPECT_TRUE(
      HLRunDismissBatch({targetOf(desktop.element("banner"), "AXPress", "Mail", kLargeFrame)}, ineffective).empty());
  EXPECT_EQ(ineffective, (HLKeySet{"AXPress|Mail", "AXPress|axclosebutton", "kept|from before"}));
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=1 attempted=0 clear=0 close=0 failed=1 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=0"});
}

TEST(DismissBatch, CountsAcceptedActionsOnly) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"children": [
      {"id": "clear", "actions": ["Name:CLEAR All"]},
      {"id": "close", "actions": ["Name:Close"]},
      {"id": "press", "actions": ["AXPress"], "onAction": {"AXPress": {"seconds": 0.0126}}},
      {"id": "refused clear", "actions": ["Clear"], "onAction": {"Clear": {"error": -25200, "seconds": 0.0126}}},
      {"id": "unlisted", "actions": []}]})"));
  HLKeySet ineffective;
  const auto accepted = HLRunDismissBatch(
      {targetOf(desktop.element("refused clear"), "Clear", "r"),
       targetOf(desktop.element("clear"), "Name:CLEAR All", "a"),
       targetOf(desktop.element("unlisted"), "Name:Close", "u"), targetOf(desktop.element("close"), "Name:Close", "b"),
       targetOf(desktop.element("press"), "AXPress", "c")},
      ineffective);
  EXPECT_EQ(snapshots(accepted), (Lines{"a", "b", "c"}));
  EXPECT_EQ(ineffective, (HLKeySet{"Clear|r", "Name:Close|u"}));
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=5 attempted=3 clear=1 close=2 failed=2 "
                                         "resolutionMs=0 actionWallMs=13 actionSumMs=25"})
      << "times are rounded at the end, failed actions included";
}

TEST(DismissBatch, RoundsTimesToMilliseconds) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"children": [
      {"id": "a", "actions": ["AXPress"], "onAction": {"AXPress": {"seconds": 0.0003}}},
      {"id": "b", "actions": ["AXPress"], "onAction": {"AXPress": {"seconds": 0.0004}}}]})"));
  HLKeySet ineffective;
  EXPECT_EQ(
      HLRunDismissBatch(
          {targetOf(desktop.element("a"), "AXPress", "a"), targetOf(desktop.element("b"), "AXPress", "b")}, ineffective)
          .size(),
      2U);
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=2 attempted=2 clear=0 close=2 failed=0 "
                                         "resolutionMs=0 actionWallMs=0 actionSumMs=1"});
}

TEST(DismissBatch, TimesResolvingAndPressingSeparately) {
  SimulatedDesktop desktop("{}");
  std::vector<HLDismissTarget> eligible;
  std::vector<bool> slept(2, false);
  for (std::size_t i = 0; i < 2; ++i) {
    const auto slow = std::make_shared<FakeElement>();
    slow->onRead = [&slept, i] {
      if (!slept[i]) HLCurrentPlatform().runLoop->sleep(0.0124);
      slept[i] = true;
    };
    slow->onAction = [](std::string_view) {
      HLCurrentPlatform().runLoop->sleep(0.1);
      return HLAXErrorSuccess;
    };
    eligible.push_back(targetOf(slow, "AXPress", "slow", kLargeFrame));
  }
  HLKeySet ineffective;
  EXPECT_EQ(HLRunDismissBatch(eligible, ineffective).size(), 2U);
  EXPECT_EQ(desktop.diagnostics(), Lines{"batch actions eligible=2 attempted=2 clear=0 close=2 failed=0 "
                                         "resolutionMs=25 actionWallMs=100 actionSumMs=200"});
}

TEST(DismissBatch, ResolvesAllTargetsBeforePressing) {
  SimulatedDesktop desktop(NotificationCenterScene(R"(
    {"id": "first", "actions": ["AXPress"], "onAction": {"AXPress": {"effects": [{"remove": "x"}]}}},
    {"id": "banner", "frame": [0, 0, 360, 80], "actions": ["AXPress"],
     "children": [{"id": "x", "title": "close", "frame": [0, 0, 16, 16], "actions": ["AXPress"]}]})"));
  HLKeySet ineffective;
  (void)HLRunDismissBatch({targetOf(desktop.element("first"), "AXPress", "a"),
                           targetOf(desktop.element("banner"), "AXPress", "b", kLargeFrame)},
                          ineffective);
  const auto actions = desktop.simulator().actions();
  ASSERT_EQ(actions.size(), 2U);
  EXPECT_EQ(actions[1].element, "x");
}

// What is on screen before a batch, and what the wait makes of what happens after it.
struct Wait {
  Wait(std::string_view controls, std::string_view timeline)
      : desktop(NotificationCenterScene(R"({"id": "window", "children": [)" + std::string(controls) + "]}",
                                        R"(, "timeline": [)" + std::string(timeline) + "]")) {
    const HLElementRef application = desktop.application(NotificationCenterPid);
    const auto before = HLSortedTargets(HLCurrentTargets(*application));
    after = snapshots(HLWaitForBatchProgress(*application, before));
    scans = desktop.diagnostics().size() - 1;
  }

  SimulatedDesktop desktop;
  Lines after;
  std::size_t scans = 0;
};

constexpr std::string_view kTwo = R"({"id": "a", "title": "a", "actions": ["Close"], "frame": [0, 50, 9, 9]},
                                     {"id": "b", "title": "b", "actions": ["Close"], "frame": [0, 10, 9, 9]})";

TEST(WaitForProgress, LooksAfterEightyMilliseconds) {
  const Wait wait(kTwo, R"({"at": 0.05, "remove": "a"})");
  EXPECT_EQ(wait.after, Lines{"b"});
  EXPECT_EQ(wait.scans, 1U);
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 80'000);
}

TEST(WaitForProgress, LooksAgainAfterAnother320Milliseconds) {
  const Wait wait(kTwo, R"({"at": 0.2, "remove": "a"})");
  EXPECT_EQ(wait.after, Lines{"b"});
  EXPECT_EQ(wait.scans, 2U);
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 400'000);
}

TEST(WaitForProgress, SeesChangesAtTheScanTime) {
  EXPECT_EQ(Wait(kTwo, R"({"at": 0.08, "remove": "a"})").desktop.elapsedMicroseconds(), 80'000);
  EXPECT_EQ(Wait(kTwo, R"({"at": 0.080001, "remove": "a"})").desktop.elapsedMicroseconds(), 400'000);
  EXPECT_EQ(Wait(kTwo, R"({"at": 0.4, "remove": "a"})").after, Lines{"b"});
}

TEST(WaitForProgress, NeverLooksAThirdTime) {
  const Wait wait(kTwo, R"({"at": 0.400001, "remove": "a"})");
  EXPECT_EQ(wait.after, (Lines{"b", "a"})) << "in their order";
  EXPECT_EQ(wait.scans, 2U);
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 400'000);
}

TEST(WaitForProgress, ReturnsEarlyOnAnEmptyScreen) {
  const Wait wait(kTwo, R"({"at": 0.01, "remove": "a"}, {"at": 0.02, "remove": "b"})");
  EXPECT_EQ(wait.after, Lines{});
  EXPECT_EQ(wait.scans, 1U);
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 80'000);
}

TEST(WaitForProgress, IgnoresNewTargets) {
  const Wait wait(kTwo, R"({"at": 0.01, "add": {"title": "c", "actions": ["Close"]}, "to": "window"})");
  EXPECT_EQ(wait.after, (Lines{"b", "a", "c"}));
  EXPECT_EQ(wait.scans, 2U);
}

TEST(WaitForProgress, CountsReplacedTargets) {
  const Wait wait(
      kTwo,
      R"({"at": 0.01, "remove": "a"}, {"at": 0.01, "add": {"title": "c", "actions": ["Close"]}, "to": "window"})");
  EXPECT_EQ(wait.after, (Lines{"b", "c"}));
  EXPECT_EQ(wait.scans, 1U);
}

TEST(WaitForProgress, UsesItsTwoDelays) {
  EXPECT_EQ(HLBatchVerificationDelays, (std::array<double, 2>{0.08, 0.32}));
  SimulatedDesktop desktop(NotificationCenterScene(kTwo));
  SpiedPlatform spied(desktop.platform());
  const HLElementRef application = desktop.application(NotificationCenterPid);
  (void)HLWaitForBatchProgress(*application, HLCurrentTargets(*application));
  EXPECT_EQ(spied.runLoop.sleeps, (std::vector<double>{0.08, 0.32}));
}

TEST(WaitForProgress, IgnoresLetterCase) {
  const Wait wait(R"({"id": "a", "title": "a", "actions": ["Name:Close"]})",
                  R"({"at": 0.01, "set": "a", "attribute": "actions", "value": ["Name:CLOSE"]})");
  EXPECT_EQ(wait.scans, 2U);
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 400'000);
}

std::int64_t removed(const Lines& before, const Lines& after) {
  const auto targets = [](const Lines& texts) {
    std::vector<HLDismissTarget> made;
    for (const std::string& text : texts) made.push_back(targetOf(nullptr, text, text));
    return made;
  };
  return HLRemovedTargetCount(targets(before), targets(after));
}

TEST(RemovedTargets, CountRepeatedKeysIgnoringCase) {
  EXPECT_EQ(removed({"A", "A", "B"}, {"a", "c"}), 2);
  EXPECT_EQ(removed({"A", "A"}, {"A"}), 1);
  EXPECT_EQ(removed({"A"}, {"A", "A"}), 0);
  EXPECT_EQ(removed({"A"}, {"B", "C"}), 1);
  EXPECT_EQ(removed({"ÄÖ"}, {"äö"}), 0);
  EXPECT_EQ(removed({"a", "b"}, {}), 2);
  EXPECT_EQ(removed({}, {"a"}), 0);
  EXPECT_EQ(removed({}, {}), 0);
}

TEST(RemovedTargets, CompareActionAndSnapshotOnly) {
  const HLDismissTarget one{nullptr, "AXPress", {0, 0, 1, 1}, 62, "mail", "x"};
  const HLDismissTarget moved{nullptr, "AXPress", {50, 90, 2, 2}, 92, "mail", "y"};
  const HLDismissTarget otherAction{nullptr, "Close", {0, 0, 1, 1}, 62, "mail", "x"};
  EXPECT_EQ(HLRemovedTargetCount({one}, {moved}), 0);
  EXPECT_EQ(HLRemovedTargetCount({one}, {otherAction}), 1);
}

}  // namespace
