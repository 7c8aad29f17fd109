#include "core/dismissal/dismiss_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "platform/accessibility.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"
#include "tests/support/descriptions.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"
#include "tests/support/spies.h"

namespace {

using Lines = std::vector<std::string>;
using Counts = std::vector<std::int64_t>;
using Signals = std::vector<SpyRunningApplications::Signal>;

constexpr int kSigkill = 9;
constexpr int kSigterm = 15;

// So many alerts of one application, each of which its own action takes away.
std::string alerts(int count, std::string_view app, std::string_view prefix) {
  return R"({"repeat": )" + std::to_string(count) + R"(, "id": ")" + std::string(prefix) + R"({n}", "description": ")" +
         std::string(app) + R"(, {n}", "actions": ["Name:Close"], "closes": ")" + std::string(prefix) + R"({n}"})";
}

// Notification Center, in the form in which a scene starts it.
std::string notificationCenter(int pid, std::string_view windows, std::string_view further = "") {
  return R"({"pid": )" + std::to_string(pid) +
         R"(, "bundleIdentifier": "com.apple.notificationcenterui", "windows": [)" + std::string(windows) + "]" +
         std::string(further) + "}";
}

std::string relaunch(double after, const std::string& application) {
  return R"(, "relaunch": {"after": )" + std::to_string(after) + R"(, "application": )" + application + "}";
}

std::string scene(std::string_view applications, std::string_view further = "") {
  return R"({"applications": [)" + std::string(applications) + "]" + std::string(further) + "}";
}

// One call of the engine on a desktop, watched.
struct Dismissal {
  explicit Dismissal(std::string_view sceneText) : desktop(sceneText), spied(desktop.platform()) {
    HLSetProgressHandler([this](std::int64_t count) { counts.push_back(count); });
    result = HLDismissNotificationsNow();
    HLSetProgressHandler(nullptr);
    log = desktop.diagnostics();
    preflight = "dismiss preflight trusted=true " + LaunchContextWithoutParent();
  }

  // The lines about a drain.
  [[nodiscard]] Lines drainLog() const {
    Lines lines;
    std::copy_if(log.begin(), log.end(), std::back_inserter(lines),
                 [](const std::string& line) { return line.rfind("overflow", 0) == 0; });
    return lines;
  }

  SimulatedDesktop desktop;
  SpiedPlatform spied;
  HLDismissResult result;
  Counts counts;
  Lines log;
  std::string preflight;
};

TEST(DismissRun, ChecksTrustFirst) {
  const Dismissal run(scene(notificationCenter(400, alerts(1, "Mail", "a")), R"(, "trusted": false)"));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusAccessDenied, 0, 0}));
  EXPECT_EQ(run.spied.runningApplications.listings, 0);
  EXPECT_EQ(run.log, Lines{"dismiss preflight trusted=false " + LaunchContextWithoutParent()});
  EXPECT_EQ(run.counts, Counts{});
}

TEST(DismissRun, NeverAsksTheUserForTrust) {
  const Dismissal run(scene("", R"(, "trusted": false, "services": {"grantOnPrompt": true})"));
  HLCurrentPlatform().runLoop->runFor(1);
  EXPECT_FALSE(HLCurrentPlatform().accessibility->isProcessTrusted(false));
}

TEST(DismissRun, ReportsAMissingNotificationCenter) {
  const Dismissal run(scene(R"({"pid": 300, "bundleIdentifier": "com.apple.mail"})"));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusNotificationCenterUnavailable, 0, 0}));
  EXPECT_EQ(run.log, Lines{run.preflight});
}

TEST(DismissRun, FailsWithoutARootElement) {
  const Dismissal run(scene(notificationCenter(400, "", R"(, "elementFails": true)")));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 0, 0}));
  EXPECT_EQ(run.log, (Lines{run.preflight, "notification center pid=400 bundle=com.apple.notificationcenterui"}));
}

TEST(DismissRun, NamesTheParentInItsPreflight) {
  const Dismissal run(
      scene(R"({"pid": 77, "bundleIdentifier": "com.apple.Terminal", "name": "Terminal"})", R"(, "parent": 77)"));
  const std::string& line = run.log.at(0);
  EXPECT_EQ(line.substr(line.find(" ppid=")), " ppid=77 parentBundle=com.apple.Terminal parentName=Terminal");
}

TEST(DismissRun, ReportsNothingOnAnEmptyScreen) {
  const Dismissal run(scene(notificationCenter(400, "{}")));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusNothing, 0, 0}));
  EXPECT_EQ(run.log, (Lines{run.preflight, "notification center pid=400 bundle=com.apple.notificationcenterui",
                            "scan root=window-0 visited=1 candidates=0"}));
  EXPECT_TRUE(run.spied.runningApplications.signals.empty());
}

