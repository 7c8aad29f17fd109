#include "platform/linux/atspi/atspi_accessibility.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/host_report.h"
#include "platform/linux/atspi/accessible_application.h"
#include "platform/linux/atspi/atspi_observer.h"
#include "platform/linux/atspi/listed_application.h"
#include "platform/linux/files/linux_user_defaults.h"
#include "platform/linux/session/bus.h"
#include "platform/threads/thread_safety.h"

namespace {

constexpr const char* kService = "org.a11y.Bus";
constexpr const char* kServicePath = "/org/a11y/bus";
constexpr const char* kStatus = "org.a11y.Status";
constexpr const char* kIsEnabled = "IsEnabled";
// Allows for the bus to start the service first.
constexpr std::chrono::seconds kStartTimeout{3};

// The preference with the user's consent to close notifications where accessibility cannot be switched on.
constexpr std::string_view kConsent = "HLClosesWithoutAccessibility";

class Snapshot;

HLArray arrayOf(const std::vector<HLElementRef>& elements) { return {elements.begin(), elements.end()}; }

// An application, and its newest snapshot as long as a handle or element owns that snapshot.
struct Source {
  explicit Source(std::unique_ptr<HLShownApplication> shown) : application(std::move(shown)) {}

  std::shared_ptr<const Snapshot> newest() {
    const HLLock lock(mutex);
    return newestSnapshot.lock();
  }

  const std::unique_ptr<HLShownApplication> application;
  HLMutex mutex;
  std::weak_ptr<const Snapshot> newestSnapshot HL_GUARDED_BY(mutex);
};

// What makes two elements equal. A banner and its window may be one AT-SPI node, but are two elements.
struct Identity {
  std::string_view path;
  bool isBanner;
  bool operator==(const Identity&) const = default;
};

struct IdentityHash {
  std::size_t operator()(const Identity& identity) const {
    return std::hash<std::string_view>()(identity.path) ^ static_cast<std::size_t>(identity.isBanner);
  }
};

class Element : public HLElement {
 public:
  Element(const Snapshot& snapshot, int index) : snapshot_(snapshot), index_(index) {}

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override;
  [[nodiscard]] HLElementFacts copyFacts() const override;
  [[nodiscard]] HLActionList copyActionNames() const override;
  [[nodiscard]] HLAXError performAction(std::string_view action) const override;
  [[nodiscard]] bool isEqual(const HLElement& other) const override;
  [[nodiscard]] std::size_t hash() const override;

 private:
  // The element in the newest snapshot.
  struct Place {
    std::shared_ptr<const Snapshot> owner;  // nullptr for the element's own snapshot
    const Snapshot* snapshot;
    int index;
    [[nodiscard]] const HLMappedNode& node() const;
  };
  // Returns nullopt if the element is destroyed or its process has exited. Blocks if the element was pressed.
  [[nodiscard]] std::optional<Place> place() const;

  const Snapshot& snapshot_;  // owns this element; handles own the snapshot
  const int index_;
  mutable std::atomic<bool> pressed_ = false;  // the element may be destroyed since; place() reads a new snapshot
};

// All elements of an application at one time. A handle of any of them owns the whole snapshot.
class Snapshot : public std::enable_shared_from_this<Snapshot> {
 public:
  Snapshot(std::shared_ptr<Source> source, std::unique_ptr<const HLShownApplication::Interface> interface)
      : source_(std::move(source)), interface_(std::move(interface)) {
    const auto count = static_cast<int>(interface_->mapped.nodes.size());
    for (int i = 0; i < count; ++i) elements_.emplace_back(*this, i);
  }

  [[nodiscard]] const std::shared_ptr<Source>& source() const { return source_; }
  [[nodiscard]] const HLMappedNode& node(int index) const {
    return interface_->mapped.nodes[static_cast<std::size_t>(index)];
  }
  [[nodiscard]] const HLRawTree& tree() const { return interface_->tree; }
  [[nodiscard]] const HLRawNode& rawNode(int raw) const { return interface_->tree[static_cast<std::size_t>(raw)]; }
  [[nodiscard]] Identity identity(int index) const { return {rawNode(node(index).raw).path, node(index).isBanner}; }

  [[nodiscard]] HLElementRef handle(int index) const {
    return {shared_from_this(), &elements_[static_cast<std::size_t>(index)]};
  }

