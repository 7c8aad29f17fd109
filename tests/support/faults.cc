#include "tests/support/faults.h"

#include <utility>
#include <variant>
#include <vector>

#include "platform/application/application_platform.h"
#include "tests/support/application_forwarding.h"

namespace {

class FaultyElement : public ForwardingElement {
 public:
  FaultyElement(FaultyAccessibility& accessibility, HLElementRef inner)
      : ForwardingElement(std::move(inner)), accessibility_(accessibility) {}

  HLAttribute copyAttributeValue(std::string_view name) const override {
    const HLAXError fault = accessibility_.fault("HLElement::copyAttributeValue", name);
    if (fault != HLAXErrorSuccess) return {fault, {}};
    const HLAttribute attribute = ForwardingElement::copyAttributeValue(name);
    return {attribute.error, accessibility_.wrapped(attribute.value)};
  }
  // By name, so that each read can fail by itself.
  HLElementFacts copyFacts() const override { return HLElement::copyFacts(); }
  HLActionList copyActionNames() const override {
    const HLAXError fault = accessibility_.fault("HLElement::copyActionNames", "");
    return fault != HLAXErrorSuccess ? HLActionList{fault, {}} : ForwardingElement::copyActionNames();
  }
  HLAXError performAction(std::string_view action) const override {
    const HLAXError fault = accessibility_.fault("HLElement::performAction", action);
    return fault != HLAXErrorSuccess ? fault : ForwardingElement::performAction(action);
  }

 private:
  FaultyAccessibility& accessibility_;
};

class FaultyObserver : public ForwardingObserver {
 public:
  FaultyObserver(FaultyAccessibility& accessibility, std::unique_ptr<HLObserver> inner)
      : ForwardingObserver(std::move(inner)), accessibility_(accessibility) {}

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override {
    const HLAXError fault = accessibility_.fault("HLObserver::addNotification", notification);
    return fault != HLAXErrorSuccess ? fault : ForwardingObserver::addNotification(unwrapped(element), notification);
  }
  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override {
    const HLAXError fault = accessibility_.fault("HLObserver::removeNotification", notification);
    return fault != HLAXErrorSuccess ? fault : ForwardingObserver::removeNotification(unwrapped(element), notification);
  }

 private:
  static HLElementRef unwrapped(const HLElementRef& element) {
    const auto* wrapper = dynamic_cast<const FaultyElement*>(element.get());
    return wrapper == nullptr ? element : wrapper->inner();
  }

  FaultyAccessibility& accessibility_;
};

// The other interfaces have one wrapper each, which asks the plan before it forwards.
template <class Forwarding>
class Planned : public Forwarding {
 public:
  template <class Interface>
  Planned(Interface& inner, const FaultPlan& plan) : Forwarding(inner), plan_(plan) {}

 protected:
  [[nodiscard]] bool fails(std::string_view method, std::string_view argument = "") const {
    return plan_(method, argument) != HLAXErrorSuccess;
  }

