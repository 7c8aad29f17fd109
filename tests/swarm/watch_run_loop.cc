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

std::unique_ptr<HLTimer> WatchedRunLoop::scheduleTimer(double interval, std::function<void()> action) {
  return std::make_unique<Counted<HLTimer>>(
      ForwardingRunLoop::scheduleTimer(interval, Checked(watcher_, std::move(action))), watcher_.course, "timers");
}

HLSignalOutcome WatchedApplications::sendSignal(std::int32_t pid, int signal) {
  watcher_.course.signalled(pid, signal);
  watcher_.checker.check(When::signal, watcher_.course);
  return ForwardingRunningApplications::sendSignal(pid, signal);
}
