#include "core/dismissal/attempt_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/descriptions.h"
#include "tests/support/fake_element.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using Lines = std::vector<std::string>;
using Counts = std::vector<std::int64_t>;

// One run over a window with these members, and everything that came of it.
struct LoopRun {
  explicit LoopRun(std::string_view members, std::string_view timeline = "")
      : desktop(NotificationCenterScene(R"({"id": "window", "children": [)" + std::string(members) + "]}",
                                        R"(, "timeline": [)" + std::string(timeline) + "]")) {
    HLSetProgressHandler([this](std::int64_t count) { counts.push_back(count); });
    result = HLRunDirectDismiss(*desktop.application(NotificationCenterPid), &maxAlertsPerApp);
    HLSetProgressHandler(nullptr);
    log = desktop.diagnostics();
    for (const HLSimulatedAction& action : desktop.simulator().actions()) {
      pressed += (pressed.empty() ? "" : " ") + action.element.value_or("?");
    }
  }

  SimulatedDesktop desktop;
  HLDismissResult result;
  std::int64_t maxAlertsPerApp = -1;
  Counts counts;  // threads take turns on the virtual clock, so they come one after the other
  Lines log;
  std::string pressed;  // the ids of the elements pressed, in the order in which that began
};

std::size_t countStarting(const Lines& log, std::string_view beginning) {
  return static_cast<std::size_t>(std::count_if(
      log.begin(), log.end(), [beginning](const std::string& line) { return line.rfind(beginning, 0) == 0; }));
}

TEST(AttemptLoop, ReportsZeroWithoutTargets) {
  const LoopRun run(R"({"title": "hello"})");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusNothing, 0, 0}));
  EXPECT_EQ(run.maxAlertsPerApp, 0);
  EXPECT_EQ(run.counts, Counts{0});
  EXPECT_EQ(run.pressed, "");
  EXPECT_EQ(run.log, Lines{"scan root=window-0 visited=2 candidates=0"});
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 0);
}

TEST(AttemptLoop, SucceedsWhenOneBatchClearsAll) {
  const LoopRun run(R"(
    {"id": "low", "title": "low", "description": "Mail, one", "actions": ["Name:Close"], "closes": "low",
     "frame": [0, 90, 9, 9]},
    {"id": "high", "title": "high", "description": "Mail, two", "actions": ["Name:Close"], "closes": "high",
     "frame": [0, 10, 9, 9]},
    {"id": "none", "title": "none", "actions": ["Name:Close"], "closes": "none"})");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 3, 0}));
  EXPECT_EQ(run.maxAlertsPerApp, 2);
  EXPECT_EQ(run.counts, (Counts{3, 2, 1, 0}));
  EXPECT_EQ(run.pressed, "high low none");
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 80'000);
  EXPECT_EQ(run.log,
            (Lines{"scan root=window-0 visited=4 candidates=3", "alerts per app Mail=2 ?=1",
                   "attempt iteration=0 targetCount=3 eligible=3 top="
                   "#0 score=128 action=Name:Close reason=explicit-action,small-frame frame=(0.0,10.0,9.0,9.0) "
                   "snapshot=high mail, two | "
                   "#1 score=128 action=Name:Close reason=explicit-action,small-frame frame=(0.0,90.0,9.0,9.0) "
                   "snapshot=low mail, one | "
                   "#2 score=120 action=Name:Close reason=explicit-action frame=null snapshot=none",
                   "batch actions eligible=3 attempted=3 clear=0 close=3 failed=0 resolutionMs=0 actionWallMs=0 "
                   "actionSumMs=0",
                   "scan root=window-0 visited=1 candidates=0", "batch progress before=3 after=0 removed=3"}));
}

TEST(AttemptLoop, PressesIneffectiveTargetsOnce) {
  const LoopRun run(R"({"id": "stuck", "title": "stuck", "actions": ["Name:Close"]})");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 0, 1}));
  EXPECT_EQ(run.pressed, "stuck");
  EXPECT_EQ(run.counts, (Counts{1, 0}));
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 400'000);
  const std::string scan = "scan root=window-0 visited=2 candidates=1";
  const std::string top = "top=#0 score=120 action=Name:Close reason=explicit-action frame=null snapshot=stuck";
  EXPECT_EQ(run.log,
            (Lines{scan, "alerts per app ?=1", "attempt iteration=0 targetCount=1 eligible=1 " + top,
                   "batch actions eligible=1 attempted=1 clear=0 close=1 failed=0 resolutionMs=0 actionWallMs=0 "
                   "actionSumMs=0",
                   scan, scan, "batch made no observable progress attempted=1 remaining=1", scan,
                   "attempt iteration=1 targetCount=1 eligible=0 " + top,
                   "aborting because all remaining targets were previously ineffective remaining=1"}))
      << "the second attempt shows all targets, as none is eligible";
}