 private:
  const FaultPlan plan_;
};

class FaultyRunningApplications : public Planned<ForwardingRunningApplications> {
 public:
  using Planned::Planned;
  std::vector<HLRunningApplication> list() override {
    if (fails("HLRunningApplications::list")) return {};
    return Planned::list();
  }
  std::optional<HLRunningApplication> find(std::int32_t pid) override {
    if (fails("HLRunningApplications::find", std::to_string(pid))) return std::nullopt;
    return Planned::find(pid);
  }
  HLSignalOutcome sendSignal(std::int32_t pid, int signal) override {
    if (fails("HLRunningApplications::sendSignal", std::to_string(pid))) return HLSignalOutcome::refused;
    return Planned::sendSignal(pid, signal);
  }
};

class FaultyProcessInfo : public Planned<ForwardingProcessInfo> {
 public:
  using Planned::Planned;
  std::optional<std::string> environment(std::string_view name) override {
    if (fails("HLProcessInfo::environment", name)) return std::nullopt;
    return Planned::environment(name);
  }
  std::optional<std::string> applicationSupportDirectory() override {
    if (fails("HLProcessInfo::applicationSupportDirectory")) return std::nullopt;
    return Planned::applicationSupportDirectory();
  }
  std::optional<std::string> bundlePath() override {
    if (fails("HLProcessInfo::bundlePath")) return std::nullopt;
    return Planned::bundlePath();
  }
  std::optional<std::string> executablePath() override {
    if (fails("HLProcessInfo::executablePath")) return std::nullopt;
    return Planned::executablePath();
  }
  std::optional<std::string> bundleIdentifier() override {
    if (fails("HLProcessInfo::bundleIdentifier")) return std::nullopt;
    return Planned::bundleIdentifier();
  }
  HLDictionary informationDictionary() override {
    if (fails("HLProcessInfo::informationDictionary")) return {};
    return Planned::informationDictionary();
  }
};

class FaultyPropertyLists : public Planned<ForwardingPropertyLists> {
 public:
  using Planned::Planned;
  std::optional<HLDictionary> readDictionary(const std::string& path) override {
    if (fails("HLPropertyLists::readDictionary", path)) return std::nullopt;
    return Planned::readDictionary(path);
  }
};

class FaultyUserNotifications : public Planned<ForwardingUserNotifications> {
 public:
  using Planned::Planned;
  void requestAuthorization(std::function<void(bool granted, std::optional<std::string> error)> answer) override {
    if (fails("HLUserNotifications::requestAuthorization")) return answer(false, "planned fault");
    Planned::requestAuthorization(std::move(answer));
  }
  void add(const HLUserNotification& notification,
           std::function<void(std::optional<std::string> error)> answer) override {
    if (fails("HLUserNotifications::add", notification.identifier)) return answer("planned fault");
    Planned::add(notification, std::move(answer));
  }
};

class FaultyHotKeys : public Planned<ForwardingHotKeys> {
 public:
  using Planned::Planned;
  HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                      const HLHotKeyIdentity& identity) override {
    if (fails("HLHotKeys::registerHotKey", std::to_string(code))) return {HLHotKeyStatus::failed, nullptr};
    return Planned::registerHotKey(code, modifiers, identity);
  }
};

class FaultyLoginItem : public Planned<ForwardingLoginItem> {
 public:
  using Planned::Planned;
  HLLoginItemOutcome registerItem() override {
    if (fails("HLLoginItem::registerItem")) return {false, "planned fault"};
    return Planned::registerItem();
  }
  HLLoginItemOutcome unregisterItem() override {
    if (fails("HLLoginItem::unregisterItem")) return {false, "planned fault"};
    return Planned::unregisterItem();
  }
};

class FaultyUserDefaults : public Planned<ForwardingUserDefaults> {
 public:
  using Planned::Planned;
  HLValue value(std::string_view key) override {
    if (fails("HLUserDefaults::value", key)) return {};
    return Planned::value(key);
  }
  void setValue(std::string_view key, const HLValue& value) override {
    if (!fails("HLUserDefaults::setValue", key)) Planned::setValue(key, value);
  }
};

class FaultyHTTPClient : public Planned<ForwardingHTTPClient> {
 public:
  using Planned::Planned;
  void get(const std::string& address, double timeout, std::function<void(HLHTTPAnswer)> answer) override {
    if (fails("HLHTTPClient::get", address)) return answer({});
    Planned::get(address, timeout, std::move(answer));
  }
};

class FaultyWorkspace : public Planned<ForwardingWorkspace> {
 public:
  using Planned::Planned;
  bool openAddress(const std::string& address) override {
    return !fails("HLWorkspace::openAddress", address) && Planned::openAddress(address);
  }
};

}  // namespace

bool FaultyAccessibility::isProcessTrusted(bool prompt) {
  return fault("HLAccessibility::isProcessTrusted", "") == HLAXErrorSuccess &&
         ForwardingAccessibility::isProcessTrusted(prompt);
}

HLElementRef FaultyAccessibility::createApplication(std::int32_t pid) {
  if (fault("HLAccessibility::createApplication", std::to_string(pid)) != HLAXErrorSuccess) return nullptr;
  return wrapped(ForwardingAccessibility::createApplication(pid));
}