  [[nodiscard]] std::vector<HLElementRef> handles(const std::vector<int>& indices) const {
    std::vector<HLElementRef> handles;
    handles.reserve(indices.size());
    for (int index : indices) handles.push_back(handle(index));
    return handles;
  }

  [[nodiscard]] HLAXError perform(const HLMappedAction& action) const {
    return source_->application->perform(*interface_, action);
  }

  [[nodiscard]] HLArray windows() const { return arrayOf(handles(interface_->mapped.windows)); }

  [[nodiscard]] std::optional<int> find(const Identity& wanted) const {
    std::call_once(indexed_, [this] {
      for (int i = 0; i < static_cast<int>(elements_.size()); ++i) index_.emplace(identity(i), i);
    });
    const auto found = index_.find(wanted);
    if (found == index_.end()) return std::nullopt;
    return found->second;
  }

 private:
  const std::shared_ptr<Source> source_;
  const std::unique_ptr<const HLShownApplication::Interface> interface_;
  mutable std::deque<Element> elements_;  // HLElementRef is a pointer to non-const; elements are immutable
  mutable std::once_flag indexed_;        // index_ is built on first use
  mutable std::unordered_map<Identity, int, IdentityHash> index_;
};

const HLMappedNode& Element::Place::node() const { return snapshot->node(index); }

// Returns nullptr if the application does not answer. Blocks.
std::shared_ptr<const Snapshot> takeSnapshot(const std::shared_ptr<Source>& source) {
  std::unique_ptr<const HLShownApplication::Interface> interface = source->application->read();
  if (interface == nullptr) return nullptr;
  return std::make_shared<const Snapshot>(source, std::move(interface));
}

std::optional<Element::Place> Element::place() const {
  const std::shared_ptr<Source>& source = snapshot_.source();
  if (source->application->hasEnded()) return std::nullopt;
  std::shared_ptr<const Snapshot> newest = pressed_ ? takeSnapshot(source) : nullptr;
  if (newest == nullptr) newest = source->newest();
  if (newest == nullptr || newest.get() == &snapshot_) return Place{nullptr, &snapshot_, index_};
  const std::optional<int> index = newest->find(snapshot_.identity(index_));
  if (!index) return std::nullopt;
  const Snapshot* snapshot = newest.get();
  return Place{std::move(newest), snapshot, *index};
}

HLAttribute Element::copyAttributeValue(std::string_view name) const {
  const std::optional<Place> now = place();
  if (!now) return {HLAXErrorInvalidElement, {}};
  const HLMappedNode& node = now->node();
  for (const HLTextAttribute& attribute : HLTextAttributes) {
    const std::string& text = node.facts.*attribute.text;
    if (name == attribute.name && !text.empty()) return {HLAXErrorSuccess, text};
  }
  const std::optional<HLRect>& extents = now->snapshot->rawNode(node.raw).extents;
  if (name == HLPositionAttributeName && extents) return {HLAXErrorSuccess, HLPoint{extents->x, extents->y}};
  if (name == HLSizeAttributeName && extents) return {HLAXErrorSuccess, HLSize{extents->width, extents->height}};
  if (name == HLDoubtAttributeName) {
    const std::string_view doubt = HLCloseDoubt(now->snapshot->tree(), node);
    if (!doubt.empty()) return {HLAXErrorSuccess, std::string(doubt)};
  }
  if (name == "AXChildren") return {HLAXErrorSuccess, arrayOf(now->snapshot->handles(node.children))};
  return {HLAXErrorNoValue, {}};
}

HLElementFacts Element::copyFacts() const {
  const std::optional<Place> now = place();
  if (!now) return {};
  HLElementFacts facts = now->node().facts;
  facts.children = now->snapshot->handles(now->node().children);
  return facts;
}

HLActionList Element::copyActionNames() const {
  const std::optional<Place> now = place();
  if (!now) return {HLAXErrorInvalidElement, {}};
  return {HLAXErrorSuccess, now->node().facts.actionNames};
}

HLAXError Element::performAction(std::string_view name) const {
  const std::optional<Place> now = place();
  if (!now) return HLAXErrorInvalidElement;
  const HLMappedNode& node = now->node();
  const std::vector<std::string>& names = node.facts.actionNames;
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) return HLAXErrorActionUnsupported;
  const HLAXError error = now->snapshot->perform(node.actions[static_cast<std::size_t>(found - names.begin())]);
  if (error == HLAXErrorSuccess) pressed_ = true;
  return error;
}