TEST(DismissRun, ReturnsWhatTheAttemptsCameTo) {
  const Dismissal run(scene(notificationCenter(400, alerts(3, "Mail", "a"))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 3, 0}));
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 80'000);
}

TEST(OverflowDrain, NeedsTwentyAlertsOfOneApplication) {
  const Dismissal nineteen(scene(notificationCenter(400, alerts(19, "Mail", "a") + ", " + alerts(19, "Chat", "b"))));
  EXPECT_EQ(nineteen.result, (HLDismissResult{HLDismissStatusSuccess, 38, 0}));
  EXPECT_EQ(nineteen.spied.runningApplications.signals, Signals{});

  const Dismissal twenty(
      scene(notificationCenter(400, alerts(20, "Mail", "a"), relaunch(0.25, notificationCenter(500, "")))));
  EXPECT_EQ(twenty.spied.runningApplications.signals, (Signals{{400, kSigterm}}));
  EXPECT_EQ(twenty.drainLog(), Lines{"overflow drain=0 newPid=500 presented=0"});
}

TEST(OverflowDrain, KeepsTheFirstResultWithoutTargets) {
  const Dismissal run(
      scene(notificationCenter(400, alerts(20, "Mail", "a"), relaunch(0.25, notificationCenter(500, "{}")))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 20, 0}));
  // 0.08 of the batch, three polls for the process, two for the alerts.
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 80'000 + 300'000 + 600'000);
  const Lines end(run.log.end() - 3, run.log.end());
  EXPECT_EQ(end, (Lines{"scan root=window-0 visited=1 candidates=0", "scan root=window-0 visited=1 candidates=0",
                        "overflow drain=0 newPid=500 presented=0"}))
      << "no attempt is made";
}

TEST(OverflowDrain, AddsWhatItDismissed) {
  const Dismissal run(scene(notificationCenter(400, alerts(20, "Mail", "a"),
                                               relaunch(0.25, notificationCenter(500, alerts(3, "Mail", "b"))))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 23, 0}));
  EXPECT_EQ(run.drainLog(), Lines{"overflow drain=0 newPid=500 presented=3"});
  const std::size_t firstReports = 1 + 20;
  EXPECT_EQ(Counts(run.counts.begin() + firstReports, run.counts.end()), (Counts{3, 3, 3, 2, 1, 0}));
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 80'000 + 300'000 + 600'000 + 80'000);
}

TEST(OverflowDrain, ReplacesTheRemainder) {
  // The first run gives up after 64 attempts, as a success with one alert left.
  const std::string window =
      R"({"id": "window", "children": [)" + alerts(19, "Mail", "a") + ", " + ChainOfControls(66, "Mail") + "]}";
  const Dismissal run(scene(notificationCenter(400, window, relaunch(0.25, notificationCenter(500, "")))));
  EXPECT_EQ(run.drainLog(), Lines{"overflow drain=0 newPid=500 presented=0"});
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 83, 0}));
  const Dismissal stuck(scene(notificationCenter(
      400, window,
      relaunch(0.25, notificationCenter(500, R"({"repeat": 2, "title": "s{n}", "actions": ["Close"]})")))));
  EXPECT_EQ(stuck.result, (HLDismissResult{HLDismissStatusFailed, 83, 2}));
}

TEST(OverflowDrain, AddsItsCountWhenItFails) {
  const Dismissal run(scene(notificationCenter(
      400, alerts(20, "Mail", "a"),
      relaunch(0.25,
               notificationCenter(500, alerts(3, "Mail", "b") +
                                           R"(, {"repeat": 2, "title": "stuck{n}", "actions": ["Name:Close"]})")))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 23, 2}));
  EXPECT_EQ(run.drainLog(), Lines{"overflow drain=0 newPid=500 presented=5"});
}

TEST(OverflowDrain, HappensOnce) {
  const Dismissal run(scene(notificationCenter(
      400, alerts(20, "Mail", "a"),
      relaunch(0.25, notificationCenter(500, alerts(25, "Mail", "b"), relaunch(0.25, notificationCenter(600, "")))))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 45, 0}));
  EXPECT_EQ(run.spied.runningApplications.signals, (Signals{{400, kSigterm}}));
}

