#include "core/scan/tree_scan.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/tree_walk.h"
#include "tests/support/descriptions.h"
#include "tests/support/fake_element.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using Lines = std::vector<std::string>;

// What one scan of a window finds, and its line in the log.
struct Scan {
  explicit Scan(std::string_view window) : desktop(NotificationCenterScene(window)) {
    targets = HLTargetsInRoot(desktop.element("root"), "here");
    for (const HLDismissTarget& target : targets) snapshots.push_back(target.snapshot);
    const Lines lines = desktop.diagnostics();
    line = lines.size() == 1 ? lines[0] : "not one line";
  }

  SimulatedDesktop desktop;
  std::vector<HLDismissTarget> targets;
  Lines snapshots;
  std::string line;
};

TEST(TreeScan, VisitsALoneRoot) {
  const Scan scan(R"({"id": "root", "title": "hello"})");
  EXPECT_EQ(scan.snapshots, Lines{});
  EXPECT_EQ(scan.line, "scan root=here visited=1 candidates=0");
}

TEST(TreeScan, MayReturnTheRoot) {
  Scan scan(R"({"id": "root", "title": "hello", "actions": ["Name:Close"]})");
  EXPECT_EQ(Describe(scan.targets), Lines{"Name:Close 120 no frame [hello] explicit-action"});
  ASSERT_EQ(scan.targets.size(), 1U);
  EXPECT_EQ(scan.targets[0].element, scan.desktop.element("root"));
  EXPECT_EQ(scan.line, "scan root=here visited=1 candidates=1");
}

TEST(TreeScan, VisitsADestroyedRoot) {
  SimulatedDesktop desktop(NotificationCenterScene(""));
  EXPECT_TRUE(HLTargetsInRoot(std::make_shared<FakeElement>(), "gone").empty());
  EXPECT_EQ(desktop.diagnostics(), Lines{"scan root=gone visited=1 candidates=0"});
}

TEST(TreeScan, ReturnsTargetsBreadthFirst) {
  const Scan scan(R"({"id": "root", "children": [
      {"title": "a", "actions": ["Close"], "frame": [0, 0, 999, 999],
       "children": [{"title": "a1", "actions": ["Close"], "frame": [0, 0, 999, 999],
                     "children": [{"title": "a11", "actions": ["Close"]}]}]},
      {"title": "b", "actions": ["Close"], "frame": [0, 0, 999, 999],
       "children": [{"title": "b1", "actions": ["Close"]}]}]})");
  EXPECT_EQ(scan.snapshots, (Lines{"a", "b", "a1", "b1", "a11"}));
  EXPECT_EQ(scan.line, "scan root=here visited=6 candidates=5");
}

TEST(TreeScan, VisitsChildrenThenRowsThenVisible) {
  const Scan scan(R"({"id": "root",
      "visibleChildren": [{"title": "visible", "actions": ["Close"]}],
      "rows": [{"title": "row", "actions": ["Close"]}],
      "children": [{"title": "child", "actions": ["Close"]}]})");
  EXPECT_EQ(scan.snapshots, (Lines{"child", "row", "visible"}));
}

TEST(TreeScan, VisitsARepeatedHandleOnce) {
  const Scan scan(R"({"id": "root", "children": [{"id": "child", "title": "c", "actions": ["Close"]}, {"ref": "child"}],
      "visibleChildren": [{"ref": "child"}]})");
  EXPECT_EQ(scan.snapshots, Lines{"c"});
  EXPECT_EQ(scan.line, "scan root=here visited=2 candidates=1");
}

TEST(TreeScan, VisitsEveryFreshHandle) {
  const Scan scan(R"({"id": "root",
      "children": [{"id": "child", "title": "c", "actions": ["Close"], "freshHandles": true}],
      "visibleChildren": [{"ref": "child"}]})");
  EXPECT_EQ(scan.snapshots, Lines{"c"});
  EXPECT_EQ(scan.line, "scan root=here visited=3 candidates=1");
}

TEST(TreeScan, ContinuesAfterARepeatedHandle) {
  const Scan scan(
      R"({"id": "root", "children": [{"id": "child"}, {"ref": "child"}, {"title": "c", "actions": ["Close"]}]})");
  EXPECT_EQ(scan.snapshots, Lines{"c"});
  EXPECT_EQ(scan.line, "scan root=here visited=3 candidates=1");
}

TEST(TreeScan, EndsOnACycle) {
  const Scan scan(R"({"id": "root", "children": [{"id": "child", "children": [{"ref": "root"}, {"ref": "child"}]}]})");
  EXPECT_EQ(scan.line, "scan root=here visited=2 candidates=0");
}

TEST(TreeScan, EndsFreshCyclesAtTheLimit) {
  const Scan scan(
      R"({"id": "root", "children": [{"id": "child", "freshHandles": true, "children": [{"ref": "child"}]}]})");
  EXPECT_EQ(scan.line, "scan root=here visited=1400 candidates=0");
}

