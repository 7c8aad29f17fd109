// Platform interfaces that note what is asked of them, and ask the ones behind them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"

class SpyRunLoop : public HLRunLoop {
 public:
  struct Queue {
    std::string name;
    HLQualityOfService quality;
    int maxConcurrentOperations;
    bool operator==(const Queue&) const = default;
  };

  explicit SpyRunLoop(HLRunLoop& inner) : inner_(inner) {}

  std::vector<Queue> queues;       // in the order in which they were made
  std::vector<double> sleeps;      // of the main thread; tests with sleeping workers do not look at them
  std::optional<double> fixedNow;  // the time that it tells instead of the real one

  [[nodiscard]] double now() override { return fixedNow ? *fixedNow : inner_.now(); }
  void sleep(double seconds) override {
    sleeps.push_back(seconds);
    inner_.sleep(seconds);
  }
  void runFor(double seconds) override { inner_.runFor(seconds); }
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override {
    queues.push_back({name, quality, maxConcurrentOperations});
    return inner_.makeOperationQueue(name, quality, maxConcurrentOperations);
  }
  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override { return inner_.makeSemaphore(); }
  void postToMainQueue(std::function<void()> step) override { inner_.postToMainQueue(std::move(step)); }
  void postToMainQueueAfter(double seconds, std::function<void()> step) override {
    inner_.postToMainQueueAfter(seconds, std::move(step));
  }
  void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work) override {
    inner_.postToGlobalQueue(quality, std::move(work));
  }
  [[nodiscard]] std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) override {
    return inner_.scheduleTimer(interval, std::move(action));
  }

 private:
  HLRunLoop& inner_;
};

class SpyRunningApplications : public HLRunningApplications {
 public:
  using Signal = std::pair<std::int32_t, int>;

  explicit SpyRunningApplications(HLRunningApplications& inner) : inner_(inner) {}

  std::vector<Signal> signals;
  int listings = 0;
  bool refuses = false;  // then no signal goes through

  [[nodiscard]] std::vector<HLRunningApplication> list() override {
    ++listings;
    return inner_.list();
  }
  [[nodiscard]] std::optional<HLRunningApplication> find(std::int32_t pid) override { return inner_.find(pid); }
  void observeLaunches(std::function<void(const HLRunningApplication&)> observer) override {
    inner_.observeLaunches(std::move(observer));
  }
  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override {
    signals.emplace_back(pid, signal);
    return refuses ? HLSignalOutcome::refused : inner_.sendSignal(pid, signal);
  }

 private:
  HLRunningApplications& inner_;
};

// Installs the platform with both spies in it, until it goes away. Made after a desktop and gone before it.
class SpiedPlatform {
 public:
  explicit SpiedPlatform(const HLPlatform& inner)
      : runLoop(inner.runLoop),
        runningApplications(inner.runningApplications),
        inner_(inner),
        platform_{inner.accessibility,     runningApplications,      runLoop, inner.process, inner.propertyLists,
                  inner.userNotifications, inner.applicationPlatform} {
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