std::unique_ptr<HLObserver> FaultyAccessibility::createObserver(std::int32_t pid, HLObserverCallback callback) {
  if (fault("HLAccessibility::createObserver", std::to_string(pid)) != HLAXErrorSuccess) return nullptr;
  std::unique_ptr<HLObserver> observer = ForwardingAccessibility::createObserver(
      pid, [this, callback = std::move(callback)](const HLElementRef& element, std::string_view notification) {
        callback(wrapped(element), notification);
      });
  if (observer == nullptr) return nullptr;
  return std::make_unique<FaultyObserver>(*this, std::move(observer));
}

HLElementRef FaultyAccessibility::wrapped(const HLElementRef& element) {
  if (element == nullptr) return nullptr;
  const HLLock lock(mutex_);
  // A wrapper that lives keeps its inner handle, so that the address cannot belong to another one.
  std::weak_ptr<HLElement>& known = wrappers_[element.get()];
  HLElementRef wrapper = known.lock();
  if (wrapper == nullptr) {
    wrapper = std::make_shared<FaultyElement>(*this, element);
    known = wrapper;
  }
  return wrapper;
}

HLValue FaultyAccessibility::wrapped(const HLValue& value) {
  if (const auto* element = value.as<HLElementRef>()) return wrapped(*element);
  const auto* array = value.as<HLArray>();
  if (array == nullptr) return value;
  HLArray members;
  for (const HLValue& member : *array) members.push_back(wrapped(member));
  return members;
}

struct FaultyPlatform::Services {
  Services(const HLPlatform& inner, const FaultPlan& plan)
      : accessibility(inner.accessibility, plan),
        runningApplications(inner.runningApplications, plan),
        process(inner.process, plan),
        propertyLists(inner.propertyLists, plan),
        userNotifications(inner.userNotifications, plan) {}

  FaultyAccessibility accessibility;
  FaultyRunningApplications runningApplications;
  FaultyProcessInfo process;
  FaultyPropertyLists propertyLists;
  FaultyUserNotifications userNotifications;
};

struct FaultyPlatform::ApplicationServices {
  ApplicationServices(const HLApplicationPlatform& inner, const FaultPlan& plan)
      : hotKeys(inner.hotKeys, plan),
        loginItem(inner.loginItem, plan),
        userDefaults(inner.userDefaults, plan),
        httpClient(inner.httpClient, plan),
        workspace(inner.workspace, plan),
        platform(inner) {
    platform.hotKeys = hotKeys;
    platform.loginItem = loginItem;
    platform.userDefaults = userDefaults;
    platform.httpClient = httpClient;
    platform.workspace = workspace;
  }

  FaultyHotKeys hotKeys;
  FaultyLoginItem loginItem;
  FaultyUserDefaults userDefaults;
  FaultyHTTPClient httpClient;
  FaultyWorkspace workspace;
  HLApplicationPlatform platform;
};

FaultyPlatform::FaultyPlatform(const HLPlatform& inner, const FaultPlan& plan)
    : services_(std::make_unique<Services>(inner, plan)), platform_(inner) {
  platform_.accessibility = services_->accessibility;
  platform_.runningApplications = services_->runningApplications;
  platform_.process = services_->process;
  platform_.propertyLists = services_->propertyLists;
  platform_.userNotifications = services_->userNotifications;
  platform_.applicationPlatform = [this, make = inner.applicationPlatform, plan] {
    using Made = std::variant<const HLApplicationPlatform*, std::string>;
    if (plan("HLPlatform::applicationPlatform", "") != HLAXErrorSuccess) return Made("planned fault");
    Made made = make();
    const auto* application = std::get_if<const HLApplicationPlatform*>(&made);
    if (application == nullptr) return made;
    if (applicationServices_ == nullptr) {
      applicationServices_ = std::make_unique<ApplicationServices>(**application, plan);
    }
    return Made(&applicationServices_->platform);
  };
}

FaultyPlatform::~FaultyPlatform() = default;
