#include "tests/swarm/run.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <thread>
#include <variant>

#include "app/app_delegate.h"
#include "autoclose/auto_closer.h"
#include "autoclose/close_matching.h"
#include "base/paths.h"
#include "core/dismissal/dismiss_run.h"
#include "daemon/trusted_daemon.h"
#include "platform/sim/simulator.h"
#include "tests/swarm/callers.h"
#include "tests/swarm/calls.h"
#include "tests/swarm/daemon_double.h"
#include "tests/swarm/watch.h"
#include "tests/swarm/watch_application.h"

namespace {

std::int64_t threadCount() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks));
}

// A thread that was joined may be listed for a moment more.
std::int64_t threadsBeyond(std::int64_t known) {
  std::int64_t more = 0;
  for (int look = 0; look < 1000 && (more = threadCount() - known) > 0; ++look) std::this_thread::yield();
  return more;
}

int lowestFreeDescriptor() {
  const int file = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  ::close(file);
  return file;
}

class Run {
 public:
  Run(HLSimulator& simulator, Course& course, Checker& checker, const std::string& home)
      : course_(course), checker_(checker), simulator_(simulator), calls_(watcher_, home) {
    platform_.accessibility = accessibility_;
    platform_.runningApplications = applications_;
    platform_.runLoop = runLoop_;
    platform_.applicationPlatform = [this] {
      return std::variant<const HLApplicationPlatform*, std::string>(&host_.platform);
    };
    HLInstallPlatform(&platform_);
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;
  ~Run() { HLInstallPlatform(nullptr); }

  // A word for the outcome.
  std::string go() {
    switch (course_.plan.mode) {
      case Mode::dismissal:
        return dismiss();
      case Mode::application:
        return runApplication();
      case Mode::daemon:
        return serve();
      case Mode::autoClose:
        course_.exitCode = HLRunAutoCloseProbe(15, out_);
        return course_.exitCode == 0 ? "watched" : "not watched";
      case Mode::closeMatching:
        course_.exitCode = HLCloseMatchingAlerts("l", out_);
        return course_.exitCode == 0 ? "matched" : "not matched";
    }
    return "";
  }

 private:
  std::string dismiss() {
    const HLDismissResult result = HLDismissNotificationsNow();
    course_.dismissalEnds(result, watcher_.now());
    return std::string(HLStatusString(result.status));
  }

  std::string runApplication() {
    std::optional<DaemonDouble> daemon;
    if (!course_.plan.daemonReplies.empty()) {
      HLEnsureStateDirectory();
      daemon.emplace(*HLLocalSocketPath(), course_.plan.daemonReplies);
      course_.daemonAnswer = [&daemon] { return daemon->nextAnswer(); };
    }
    course_.exitCode = HLRunApplication(out_);
    course_.daemonAnswer = nullptr;
    checker_.check(When::idle, course_);
    return course_.exitCode == 0 ? "ran" : "named what was not there";
  }

  std::string serve() {
    std::vector<CallerOutcome> outcomes;
    std::thread callers(
        [this, &outcomes, path = *HLLocalSocketPath()] { outcomes = CallDaemon(course_.plan.callers, path); });
    course_.exitCode = HLRunTrustedDaemon();
    callers.join();
    course_.dismissalEndsUnseen();
    std::size_t next = 0;
    for (CallerOutcome& outcome : outcomes) {
      if (outcome.wanted != "dismiss") continue;
      outcome.wanted = next < course_.replies.size() ? course_.replies[next] : "an answer";
      if (outcome.wanted.empty()) outcome.wanted = outcome.received.substr(0, outcome.received.find('\n'));
      ++next;
    }
    course_.callers = std::move(outcomes);
    return "served";
  }

  Course& course_;
  Checker& checker_;
  HLSimulator& simulator_;
  std::ostringstream out_;
  const HLPlatform& inner_ = simulator_.platform();
  Watcher watcher_{course_, checker_, inner_.runLoop, inner_.runLoop->now() - simulator_.elapsed()};
  CallWatch calls_;
  WatchedAccessibility accessibility_{inner_.accessibility, watcher_};
  WatchedApplications applications_{inner_.runningApplications, watcher_};
  WatchedRunLoop runLoop_{inner_.runLoop, watcher_};
  WatchedHost host_{*std::get<const HLApplicationPlatform*>(inner_.applicationPlatform()), watcher_};
  HLPlatform platform_ = inner_;
};

}  // namespace

RunReport RunPlan(const Plan& plan, const std::string& home) {
  // A sanitizer starts a thread of its own beside the first one of a process.
  static const bool hasHadThreads = (std::thread([] {}).join(), true);
  const std::int64_t threads = hasHadThreads ? threadCount() : 0;
  const int descriptor = lowestFreeDescriptor();
  Course course(plan);
  Checker checker;
  RunReport report;
  {
    HLSimulatorSetup setup;
    setup.arguments = plan.arguments;
    setup.environment = {{"HOME", home}};
    setup.refusesThreads = [&course] { return course.refusesThread(); };
    auto made = HLMakeSimulator(plan.scene, "scene", std::move(setup));
    if (const auto* mistake = std::get_if<std::string>(&made)) {
      report.violations = {{"reads the scene", *mistake}};
      return report;
    }
    auto& simulator = std::get<std::unique_ptr<HLSimulator>>(made);
    Run run(*simulator, course, checker, home);
    report.outcome = run.go();
    report.seconds = simulator->elapsed();
    simulator = nullptr;  // while what watches it is there to see the rest go
  }
  course.threadsLeft = threadsBeyond(threads);
  course.descriptorsLeft = lowestFreeDescriptor() - descriptor;
  checker.check(When::end, course);
  report.violations = checker.violations();
  report.presses = course.presses;
  report.callFaults = course.callFaults;
  report.cutAnswers = course.cutAnswers;
  report.refusedThreads = course.refusedThreads;
  report.logFaults = course.logFaults;
  return report;
}
