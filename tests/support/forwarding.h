// One forwarding wrapper for each interface that every mode uses. Spies and fault injectors derive from them and
// override only the calls that they change.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/accessibility.h"
#include "platform/process_info.h"
#include "platform/property_lists.h"
#include "platform/run_loop.h"
#include "platform/running_applications.h"
#include "platform/user_notifications.h"

// Elements that it returns are those of the inner element, not wrapped.
class ForwardingElement : public HLElement {
 public:
  explicit ForwardingElement(HLElementRef inner) : inner_(std::move(inner)) {}

  [[nodiscard]] const HLElementRef& inner() const { return inner_; }

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override {
    return inner_->copyAttributeValue(name);
  }
  [[nodiscard]] HLElementFacts copyFacts() const override { return inner_->copyFacts(); }
  [[nodiscard]] HLActionList copyActionNames() const override { return inner_->copyActionNames(); }
  [[nodiscard]] HLAXError performAction(std::string_view action) const override {
    return inner_->performAction(action);
  }
  // Wrappers of equal elements are equal, and a wrapper is equal to what it wraps.
  [[nodiscard]] bool isEqual(const HLElement& other) const override {
    const auto* wrapper = dynamic_cast<const ForwardingElement*>(&other);
    return inner_->isEqual(wrapper == nullptr ? other : *wrapper->inner_);
  }
  [[nodiscard]] std::size_t hash() const override { return inner_->hash(); }

 private:
  const HLElementRef inner_;
};

class ForwardingObserver : public HLObserver {
 public:
  explicit ForwardingObserver(std::unique_ptr<HLObserver> inner) : inner_(std::move(inner)) {}

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override {
    return inner_->addNotification(element, notification);
  }
  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override {
    return inner_->removeNotification(element, notification);
  }
  void attach() override { inner_->attach(); }
  void detach() override { inner_->detach(); }

 private:
  const std::unique_ptr<HLObserver> inner_;
};

class ForwardingAccessibility : public HLAccessibility {
 public:
  explicit ForwardingAccessibility(HLAccessibility& inner) : inner_(inner) {}

  [[nodiscard]] bool isProcessTrusted(bool prompt) override { return inner_.isProcessTrusted(prompt); }
  [[nodiscard]] HLElementRef createApplication(std::int32_t pid) override { return inner_.createApplication(pid); }
  [[nodiscard]] std::unique_ptr<HLObserver> createObserver(std::int32_t pid, HLObserverCallback callback) override {
    return inner_.createObserver(pid, std::move(callback));
  }
  void prepareToStay() override { inner_.prepareToStay(); }

 private:
  HLAccessibility& inner_;
};

class ForwardingRunLoop : public HLRunLoop {
 public:
  explicit ForwardingRunLoop(HLRunLoop& inner) : inner_(inner) {}

  [[nodiscard]] double now() override { return inner_.now(); }
  void sleep(double seconds) override { inner_.sleep(seconds); }
  void runFor(double seconds) override { inner_.runFor(seconds); }
  void postToMainQueue(std::function<void()> step) override { inner_.postToMainQueue(std::move(step)); }
  void postToMainQueueAfter(double seconds, std::function<void()> step) override {
    inner_.postToMainQueueAfter(seconds, std::move(step));
  }
  void postToGlobalQueue(HLQualityOfService quality, std::function<void()> work,
                         std::function<void()> refused) override {
    inner_.postToGlobalQueue(quality, std::move(work), std::move(refused));
  }
  [[nodiscard]] std::unique_ptr<HLTimer> scheduleTimer(double interval, std::function<void()> action) override {
    return inner_.scheduleTimer(interval, std::move(action));
  }
  [[nodiscard]] std::unique_ptr<HLOperationQueue> makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) override {
    return inner_.makeOperationQueue(name, quality, maxConcurrentOperations);
  }
  [[nodiscard]] std::unique_ptr<HLSemaphore> makeSemaphore() override { return inner_.makeSemaphore(); }

 private:
  HLRunLoop& inner_;
};

class ForwardingRunningApplications : public HLRunningApplications {
 public:
  explicit ForwardingRunningApplications(HLRunningApplications& inner) : inner_(inner) {}

  [[nodiscard]] std::vector<HLRunningApplication> list() override { return inner_.list(); }
  [[nodiscard]] std::optional<HLRunningApplication> find(std::int32_t pid) override { return inner_.find(pid); }
  void observeLaunches(std::function<void(const HLRunningApplication&)> observer) override {
    inner_.observeLaunches(std::move(observer));
  }
  [[nodiscard]] HLSignalOutcome sendSignal(std::int32_t pid, int signal) override {
    return inner_.sendSignal(pid, signal);
  }

 private:
  HLRunningApplications& inner_;
};

class ForwardingProcessInfo : public HLProcessInfo {
 public:
  explicit ForwardingProcessInfo(HLProcessInfo& inner) : inner_(inner) {}

  [[nodiscard]] std::vector<std::string> arguments() override { return inner_.arguments(); }
  [[nodiscard]] std::optional<std::string> environment(std::string_view name) override {
    return inner_.environment(name);
  }
  [[nodiscard]] std::int32_t processIdentifier() override { return inner_.processIdentifier(); }
  [[nodiscard]] std::int32_t parentProcessIdentifier() override { return inner_.parentProcessIdentifier(); }
  [[nodiscard]] std::string homeDirectory() override { return inner_.homeDirectory(); }
  [[nodiscard]] std::optional<std::string> applicationSupportDirectory() override {
    return inner_.applicationSupportDirectory();
  }
  [[nodiscard]] std::optional<std::string> bundlePath() override { return inner_.bundlePath(); }
  [[nodiscard]] std::optional<std::string> executablePath() override { return inner_.executablePath(); }
  [[nodiscard]] std::optional<std::string> bundleIdentifier() override { return inner_.bundleIdentifier(); }
  [[nodiscard]] HLDictionary informationDictionary() override { return inner_.informationDictionary(); }

 private:
  HLProcessInfo& inner_;
};

class ForwardingPropertyLists : public HLPropertyLists {
 public:
  explicit ForwardingPropertyLists(HLPropertyLists& inner) : inner_(inner) {}

  [[nodiscard]] std::optional<HLDictionary> readDictionary(const std::string& path) override {
    return inner_.readDictionary(path);
  }

 private:
  HLPropertyLists& inner_;
};

class ForwardingUserNotifications : public HLUserNotifications {
 public:
  explicit ForwardingUserNotifications(HLUserNotifications& inner) : inner_(inner) {}

  void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) override {
    inner_.requestAuthorization(std::move(answer));
  }
  void add(const HLUserNotification& notification,
           std::function<void(std::optional<std::string> error)> answer) override {
    inner_.add(notification, std::move(answer));
  }

 private:
  HLUserNotifications& inner_;
};
