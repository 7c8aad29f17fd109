#include "platform/linux/atspi/atspi_observer.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/element_facts.h"
#include "platform/linux/atspi/mapped_tree.h"

namespace {

constexpr std::array<std::string_view, 8> kNotifications = {
    "AXWindowCreated",   "AXCreated",      "AXUIElementDestroyed", "AXLayoutChanged",
    "AXChildrenChanged", "AXValueChanged", "AXTitleChanged",       "AXAnnouncementRequested"};

// Applications send only events for which a listener is registered with the registry.
constexpr std::array kWantedEvents = {"object:children-changed", "object:state-changed:showing",
                                      "object:property-change:accessible-name",
                                      "object:property-change:accessible-description", "window:create"};

}  // namespace

std::unique_ptr<HLBus> HLWatchAccessibilityEvents(const std::string& busAddress, const std::string& application) {
  std::unique_ptr<HLBus> bus = HLBus::openBus(busAddress);
  if (bus == nullptr) return nullptr;
  for (const char* interface : {"org.a11y.atspi.Event.Object", "org.a11y.atspi.Event.Window"}) {
    if (!bus->watch("type='signal',sender='" + application + "',interface='" + interface + "'")) return nullptr;
  }
  for (const char* event : kWantedEvents) {
    const HLBusCall call{"org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry",
                         "RegisterEvent"};
    if (!bus->call(call, "sass", event, 0U, "")) return nullptr;
  }
  return bus;
}

HLLinuxObserver::HLLinuxObserver(HLLinuxRunLoop& runLoop, std::unique_ptr<HLBus> events, HLElementRef application,
                                 HLObserverCallback callback)
    : runLoop_(runLoop),
      events_(std::move(events)),
      application_(std::move(application)),
      callback_(std::move(callback)),
      shown_(read()) {}

HLLinuxObserver::~HLLinuxObserver() { detach(); }

HLAXError HLLinuxObserver::addNotification(const HLElementRef& element, std::string_view notification) {
  if (std::find(kNotifications.begin(), kNotifications.end(), notification) == kNotifications.end()) {
    return HLAXErrorNotificationUnsupported;
  }
  registrations_.emplace_back(element, notification);
  return HLAXErrorSuccess;
}

HLAXError HLLinuxObserver::removeNotification(const HLElementRef& element, std::string_view notification) {
  const auto removed = std::erase_if(registrations_, [&element, notification](const Registration& registration) {
    return registration.second == notification && registration.first->isEqual(*element);
  });
  return removed > 0 ? HLAXErrorSuccess : HLAXErrorNotificationNotRegistered;
}

void HLLinuxObserver::attach() {
  if (source_ == 0) source_ = runLoop_.addSource({events_->descriptor(), [this] { return takeEvents(); }});
}

void HLLinuxObserver::detach() {
  if (source_ != 0) runLoop_.removeSource(std::exchange(source_, 0));
}

std::vector<HLLinuxObserver::Shown> HLLinuxObserver::read() const {
  std::vector<Shown> shown;
  for (const HLElementRef& window : HLElementsFromAttribute(application_->copyAttributeValue("AXWindows"))) {
    const HLElementFacts facts = window->copyFacts();
    shown.push_back({window, nullptr, facts.title});
    for (const HLElementRef& child : facts.children) {
      HLElementFacts below = child->copyFacts();
      if (below.subrole == HLBannerSubrole) shown.push_back({child, window, std::move(below.description)});
    }
  }
  return shown;
}

bool HLLinuxObserver::takeEvents() {
  const std::optional<int> signals = events_->takeSignals();
  if (!signals) return false;
  if (*signals == 0) return true;
  const std::vector<Shown> before = std::exchange(shown_, read());
  const std::vector<Shown> now = shown_;
  compare(before, now);
  return true;
}

// The callback may add or remove notifications, so this iterates over copies only. It must not destroy the observer.
void HLLinuxObserver::compare(const std::vector<Shown>& before, const std::vector<Shown>& now) {
  const auto find = [](const std::vector<Shown>& list, const Shown& wanted) {
    return std::find_if(list.begin(), list.end(),
                        [&wanted](const Shown& each) { return each.element->isEqual(*wanted.element); });
  };
  std::vector<Shown> changed;  // windows whose banners are others
  const auto noteChange = [&](const Shown& banner) {
    const Shown window{banner.window, nullptr, ""};
    if (find(now, window) != now.end() && find(changed, window) == changed.end()) changed.push_back(window);
  };
  for (const Shown& each : before) {
    if (find(now, each) != now.end()) continue;
    notify(each, "AXUIElementDestroyed");
    if (each.window != nullptr) noteChange(each);
  }
  for (const Shown& each : now) {
    const auto known = find(before, each);
    const bool isNew = known == before.end();
    if (!isNew && known->text == each.text) continue;
    if (each.window == nullptr) {
      notify(each, isNew ? "AXWindowCreated" : "AXTitleChanged");
      continue;
    }
    notify(each, isNew ? "AXCreated" : "AXValueChanged");
    notify(each, "AXLayoutChanged");
    if (isNew) noteChange(each);
  }
  for (const Shown& window : changed) notify(window, "AXChildrenChanged");
}

void HLLinuxObserver::notify(const Shown& about, std::string_view notification) {
  const bool wanted = std::any_of(registrations_.begin(), registrations_.end(),
                                  [&about, notification, this](const Registration& registration) {
                                    const HLElement& element = *registration.first;
                                    return registration.second == notification &&
                                           (element.isEqual(*application_) || element.isEqual(*about.element) ||
                                            (about.window != nullptr && element.isEqual(*about.window)));
                                  });
  if (wanted && source_ != 0) callback_(about.element, notification);
}
