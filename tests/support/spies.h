// Platform interfaces that record calls and forward them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "tests/support/forwarding.h"

class SpyRunLoop : public ForwardingRunLoop {
 public:
  struct Queue {
    std::string name;
    HLQualityOfService quality;
    int maxConcurrentOperations;
    bool operator==(const Queue&) const = default;
  };

  using ForwardingRunLoop::ForwardingRunLoop;

  std::vector<Queue> queues;       // in creation order
  std::vector<double> sleeps;      // of the main thread; not thread-safe
  std::optional<double> fixedNow;  // returned by now() instead of the real time

  [[nodiscard]] double now() override { return fixedNow ? *fixedNow : ForwardingRunLoop::now(); }
  void sleep(double seconds) override {
    sleeps.push_back(seconds);
    ForwardingRunLoop::sleep(seconds);
  }
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override {
    queues.push_back({name, quality, maxConcurrentOperations});
    return ForwardingRunLoop::makeOperationQueue(name, quality, maxConcurrentOperations);
  }
};

class SpyRunningApplications : public ForwardingRunningApplications {
 public:
  using Signal = std::pair<std::int32_t, int>;

  using ForwardingRunningApplications::ForwardingRunningApplications;

  std::vector<Signal> signals;
  int listings = 0;
  bool refuses = false;  // sendSignal() forwards nothing and returns refused

  [[nodiscard]] std::vector<HLRunningApplication> list() override {
    ++listings;
    return ForwardingRunningApplications::list();
  }
  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override {
    signals.emplace_back(pid, signal);
    return refuses ? HLSignalOutcome::refused : ForwardingRunningApplications::sendSignal(pid, signal);
  }
};

// Installs a copy of the platform with both spies. Destruction installs the original again.
class SpiedPlatform {
 public:
  explicit SpiedPlatform(const HLPlatform& inner)
      : runLoop(inner.runLoop), runningApplications(inner.runningApplications), inner_(inner), platform_(inner) {
    platform_.runLoop = runLoop;
    platform_.runningApplications = runningApplications;
    HLInstallPlatform(&platform_);
  }
  SpiedPlatform(const SpiedPlatform&) = delete;
  SpiedPlatform& operator=(const SpiedPlatform&) = delete;
  ~SpiedPlatform() { HLInstallPlatform(&inner_); }

  SpyRunLoop runLoop;
  SpyRunningApplications runningApplications;

 private:
  const HLPlatform& inner_;
  HLPlatform platform_;
};