TEST(AttemptLoop, FailsWhenNoActionIsAccepted) {
  const LoopRun run(
      R"({"repeat": 2, "id": "deaf{n}", "title": "deaf{n}", "actions": ["Clear"],
          "onAction": {"Clear": {"error": -25204}}})",
      R"({"at": 0.05, "remove": "deaf1"})");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 0, 2}));
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 0) << "there is nothing to wait for";
  EXPECT_EQ(run.log,
            (Lines{"scan root=window-0 visited=3 candidates=2", "alerts per app ?=2",
                   "attempt iteration=0 targetCount=2 eligible=2 top="
                   "#0 score=120 action=Clear reason=explicit-action frame=null snapshot=deaf1 | "
                   "#1 score=120 action=Clear reason=explicit-action frame=null snapshot=deaf2",
                   "batch actions eligible=2 attempted=0 clear=0 close=0 failed=2 resolutionMs=0 actionWallMs=0 "
                   "actionSumMs=0",
                   "scan root=window-0 visited=3 candidates=2", "batch had no successful actions remaining=2"}));
}

TEST(AttemptLoop, RecountsRemainingAfterAFailedBatch) {
  const LoopRun run(
      R"({"id": "deaf", "title": "deaf", "actions": ["Clear"],
          "onAction": {"Clear": {"error": -25204, "seconds": 1}}})",
      R"({"at": 0.5, "add": {"title": "new", "actions": ["Clear"]}, "to": "window"})");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 0, 2}));
  EXPECT_EQ(run.log.back(), "batch had no successful actions remaining=2");
}

TEST(AttemptLoop, SkipsFailedTargetsInLaterBatches) {
  const LoopRun run(R"(
    {"id": "deaf", "title": "deaf", "actions": ["Close"], "onAction": {"Close": {"error": -25204}}},
    {"id": "good", "title": "good", "actions": ["Close"], "closes": "good"})");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 1, 1}));
  EXPECT_EQ(run.pressed, "deaf good");
  EXPECT_EQ(run.log.back(), "aborting because all remaining targets were previously ineffective remaining=1");
}

TEST(AttemptLoop, ExcludesOnlyIneffectiveTargets) {
  const LoopRun run(R"(
    {"id": "stuck", "title": "stuck", "actions": ["Close"]},
    {"id": "good", "title": "good", "actions": ["Close"], "onAction": {"Close": {"effects": [{"remove": "good"},
      {"add": {"id": "next", "title": "next", "actions": ["Close"], "closes": "next"}, "to": "window"}]}}})");
  EXPECT_EQ(run.pressed, "stuck good stuck next stuck");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 2, 1}));
  EXPECT_EQ(countStarting(run.log, "batch progress before=2 after=2 removed=1"), 1U);
  EXPECT_EQ(countStarting(run.log, "batch progress before=2 after=1 removed=1"), 1U);
  EXPECT_EQ(countStarting(run.log, "batch made no observable progress attempted=1 remaining=1"), 1U);
}

TEST(AttemptLoop, TreatsChangedTargetsAsNew) {
  // That the letter case of the action changes is no progress, but another key.
  const LoopRun run(R"({"id": "stuck", "title": "stuck", "actions": ["Name:Close", "Name:CLOSE"],
      "onAction": {"Name:Close": {"effects": [{"set": "stuck", "attribute": "actions", "value": ["Name:CLOSE"]}]}}})");
  EXPECT_EQ(run.pressed, "stuck stuck");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 0, 1}));
  EXPECT_EQ(countStarting(run.log, "batch made no observable progress attempted=1 remaining=1"), 2U);
}

TEST(AttemptLoop, TriesNewTargetsBesideIneffectiveOnes) {
  const LoopRun run(R"({"id": "stuck", "title": "stuck", "actions": ["Close"]})",
                    R"({"at": 0.4, "add": {"id": "late", "title": "late one", "actions": ["Close"], "closes": "late"},
          "to": "window"})");
  EXPECT_EQ(run.pressed, "stuck late");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 1, 1}));
  EXPECT_EQ(countStarting(run.log, "batch made no observable progress attempted=1 remaining=2"), 1U);
}