TEST(OverflowDrain, DoesNotFollowAFailedRun) {
  const Dismissal run(
      scene(notificationCenter(400, R"({"repeat": 25, "description": "Mail, {n}", "actions": ["Name:Close"]})")));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusFailed, 0, 25}));
  EXPECT_EQ(run.spied.runningApplications.signals, Signals{});
  EXPECT_EQ(run.drainLog(), Lines{});
}

TEST(OverflowDrain, KeepsTheFirstResultWithoutSuccessor) {
  const Dismissal run(scene(notificationCenter(400, alerts(20, "Mail", "a"))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 20, 0}));
  EXPECT_EQ(run.log.back(), "overflow drain restart failed drain=0");
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 80'000 + 5'000'000);
}

TEST(OverflowDrain, AcceptsAnyPositivePid) {
  const Dismissal run(
      scene(notificationCenter(400, alerts(20, "Mail", "a"), relaunch(0.25, notificationCenter(1, "")))));
  EXPECT_EQ(run.drainLog(), Lines{"overflow drain=0 newPid=1 presented=0"});
}

TEST(OverflowDrain, KeepsTheFirstResultWithoutRoot) {
  const Dismissal run(scene(notificationCenter(
      400, alerts(20, "Mail", "a"), relaunch(0.25, notificationCenter(500, "", R"(, "elementFails": true)")))));
  EXPECT_EQ(run.result, (HLDismissResult{HLDismissStatusSuccess, 20, 0}));
  EXPECT_EQ(run.drainLog(), Lines{});
  EXPECT_EQ(run.log.back(), "batch progress before=20 after=0 removed=20");
  EXPECT_EQ(run.desktop.elapsedMicroseconds(), 80'000 + 300'000);
}

// The restart of a Notification Center with the process identifier 400.
struct Restart {
  explicit Restart(std::string_view applications, bool refuses = false)
      : desktop(scene(applications)), spied(desktop.platform()) {
    spied.runningApplications.refuses = refuses;
    successor = HLRestartNotificationCenter(400);
  }

  SimulatedDesktop desktop;
  SpiedPlatform spied;
  std::int32_t successor = -1;
};

TEST(RestartNotificationCenter, PollsEveryTenthOfASecond) {
  const Restart restart(notificationCenter(400, "", relaunch(0.25, notificationCenter(500, ""))));
  EXPECT_EQ(restart.successor, 500);
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 300'000);
  EXPECT_EQ(restart.spied.runLoop.sleeps, (std::vector<double>{0.1, 0.1, 0.1}));
  EXPECT_EQ(restart.spied.runningApplications.signals, (Signals{{400, kSigterm}}));
}

TEST(RestartNotificationCenter, SleepsBeforeTheFirstLook) {
  const Restart restart(notificationCenter(400, "") + ", " + notificationCenter(500, ""));
  EXPECT_EQ(restart.successor, 500);
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 100'000);
}

TEST(RestartNotificationCenter, KillsAfterTheTwentySixthPoll) {
  const Restart restart(
      notificationCenter(400, "", R"(, "ignoresTerminate": true)" + relaunch(0.05, notificationCenter(500, ""))));
  EXPECT_EQ(restart.successor, 500);
  EXPECT_EQ(restart.spied.runningApplications.signals, (Signals{{400, kSigterm}, {400, kSigkill}}));
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 2'700'000) << "killed at 2.6, back at 2.65, seen at 2.7";
}

TEST(RestartNotificationCenter, SparesTheKillUntilPoll25) {
  const Restart restart(notificationCenter(400, "", relaunch(2.5, notificationCenter(500, ""))));
  EXPECT_EQ(restart.successor, 500);
  EXPECT_EQ(restart.spied.runningApplications.signals, (Signals{{400, kSigterm}}));
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 2'500'000);
}

TEST(RestartNotificationCenter, KillsBeforePoll26) {
  const Restart restart(notificationCenter(400, "", relaunch(2.6, notificationCenter(500, ""))));
  EXPECT_EQ(restart.successor, 500);
  EXPECT_EQ(restart.spied.runningApplications.signals, (Signals{{400, kSigterm}, {400, kSigkill}}));
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 2'600'000);
}

TEST(RestartNotificationCenter, LooksFiftyTimes) {
  const Restart last(notificationCenter(400, "", relaunch(5, notificationCenter(500, ""))));
  EXPECT_EQ(last.successor, 500);
  EXPECT_EQ(last.desktop.elapsedMicroseconds(), 5'000'000);
  const Restart late(notificationCenter(400, "", relaunch(5.000001, notificationCenter(500, ""))));
  EXPECT_EQ(late.successor, 0);
  EXPECT_EQ(late.spied.runLoop.sleeps, std::vector<double>(50, 0.1));
}