bool Element::isEqual(const HLElement& other) const {
  const auto* element = dynamic_cast<const Element*>(&other);
  return element != nullptr &&
         snapshot_.source()->application->pid() == element->snapshot_.source()->application->pid() &&
         snapshot_.identity(index_) == element->snapshot_.identity(element->index_);
}

std::size_t Element::hash() const { return IdentityHash()(snapshot_.identity(index_)); }

class ApplicationElement : public HLElement {
 public:
  ApplicationElement(std::shared_ptr<Source> source, std::shared_ptr<const Snapshot> first)
      : source_(std::move(source)), shown_(std::move(first)) {}

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override {
    if (source_->application->hasEnded()) return {HLAXErrorInvalidElement, {}};
    if (name == "AXRole") return {HLAXErrorSuccess, "AXApplication"};
    if (name == "AXWindows") return windows();
    if (name == "AXChildren") return {HLAXErrorSuccess, shown()->windows()};
    return {HLAXErrorNoValue, {}};
  }

  [[nodiscard]] HLActionList copyActionNames() const override {
    return {source_->application->hasEnded() ? HLAXErrorInvalidElement : HLAXErrorSuccess, {}};
  }

  [[nodiscard]] HLAXError performAction(std::string_view) const override {
    return source_->application->hasEnded() ? HLAXErrorInvalidElement : HLAXErrorActionUnsupported;
  }

  [[nodiscard]] bool isEqual(const HLElement& other) const override {
    const auto* element = dynamic_cast<const ApplicationElement*>(&other);
    return element != nullptr && source_->application->pid() == element->source_->application->pid();
  }

  [[nodiscard]] std::size_t hash() const override { return std::hash<std::int32_t>()(source_->application->pid()); }

  [[nodiscard]] std::vector<HLEventSource> watch() const { return source_->application->watch(); }

 private:
  [[nodiscard]] std::shared_ptr<const Snapshot> shown() const {
    const HLLock lock(source_->mutex);
    return shown_;
  }

  // Returns createApplication()'s snapshot to the first caller, if under 5 ms old, else nullptr. Saves a second read.
  [[nodiscard]] std::shared_ptr<const Snapshot> justRead() const {
    constexpr std::chrono::milliseconds kMaxAge{5};
    const HLLock lock(source_->mutex);
    const bool isFirst = std::exchange(isUnread_, false);
    return isFirst && std::chrono::steady_clock::now() - made_ <= kMaxAge ? shown_ : nullptr;
  }

  [[nodiscard]] HLAttribute windows() const;

  const std::shared_ptr<Source> source_;
  const std::chrono::steady_clock::time_point made_ = std::chrono::steady_clock::now();
  mutable std::shared_ptr<const Snapshot> shown_ HL_GUARDED_BY(source_->mutex);
  mutable bool isUnread_ HL_GUARDED_BY(source_->mutex) = true;
};

HLAttribute ApplicationElement::windows() const {
  std::shared_ptr<const Snapshot> taken = justRead();
  if (taken == nullptr) taken = takeSnapshot(source_);
  if (taken != nullptr) {
    const HLLock lock(source_->mutex);
    shown_ = taken;
    source_->newestSnapshot = taken;
    return {HLAXErrorSuccess, taken->windows()};
  }
  if (source_->application->hasEnded()) return {HLAXErrorInvalidElement, {}};
  return {HLAXErrorSuccess, shown()->windows()};
}

// Returns the address of the session's accessibility bus, or "".
std::string sessionBusAddress() {
  const std::unique_ptr<HLBus> session = HLBus::openSession();
  return session == nullptr ? "" : HLAccessibilityBusAddress(*session);
}

// Returns nullptr if the process is not on the bus or does not answer. Blocks.
std::unique_ptr<HLShownApplication> connect(std::int32_t pid, HLRunningApplications& servers,
                                            HLOpenNotifications& notifications) {
  const bool isServer = servers.find(pid).has_value();
  if (isServer && notifications.serverTraits().lacksTree())
    return std::make_unique<HLListedApplication>(pid, notifications);
  const std::string address = sessionBusAddress();
  if (address.empty()) return nullptr;
  return isServer ? HLAccessibleApplication::connect(address, pid, HLProcessKind::notificationServer, &notifications)
                  : HLAccessibleApplication::connect(address, pid, HLProcessKind::other);
}

