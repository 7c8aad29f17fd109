#include <thread>
#include <utility>

#include "tests/swarm/watch.h"

double WatchedRunLoop::now() {
  ++watcher_.readings;
  double now = ForwardingRunLoop::now();
  for (const ClockJump& jump : watcher_.course.plan.clockJumps) {
    if (watcher_.readings >= jump.reading) now += jump.seconds;
  }
  return now;
}

void WatchedRunLoop::postToMainQueue(std::function<void()> step) {
  ForwardingRunLoop::postToMainQueue(Checked(watcher_, std::move(step)));
}

void WatchedRunLoop::postToMainQueueAfter(double seconds, std::function<void()> step) {
  ForwardingRunLoop::postToMainQueueAfter(seconds, Checked(watcher_, std::move(step)));
}

void WatchedRunLoop::postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                                       std::function<void()> refused) {
  const double posted = watcher_.now();
  const double pressedBefore = watcher_.course.otherPressSeconds;
  const auto begins = [this, posted, pressedBefore, poster = std::this_thread::get_id()](bool isRefused) {
    Course& course = watcher_.course;
    course.work = {isRefused, std::this_thread::get_id() == poster, watcher_.now() - posted,
                   course.otherPressSeconds - pressedBefore};
    course.workIsRefused = isRefused;
    watcher_.checker.check(When::work, course);
  };
  ForwardingRunLoop::postToGlobalQueue(
      quality,
      [begins, work = std::move(work)] {
        begins(false);
        work();
      },
      Checked(watcher_, std::function<void()>([begins, refused = std::move(refused)] {
                begins(true);
                refused();
              })));
}

std::unique_ptr<HLTimer> WatchedRunLoop::scheduleTimer(double interval, std::function<void()> action) {
  return std::make_unique<Counted<HLTimer>>(
      ForwardingRunLoop::scheduleTimer(interval, Checked(watcher_, std::move(action))), watcher_.course, "timers");
}

HLSignalOutcome WatchedApplications::sendSignal(std::int32_t pid, int signal) {
  watcher_.course.signalled(pid, signal);
  watcher_.checker.check(When::signal, watcher_.course);
  return ForwardingRunningApplications::sendSignal(pid, signal);
}
