// The swarm's own parts: plans, log forms, the shrinker.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "tests/support/temporary_directory.h"
#include "tests/swarm/check/checks.h"
#include "tests/swarm/generate/plan.h"
#include "tests/swarm/run.h"
#include "tests/swarm/shrink.h"
#include "tests/swarm/workers.h"

namespace {

TEST(MakePlan, RepeatsForASeed) {
  PlanShape shape;
  EXPECT_EQ(MakePlan(7, shape).scene, MakePlan(7, shape).scene);
  EXPECT_NE(MakePlan(7, shape).scene, MakePlan(8, shape).scene);
}

TEST(MakePlan, MakesEveryModeAndSize) {
  std::set<Mode> modes;
  int large = 0;
  for (std::uint64_t seed = 0; seed < 500; ++seed) {
    PlanShape shape;
    modes.insert(MakePlan(seed, shape).mode);
    if (shape.elements > 500) ++large;
  }
  EXPECT_EQ(modes.size(), static_cast<std::size_t>(ModeCount));
  EXPECT_GT(large, 30);
}

TEST(MakePlan, RefusesThreadsAnswersAndLogs) {
  std::size_t refusals = 0;
  std::size_t answers = 0;
  std::size_t logs = 0;
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    PlanShape shape;
    const Plan plan = MakePlan(seed, shape);
    refusals += plan.threadRefusals.size();
    answers += plan.shortAnswers.size();
    logs += plan.logFaults.size();
  }
  EXPECT_GT(refusals, 5U);
  EXPECT_GT(answers, 5U);
  EXPECT_GT(logs, 5U);
}

TEST(RunPlan, StrikesWithPlannedLimits) {
  const TemporaryDirectory folder;
  Plan plan;
  plan.mode = Mode::dismissal;
  plan.scene = R"({"trusted": true, "applications": [{"pid": 400, "name": "Notification Center",
    "bundleIdentifier": "com.apple.notificationcenterui", "windows": [{"role": "AXWindow", "children": [
      {"id": "a", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": "Mail, Letter",
       "actions": ["Name:Close"], "closes": "a"}]}]}]})";
  plan.threadRefusals = {{1, 100}};
  plan.logFaults = {{1, 2, 9, false}, {3, 1, -1, false}};
  RunReport report = RunPlan(plan, folder.path());
  EXPECT_EQ(report.outcome, "success");
  EXPECT_EQ(report.refusedThreads, 1);
  EXPECT_EQ(report.logFaults, 3);
  EXPECT_TRUE(report.violations.empty());

  plan.shortAnswers = {{2, 1}};  // of the banner, its role alone
  report = RunPlan(plan, folder.path());
  EXPECT_EQ(report.outcome, "nothing");
  EXPECT_EQ(report.cutAnswers, 1);
  EXPECT_TRUE(report.violations.empty());
}

TEST(LogForms, TakeWholeRecordsOnly) {
  EXPECT_TRUE(HasLogForm("scan root=window-0 visited=3 candidates=1", false));
  EXPECT_TRUE(HasLogForm("alerts per app a\nb=2 ?=1", false));
  EXPECT_TRUE(HasLogForm("batch progress before=1 after=0 removed=-1", false));
  EXPECT_FALSE(HasLogForm("scan root=window-0 visited=3 candidates=", false));
  EXPECT_FALSE(HasLogForm("scan root=window-0 visited=3 candidates=1 ", false));
  EXPECT_FALSE(HasLogForm("hotKey none", false));
  EXPECT_TRUE(HasLogForm("hotKey none", true));
  EXPECT_FALSE(HasLogForm("", true));
}

TEST(RunApart, ReportsAMistakeInTheScene) {
  const TemporaryDirectory folder;
  Plan plan;
  plan.scene = "{";
  const std::vector<Violation> violations = RunApart(plan, folder.path());
  ASSERT_EQ(violations.size(), 1U);
  EXPECT_EQ(violations[0].check, "reads the scene");
}

TEST(Shrinker, KeepsWhatTheViolationNeeds) {
  const TemporaryDirectory folder;
  Plan plan;
  plan.callFaults = {{3, -25204}};
  plan.scene = R"({"trusted": true, "applications": [{"pid": 1}, {"pid": 2, "wings": 2}, {"pid": 3}],
    "timeline": [{"at": 1, "trust": false}]})";
  const Plan shrunk = Shrunk(plan, folder.path());
  EXPECT_TRUE(shrunk.callFaults.empty());
  EXPECT_EQ(shrunk.scene.find("timeline"), std::string::npos);
  EXPECT_LT(shrunk.scene.size(), 40U);
  EXPECT_EQ(RunApart(shrunk, folder.path()).size(), 1U);
}

TEST(Shrinker, LeavesAPlanWithoutViolation) {
  const TemporaryDirectory folder;
  Plan plan;
  plan.scene = "{}";
  EXPECT_EQ(Shrunk(plan, folder.path()).scene, "{}");
}

}  // namespace