bool isTrusted() {
  const std::unique_ptr<HLBus> session = HLBus::openSession();
  if (session == nullptr) return false;
  const HLBusReply reply =
      session->call({kService, kServicePath, HLPropertiesInterface, "Get"}, "ss", kStatus, kIsEnabled);
  int enabled = 0;
  if (!reply || sd_bus_message_read(reply.message.get(), "v", "b", &enabled) <= 0 || enabled == 0) return false;
  const std::string address = HLAccessibilityBusAddress(*session);
  return !address.empty() && HLBus::openBus(address) != nullptr;
}

bool switchOn() {
  const std::unique_ptr<HLBus> session = HLBus::openSession(kStartTimeout);
  if (session == nullptr) return false;
  (void)session->call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "StartServiceByName"},
                      "su", kService, std::uint32_t{0});
  return static_cast<bool>(
      session->call({kService, kServicePath, HLPropertiesInterface, "Set"}, "ssv", kStatus, kIsEnabled, "b", 1));
}

}  // namespace

bool HLLinuxAccessibility::isProcessTrusted(bool prompt) {
  if (isTrusted()) return true;
  if (!prompt) return isConsentEnough();
  // Linux desktops have no permission prompt. A request for access switches accessibility on.
  if (switchOn() && isTrusted()) return true;
  if (!notifications_.serverTraits().lacksTree()) return isConsentEnough();
  HLLinuxUserDefaults(HLUserDefaultsPath(process_)).setValue(kConsent, true);
  return true;
}

// Reads the preferences anew each time, since another process may have stored the consent. A server may not run yet:
// the bus starts some with the first notification.
bool HLLinuxAccessibility::isConsentEnough() {
  HLLinuxUserDefaults defaults(HLUserDefaultsPath(process_));
  if (!HLBooleanDefault(defaults, kConsent) || HLBus::openSession() == nullptr) return false;
  return servers_.list().empty() || notifications_.serverTraits().lacksTree();
}

bool HLLinuxAccessibility::showsUnclosableBanners() {
  for (const HLRunningApplication& server : servers_.list()) {
    const HLElementRef application = createApplication(server.pid);
    if (application == nullptr) return notifications_.serverTraits().lacksTree();
    for (const HLElementRef& window : HLElementsFromAttribute(application->copyAttributeValue("AXWindows"))) {
      for (const HLElementRef& child : window->copyFacts().children) {
        const HLElementFacts facts = child->copyFacts();
        if (facts.subrole == HLBannerSubrole && facts.actionNames.empty()) return true;
      }
    }
  }
  return false;
}

HLElementRef HLLinuxAccessibility::createApplication(std::int32_t pid) {
  std::unique_ptr<HLShownApplication> application = connect(pid, servers_, notifications_);
  if (application == nullptr) return nullptr;
  auto source = std::make_shared<Source>(std::move(application));
  std::shared_ptr<const Snapshot> first = takeSnapshot(source);
  if (first == nullptr) return nullptr;
  {
    const HLLock lock(source->mutex);
    source->newestSnapshot = first;
  }
  return std::make_shared<ApplicationElement>(std::move(source), std::move(first));
}

std::unique_ptr<HLObserver> HLLinuxAccessibility::createObserver(std::int32_t pid, HLObserverCallback callback) {
  std::unique_ptr<HLObserver> observer = makeObserver(pid, std::move(callback));
  if (observer == nullptr) unobservable_(pid, [this, pid] { return makeObserver(pid, nullptr) != nullptr; });
  return observer;
}

std::unique_ptr<HLObserver> HLLinuxAccessibility::makeObserver(std::int32_t pid, HLObserverCallback callback) {
  const HLElementRef application = createApplication(pid);
  const auto* element = dynamic_cast<const ApplicationElement*>(application.get());
  if (element == nullptr) return nullptr;
  std::vector<HLEventSource> events = element->watch();
  if (events.empty()) return nullptr;
  return std::make_unique<HLLinuxObserver>(runLoop_, std::move(events), application, std::move(callback));
}