TEST(RestartNotificationCenter, ReturnsZeroWithoutSuccessor) {
  const Restart restart(notificationCenter(400, "", R"(, "ignoresTerminate": true)"));
  EXPECT_EQ(restart.successor, 0);
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 5'000'000);
}

TEST(RestartNotificationCenter, IgnoresTheOldProcess) {
  const Restart restart(notificationCenter(400, "", R"(, "lingers": 10)" + relaunch(1, notificationCenter(500, ""))));
  EXPECT_EQ(restart.successor, 500);
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 1'000'000);
}

TEST(RestartNotificationCenter, IgnoresEndedProcesses) {
  const Restart restart(notificationCenter(400, "") + ", " + notificationCenter(410, "", R"(, "terminated": true)") +
                        ", " + notificationCenter(420, "") + ", " + notificationCenter(430, ""));
  EXPECT_EQ(restart.successor, 420) << "the first that lives";
}

TEST(RestartNotificationCenter, IgnoresOtherApplications) {
  const Restart restart(notificationCenter(400, "") +
                        R"(, {"pid": 300, "bundleIdentifier": "com.apple.mail"}, {"pid": 310})");
  EXPECT_EQ(restart.successor, 0);
}

TEST(RestartNotificationCenter, ReturnsWhenTheHostRefuses) {
  const Restart restart(notificationCenter(400, "") + ", " + notificationCenter(500, ""), true);
  EXPECT_EQ(restart.successor, 0);
  EXPECT_EQ(restart.desktop.elapsedMicroseconds(), 0);
  EXPECT_EQ(restart.spied.runningApplications.signals, (Signals{{400, kSigterm}}));
}

// Waiting while alerts come at these moments, one each.
struct Representation {
  explicit Representation(const std::vector<double>& moments, int atFirst = 0)
      : desktop(sceneOf(moments, atFirst)), spied(desktop.platform()) {
    HLSetProgressHandler([this](std::int64_t count) { counts.push_back(count); });
    presented = HLWaitForRepresentedAlerts(*desktop.application(400));
    HLSetProgressHandler(nullptr);
  }

  static std::string sceneOf(const std::vector<double>& moments, int atFirst) {
    std::string timeline;
    for (std::size_t i = 0; i < moments.size(); ++i) {
      timeline += (i == 0 ? "" : ", ") + (R"({"at": )" + std::to_string(moments[i])) + R"(, "add": {"title": "late )" +
                  std::to_string(i) + R"(", "actions": ["Close"]}, "to": "window"})";
    }
    std::string windows = R"({"id": "window", "children": [)";
    for (int i = 0; i < atFirst; ++i) {
      windows += (i == 0 ? "" : ", ") + (R"({"title": "first )" + std::to_string(i)) + R"(", "actions": ["Close"]})";
    }
    return scene(notificationCenter(400, windows + "]}"), R"(, "timeline": [)" + timeline + "]");
  }

  SimulatedDesktop desktop;
  SpiedPlatform spied;
  std::int64_t presented = -1;
  Counts counts;
};

TEST(WaitForRepresentedAlerts, ReturnsAfterTwoEqualPolls) {
  const Representation wait({}, 4);
  EXPECT_EQ(wait.presented, 4);
  EXPECT_EQ(wait.counts, (Counts{4, 4}));
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 600'000);
  EXPECT_EQ(wait.spied.runLoop.sleeps, (std::vector<double>{0.3, 0.3}));
}

TEST(WaitForRepresentedAlerts, ReturnsZeroAfterTwoEmptyPolls) {
  const Representation wait({}, 0);
  EXPECT_EQ(wait.presented, 0);
  EXPECT_EQ(wait.counts, (Counts{0, 0}));
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 600'000);
}

TEST(WaitForRepresentedAlerts, WaitsWhileMoreCome) {
  const Representation wait({0.2, 0.5, 0.8}, 0);
  EXPECT_EQ(wait.presented, 3);
  EXPECT_EQ(wait.counts, (Counts{1, 2, 3, 3}));
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 1'200'000);
}

TEST(WaitForRepresentedAlerts, GivesUpAfterSixteenPolls) {
  std::vector<double> moments;
  for (int poll = 0; poll < 20; ++poll) moments.push_back(0.1 + 0.3 * poll);
  const Representation wait(moments);
  EXPECT_EQ(wait.presented, 16);
  EXPECT_EQ(wait.counts, (Counts{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}));
  EXPECT_EQ(wait.desktop.elapsedMicroseconds(), 4'800'000);
}

}  // namespace