TEST(AttemptLoop, CountsAllTargetsOfOneControl) {
  // Both lead to one close button; pressing it once removes both.
  const LoopRun run(R"({"id": "both", "children": [
      {"id": "a", "role": "AXGroup", "description": "stacked close a", "frame": [0, 0, 360, 80], "actions": ["AXPress"],
       "attributes": {"AXCloseButton": {"element": {"id": "x", "actions": ["AXPress"], "closes": "both"}}}},
      {"id": "b", "role": "AXGroup", "description": "stacked close b", "frame": [0, 90, 360, 80],
       "actions": ["AXPress"],
       "attributes": {"AXCloseButton": {"ref": "x"}}}]})");
  EXPECT_EQ(run.pressed, "x");
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 2, 0}));
}

TEST(AttemptLoop, NewAlertsMeanwhileLowerTheCount) {
  // One of five goes, three come: the difference of the unsigned counts wraps, and wins.
  const LoopRun run(R"(
    {"repeat": 4, "id": "s{n}", "title": "stuck{n}", "actions": ["Close"]},
    {"id": "good", "title": "good", "actions": ["Close"], "onAction": {"Close": {"effects": [{"remove": "good"},
      {"add": {"title": "new1", "actions": ["Close"]}, "to": "window"},
      {"add": {"title": "new2", "actions": ["Close"]}, "to": "window"},
      {"add": {"title": "new3", "actions": ["Close"]}, "to": "window"}]}}})");
  EXPECT_EQ(countStarting(run.log, "batch progress before=5 after=7 removed=1"), 1U);
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, -2, 7}));
}

TEST(AttemptLoop, CountsAReplacedTargetAsDismissed) {
  const LoopRun run(R"(
    {"id": "a", "title": "a", "actions": ["Close"], "onAction": {"Close": {"effects": [{"remove": "a"}, {"remove": "b"},
      {"add": {"id": "c", "title": "c", "actions": ["Close"], "closes": "c"}, "to": "window"}]}}},
    {"id": "b", "title": "b", "actions": ["Close"]})");
  EXPECT_EQ(countStarting(run.log, "batch progress before=2 after=1 removed=2"), 1U);
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 3, 0})) << "what vanished, not the drop in number";
}

TEST(AttemptLoop, SucceedsAtLimitOf64Attempts) {
  const LoopRun run(ChainOfControls(66, "Mail"));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 64, 1}));
  EXPECT_EQ(countStarting(run.log, "attempt iteration="), 64U);
  EXPECT_EQ(countStarting(run.log, "attempt iteration=63 "), 1U);
  EXPECT_EQ(run.log.back(), "scan root=window-0 visited=2 candidates=1") << "what is left is counted afresh";
  EXPECT_EQ(run.log[run.log.size() - 2], "batch progress before=1 after=1 removed=1");
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 64 * 80'000);
  EXPECT_EQ(HLAttemptLimit, 64);
}

TEST(AttemptLoop, ChecksTheLimitBeforeTheRemainder) {
  const LoopRun run(ChainOfControls(64, "Mail"));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 64, 0}));
  EXPECT_EQ(run.log.back(), "scan root=window-0 visited=1 candidates=0");
  EXPECT_EQ(run.log[run.log.size() - 2], "batch progress before=1 after=0 removed=1");
  const LoopRun shorter(ChainOfControls(63, "Mail"));
  EXPECT_EQ(shorter.result, (HLDismissResult{HLDismissStatusSuccess, 63, 0}));
  EXPECT_EQ(shorter.log.back(), "batch progress before=1 after=0 removed=1");
}

TEST(AttemptLoop, ReportsTheMaximumOfTheStart) {
  const LoopRun run(
      R"({"repeat": 3, "id": "b{n}", "title": "t{n}", "description": "Mail, {n}", "actions": ["Close"],
          "closes": "b{n}"})");
  EXPECT_EQ(run.maxAlertsPerApp, 3);
  EXPECT_EQ(countStarting(run.log, "alerts per app "), 1U);
}

TEST(AttemptLoop, RunsWithoutAMaximumPointer) {
  SimulatedDesktop desktop(
      NotificationCenterScene(R"({"id": "a", "title": "a", "actions": ["Close"], "closes": "a"})"));
  EXPECT_EQ(HLRunDirectDismiss(*desktop.application(NotificationCenterPid)),
            (HLDismissResult{HLDismissStatusSuccess, 1, 0}));
  EXPECT_EQ(countStarting(desktop.diagnostics(), "alerts per app"), 0U) << "nobody wants to know";
}

HLDismissTarget described(HLValue description) {
  const auto element = std::make_shared<FakeElement>();
  element->attributes["AXDescription"] = {HLAXErrorSuccess, std::move(description)};
  return {element, "Close", {}, 120, "", ""};
}