TEST(TreeScan, StopsAfterThe1400thElement) {
  const Scan scan(R"({"id": "root", "children": [{"repeat": 1999, "title": "{n}", "actions": ["Close"]}]})");
  ASSERT_EQ(scan.snapshots.size(), 1399U);
  EXPECT_EQ(scan.snapshots.back(), "1399");
  EXPECT_EQ(scan.line, "scan root=here visited=1400 candidates=1399");
  EXPECT_EQ(HLScanLimit, 1400U);
}

TEST(TreeScan, Visits1400Elements) {
  const Scan last(R"({"id": "root", "children": [{"repeat": 1398}, {"title": "last", "actions": ["Close"]}]})");
  EXPECT_EQ(last.snapshots, Lines{"last"});
  EXPECT_EQ(last.line, "scan root=here visited=1400 candidates=1");
  const Scan beyond(R"({"id": "root", "children": [{"repeat": 1399}, {"title": "beyond", "actions": ["Close"]}]})");
  EXPECT_EQ(beyond.snapshots, Lines{});
  EXPECT_EQ(beyond.line, "scan root=here visited=1400 candidates=0");
}

TEST(TreeScan, CountsEachHandleOnce) {
  const Scan scan(R"({"id": "root", "children": [{"id": "child"}, {"repeat": 900, "children": [{"ref": "child"}]},
      {"repeat": 497}, {"title": "last", "actions": ["Close"]}]})");
  EXPECT_EQ(scan.snapshots, Lines{"last"});
  EXPECT_EQ(scan.line, "scan root=here visited=1400 candidates=1");
}

TEST(TreeScan, InheritsWordsOfAllAncestors) {
  const Scan scan(R"({"id": "root", "role": "AXGroup", "description": "Stacked Mail", "children": [
      {"role": "AXGroup", "children": [
        {"children": [{"role": "AXButton", "title": "x", "actions": ["AXPress"], "frame": [0, 0, 16, 16]}]}]}]})");
  EXPECT_EQ(Describe(scan.targets), Lines{"AXPress 62 (0,0,16,16) [axbutton x] "
                                          "notification-context,pressable-button,small-frame,press-fallback"});
}

TEST(TreeScan, IsolatesSiblingContexts) {
  const Scan scan(R"({"id": "root", "children": [
      {"title": "notification dismiss"},
      {"role": "AXButton", "title": "x", "actions": ["AXPress"], "frame": [0, 0, 16, 16]}]})");
  EXPECT_EQ(scan.snapshots, Lines{});
}

TEST(TreeScan, FindsWordsAcrossParentAndChild) {
  const Scan scan(R"({"id": "root", "title": "Message from", "children": [
      {"title": "iPhone", "actions": ["Close"]}]})");
  EXPECT_EQ(Describe(scan.targets), Lines{"Close 160 no frame [iphone] explicit-action,notification-context"});
}

TEST(TreeScan, UsesPathAsTextlessSnapshot) {
  const Scan scan(R"({"id": "root", "role": "AXWindow", "children": [
      {"children": [{"role": "AXGroup", "title": " Two  Words", "children": [{"actions": ["Close"]}]}]}]})");
  EXPECT_EQ(scan.snapshots, Lines{"axwindow axgroup two words"});
}

TEST(TreeScan, PrunesBelowSmallStrongCandidates) {
  const Scan scan(R"({"id": "root", "children": [
      {"subrole": "AXNotificationCenterAlert", "actions": ["Close"], "frame": [0, 0, 16, 16],
       "children": [{"title": "hidden", "actions": ["Close"]}]}]})");
  EXPECT_EQ(scan.snapshots, Lines{"axnotificationcenteralert"});
  EXPECT_EQ(scan.line, "scan root=here visited=2 candidates=1");
}

TEST(TreeScan, DescendsIntoLargeCandidates) {
  const Scan scan(R"({"id": "root", "children": [
      {"subrole": "AXNotificationCenterAlert", "actions": ["Close"], "frame": [0, 0, 400, 80],
       "children": [{"title": "seen", "actions": ["Close"]}]}]})");
  EXPECT_EQ(scan.snapshots, (Lines{"axnotificationcenteralert", "seen"}));
}

TEST(TreeScan, DescendsIntoWeakCandidates) {
  const Scan scan(R"({"id": "root", "children": [
      {"role": "AXButton", "title": "weak", "actions": ["AXPress", "Close"], "frame": [0, 0, 16, 16],
       "children": [{"title": "seen", "actions": ["AXPress", "Close"]}]}]})");
  EXPECT_EQ(Describe(scan.targets),
            (Lines{"Close 142 (0,0,16,16) [axbutton weak] explicit-action,pressable-button,small-frame",
                   "Close 120 no frame [seen] explicit-action"}));
}

