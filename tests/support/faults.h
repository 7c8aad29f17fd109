// A platform whose calls fail by plan, as calls to other processes, files and services do.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/accessibility.h"
#include "platform/platform.h"
#include "platform/threads/thread_safety.h"
#include "tests/support/forwarding.h"

// Called before each call that can fail, with the method ("HLElement::performAction") and its argument as text: the
// attribute, action, notification, pid, variable, path, key or address; "" without one. HLAXErrorSuccess lets the call
// pass. Any other code fails it: the call has no effect, and returns the code or, without codes, what the interface
// returns for a failure. A plan may also change the desktop or sleep, as a slow process does. Called from any thread,
// several at once.
using FaultPlan = std::function<HLAXError(std::string_view method, std::string_view argument)>;

// Counts the calls and fails one of them. Thread-safe.
class Faults {
 public:
  // Fails the call with that number, 1 first, with the code. 0 lets all pass.
  Faults(std::int64_t call, HLAXError code) : call_(call), code_(code) {}

  [[nodiscard]] HLAXError next() { return ++calls_ == call_ ? code_ : HLAXErrorSuccess; }
  [[nodiscard]] std::int64_t calls() const { return calls_; }
  // Refers to this object.
  [[nodiscard]] FaultPlan plan() {
    return [this](std::string_view, std::string_view) { return next(); };
  }

 private:
  const std::int64_t call_;
  const HLAXError code_;
  std::atomic<std::int64_t> calls_ = 0;
};

// Wraps every element that it hands out. While a wrapper lives, one inner handle has one wrapper. Outlives its elements
// and observers.
class FaultyAccessibility : public ForwardingAccessibility {
 public:
  FaultyAccessibility(HLAccessibility& inner, FaultPlan plan)
      : ForwardingAccessibility(inner), plan_(std::move(plan)) {}

  // A failure reads as not trusted.
  [[nodiscard]] bool isProcessTrusted(bool prompt) override;
  // A failure is nullptr.
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override;
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override;

  [[nodiscard]] HLElementRef wrapped(const HLElementRef& element);
  [[nodiscard]] HLValue wrapped(const HLValue& value);
  [[nodiscard]] HLAXError fault(std::string_view method, std::string_view argument) { return plan_(method, argument); }

 private:
  const FaultPlan plan_;
  HLMutex mutex_;
  std::map<const HLElement*, std::weak_ptr<HLElement>> wrappers_ HL_GUARDED_BY(mutex_);
};

// A copy of a platform in which everything that can fail does so by plan: accessibility, running applications, the
// process's information, property lists, user notifications, and of the application's interfaces hot keys, login item,
// preferences, HTTP and workspace. The run loop stays as it is. Replace members of platform() to add further doubles.
class FaultyPlatform {
 public:
  FaultyPlatform(const HLPlatform& inner, const FaultPlan& plan);
  ~FaultyPlatform();
  FaultyPlatform(const FaultyPlatform&) = delete;
  FaultyPlatform& operator=(const FaultyPlatform&) = delete;

  [[nodiscard]] HLPlatform& platform() { return platform_; }

 private:
  struct Services;
  struct ApplicationServices;

  std::unique_ptr<Services> services_;
  std::unique_ptr<ApplicationServices> applicationServices_;  // once they have been asked for
  HLPlatform platform_;
};