TEST(AlertAppName, EndsAtTheFirstComma) {
  EXPECT_EQ(HLAlertAppName(described(std::string("Mail, Hello, World"))), "Mail");
  EXPECT_EQ(HLAlertAppName(described(std::string("Mail"))), "Mail");
  EXPECT_EQ(HLAlertAppName(described(std::string("Mail,Hello"))), "Mail,Hello");
  EXPECT_EQ(HLAlertAppName(described(std::string("Mail,Hello, World"))), "Mail,Hello");
  EXPECT_EQ(HLAlertAppName(described(std::string(", Hello"))), "");
  EXPECT_EQ(HLAlertAppName(described(std::string(" Mail , x"))), " Mail ");
  EXPECT_EQ(HLAlertAppName(described(std::string(""))), "");
  EXPECT_EQ(HLAlertAppName(described(std::int64_t{7})), "7");
  EXPECT_EQ(HLAlertAppName({nullptr, "Close", {}, 120, "", ""}), "");
  EXPECT_EQ(HLAlertAppName(described(HLArray{})), "");
  EXPECT_EQ(HLAlertAppName(described({})), "");
}

TEST(MaxAlertsPerApp, ReturnsAndLogsTheLargestCount) {
  SimulatedDesktop desktop("{}");
  EXPECT_EQ(HLMaxAlertsPerApp({described(std::string("Mail, 1")), described(std::string("Chat, 1")), described({}),
                               described(std::string("Chat, 2")), described(std::string(", x")),
                               described(std::string("chat, 3")), described(std::string("Chat"))}),
            3);
  EXPECT_EQ(desktop.diagnostics(), Lines{"alerts per app Mail=1 Chat=3 ?=2 chat=1"});
}

TEST(MaxAlertsPerApp, ReturnsZeroUnloggedWithoutTargets) {
  SimulatedDesktop desktop("{}");
  EXPECT_EQ(HLMaxAlertsPerApp({}), 0);
  EXPECT_EQ(desktop.diagnostics(), Lines{});
}

TEST(MaxAlertsPerApp, GroupsTargetsWithoutDescription) {
  SimulatedDesktop desktop("{}");
  EXPECT_EQ(HLMaxAlertsPerApp({described({}), described({}), described(std::string("Mail, x"))}), 2);
  EXPECT_EQ(desktop.diagnostics(), Lines{"alerts per app ?=2 Mail=1"});
}

HLDismissTarget plain(std::string action, std::string snapshot, HLRect frame = {}, std::int64_t score = 120) {
  return {nullptr, std::move(action), frame, score, std::move(snapshot), "because"};
}

TEST(ExcludingKeys, ComparesWholeKeys) {
  const std::vector<HLDismissTarget> targets = {plain("Close", "a"), plain("Close", "A"), plain("close", "a"),
                                                plain("Close", "b"), plain("Close", "a")};
  EXPECT_EQ(
      Describe(HLTargetsExcludingKeys(targets, {"Close|a", "Close|b "})),
      (Lines{"Close 120 no frame [A] because", "close 120 no frame [a] because", "Close 120 no frame [b] because"}));
  EXPECT_EQ(Describe(HLTargetsExcludingKeys(targets, {})), Describe(targets));
  EXPECT_TRUE(HLTargetsExcludingKeys({}, {"Close|a"}).empty());
}

TEST(TopCandidates, LogEveryField) {
  EXPECT_EQ(
      HLTopCandidateSummary({plain("Name:Close", "mail", {1.25, -2.06, 360, 80.5}, 220), plain("AXPress", "", {}, -1)}),
      "#0 score=220 action=Name:Close reason=because frame=(1.2,-2.1,360.0,80.5) snapshot=mail | "
      "#1 score=-1 action=AXPress reason=because frame=null snapshot=");
  EXPECT_EQ(HLTopCandidateSummary({}), "");
}

TEST(TopCandidates, AreSixAtMost) {
  std::vector<HLDismissTarget> targets;
  std::string expected;
  for (int i = 0; i < 6; ++i) {
    targets.push_back(plain("Close", "s" + std::to_string(i)));
    expected += (i == 0 ? "" : " | ") + ("#" + std::to_string(i)) +
                " score=120 action=Close reason=because frame=null snapshot=s" + std::to_string(i);
    EXPECT_EQ(HLTopCandidateSummary(targets), expected);
  }
  targets.push_back(plain("Close", "seventh"));
  EXPECT_EQ(HLTopCandidateSummary(targets), expected);
}

}  // namespace