TEST(TreeScan, PrunesBelowDroppedTargets) {
  const Scan scan(R"({"id": "root", "children": [
      {"title": "clear", "actions": ["Close"]},
      {"title": "clear", "actions": ["Close"], "children": [{"title": "hidden", "actions": ["Close"]}]}]})");
  EXPECT_EQ(Describe(scan.targets), Lines{"Close 150 no frame [clear] explicit-action,close-words"});
  EXPECT_EQ(scan.line, "scan root=here visited=3 candidates=1");
}

TEST(TreeScan, DescendsIntoDroppedTargets) {
  const Scan scan(R"({"id": "root", "children": [
      {"title": "same", "actions": ["Close"]},
      {"title": "same", "actions": ["Close"], "children": [{"title": "seen", "actions": ["Close"]}]}]})");
  EXPECT_EQ(scan.snapshots, (Lines{"same", "seen"}));
}

TEST(TreeScan, KeepsTheFirstOfEqualKeys) {
  Scan scan(R"({"id": "root", "children": [
      {"id": "first", "role": "AXGroup", "title": "same", "actions": ["Close"]},
      {"id": "second", "role": "AXGroup", "title": "same", "actions": ["Close"]}]})");
  ASSERT_EQ(scan.targets.size(), 1U);
  EXPECT_EQ(scan.targets[0].element, scan.desktop.element("first"));
}

TEST(TreeScan, KeepsEqualTextsAtDifferentPlaces) {
  const Scan scan(R"({"id": "root", "children": [
      {"title": "same", "actions": ["Close"], "frame": [0, 0, 10, 10]},
      {"title": "same", "actions": ["Close"], "frame": [0, 20, 10, 10]},
      {"title": "same", "actions": ["Close"], "frame": [0.4, 19.6, 10, 10]}]})");
  EXPECT_EQ(scan.targets.size(), 2U);
}

TEST(TreeScan, SkipsOtherListMembers) {
  const Scan scan(R"({"id": "root", "children": ["text", 1, true, [], {"title": "c", "actions": ["Close"]}],
      "attributes": {"AXRows": "no list", "AXVisibleChildren": 12}})");
  EXPECT_EQ(scan.snapshots, Lines{"c"});
  EXPECT_EQ(scan.line, "scan root=here visited=2 candidates=1");
}

TEST(TreeScan, SurvivesAFailingList) {
  const Scan scan(R"({"id": "root", "children": [{"title": "lost", "actions": ["Close"]}],
      "rows": [{"title": "row", "actions": ["Close"]}], "errors": {"AXChildren": -25204}})");
  EXPECT_EQ(scan.snapshots, Lines{"row"});
}

TEST(TreeScan, KeepsNoState) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"id": "root", "title": "a", "actions": ["Close"]})"));
  for (int round = 0; round < 2; ++round) EXPECT_EQ(HLTargetsInRoot(desktop.element("root"), "r").size(), 1U);
  EXPECT_EQ(desktop.diagnostics(), (Lines{"scan root=r visited=1 candidates=1", "scan root=r visited=1 candidates=1"}));
}

TEST(TreeScan, FindsNothingAtAMissingRoot) {
  SimulatedDesktop desktop("{}");
  EXPECT_TRUE(HLTargetsInRoot(nullptr, "none").empty());
  EXPECT_EQ(desktop.diagnostics(), Lines{"scan root=none visited=0 candidates=0"});
}

TEST(ChildQueueItems, KeepOrderAndContext) {
  HLElementFacts facts;
  const auto a = std::make_shared<FakeElement>();
  const auto b = std::make_shared<FakeElement>();
  facts.children = {b, a, b};
  const HLContext context("axgroup");
  const std::vector<HLQueueItem> items = HLChildQueueItems(facts, context);
  ASSERT_EQ(items.size(), 3U);
  EXPECT_EQ(items[0].element, b);
  EXPECT_EQ(items[1].element, a);
  EXPECT_EQ(items[2].element, b);
  for (const HLQueueItem& item : items) EXPECT_EQ(item.context.text(), "axgroup");
  EXPECT_TRUE(HLChildQueueItems(HLElementFacts(), context).empty());
}

TEST(Pruning, NeedsScore150AndSmallFrame) {
  const auto prunes = [](std::int64_t score, HLRect frame) {
    return HLShouldPruneDescendantsAfterCandidate({nullptr, "Close", frame, score, "", ""});
  };
  EXPECT_TRUE(prunes(150, {0, 0, 16, 16}));
  EXPECT_FALSE(prunes(149, {0, 0, 16, 16}));
  EXPECT_TRUE(prunes(150, {}));
  EXPECT_FALSE(prunes(149, {}));
  EXPECT_TRUE(prunes(220, {0, 0, 120, 80}));
  EXPECT_FALSE(prunes(220, {0, 0, 120.001, 80}));
  EXPECT_FALSE(prunes(220, {0, 0, 120, 80.001}));
  EXPECT_FALSE(prunes(220, {0, 0, 400, 80}));
  EXPECT_FALSE(prunes(220, {0, 0, 80, 120}));
}

}  // namespace
