// A platform that notes what the program asks of the one behind it, and fails where the plan says.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "tests/support/forwarding.h"
#include "tests/swarm/check/checks.h"
#include "tests/swarm/check/course.h"

// What all watched interfaces share.
struct Watcher {
  Course& course;
  Checker& checker;
  HLRunLoop& innerLoop;
  double start = 0;  // of the wall clock
  std::int64_t calls = 0;
  std::int64_t readings = 0;       // of the clock
  std::int64_t wholeReadings = 0;  // of elements

  // The code that this call is to give; success lets it pass.
  [[nodiscard]] HLAXError fault();
  // How many of HLFactAttributeNames this reading of an element is to give.
  [[nodiscard]] std::size_t attributesGiven();
  // Seconds from the start, by the scene's own clock.
  double now() { return course.now = innerLoop.now() - start; }
};

class WatchedAccessibility : public ForwardingAccessibility {
 public:
  WatchedAccessibility(HLAccessibility& inner, Watcher& watcher) : ForwardingAccessibility(inner), watcher_(watcher) {}

  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;

  [[nodiscard]] HLElementRef wrapped(const HLElementRef& element);
  [[nodiscard]] HLValue wrapped(const HLValue& value);
  [[nodiscard]] Seen* seenBehind(const HLElementRef& wrapper);
  [[nodiscard]] Watcher& watcher() { return watcher_; }

 private:
  struct Known {
    std::weak_ptr<HLElement> wrapper;
    Seen* seen = nullptr;
  };

  Watcher& watcher_;
  std::vector<std::unique_ptr<Seen>> seen_;  // keeps the inner handles, so that no address is used twice
  std::unordered_map<const HLElement*, Known> known_;
};

class WatchedRunLoop : public ForwardingRunLoop {
 public:
  WatchedRunLoop(HLRunLoop& inner, Watcher& watcher) : ForwardingRunLoop(inner), watcher_(watcher) {}

  [[nodiscard]] double now() override;
  void postToMainQueue(std::function<void()> step) override;
  void postToMainQueueAfter(double seconds, std::function<void()> step) override;
  void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                         std::function<void()> refused) override;
  [[nodiscard]] std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) override;
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override;

 private:
  Watcher& watcher_;
};

class WatchedApplications : public ForwardingRunningApplications {
 public:
  WatchedApplications(HLRunningApplications& inner, Watcher& watcher)
      : ForwardingRunningApplications(inner), watcher_(watcher) {}

  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override;

 private:
  Watcher& watcher_;
};

// Counts what is alive of a kind.
template <class Interface>
class Counted : public Interface {
 public:
  Counted(std::unique_ptr<Interface> inner, Course& course, const char* kind)
      : inner_(std::move(inner)), alive_(course.alive[kind]) {
    ++alive_;
  }
  ~Counted() override { --alive_; }

 private:
  std::unique_ptr<Interface> inner_;
  std::int64_t& alive_;
};

// What the user or the host sets off, with a check behind it.
template <class... Args>
std::function<void(Args...)> Checked(Watcher& watcher, std::function<void(Args...)> action) {
  if (!action) return action;
  return [&watcher, action = std::move(action)](Args... args) {
    action(args...);
    watcher.checker.check(When::step, watcher.course);
  };
}
