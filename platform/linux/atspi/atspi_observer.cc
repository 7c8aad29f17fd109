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

}  // namespace

HLLinuxObserver::HLLinuxObserver(HLLinuxRunLoop& runLoop, std::vector<HLEventSource> events, HLElementRef application,
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
  if (!sources_.empty()) return;
  for (const HLEventSource& source : events_) {
    sources_.push_back(runLoop_.addSource({source.descriptor, [this, &source] { return takeEvents(source); }}));
  }
}

void HLLinuxObserver::detach() {
  for (int source : std::exchange(sources_, {})) runLoop_.removeSource(source);
}

std::vector<HLLinuxObserver::Shown> HLLinuxObserver::read() const {
  std::vector<Shown> shown;
  for (const HLElementRef& window : HLElementsFromAttribute(application_->copyAttributeValue("AXWindows"))) {
    const HLElementFacts facts = window->copyFacts();
    shown.push_back({window, nullptr, facts.title, false});
    for (const HLElementRef& child : facts.children) {
      HLElementFacts below = child->copyFacts();
      if (below.subrole != HLBannerSubrole) continue;
      shown.push_back({child, window, std::move(below.description), !below.actionNames.empty()});
    }
  }
  return shown;
}

bool HLLinuxObserver::takeEvents(const HLEventSource& source) {
  const std::optional<int> events = source.take();
  if (!events) return false;
  if (*events == 0) return true;
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
    const Shown window{banner.window, nullptr, "", false};
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
    const bool isChanged = isNew || known->text != each.text;
    if (each.window == nullptr) {
      if (isChanged) notify(each, isNew ? "AXWindowCreated" : "AXTitleChanged");
      continue;
    }
    if (isChanged) notify(each, isNew ? "AXCreated" : "AXValueChanged");
    if (each.isClosable && (isChanged || !known->isClosable)) notify(each, "AXLayoutChanged");
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
  if (wanted && !sources_.empty()) callback_(about.element, notification);
}
