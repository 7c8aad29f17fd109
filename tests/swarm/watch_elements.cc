#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/geometry.h"
#include "tests/swarm/watch.h"

namespace {

constexpr std::array<std::string_view, 7> kTexts = {"AXRole",        "AXSubrole", "AXRoleDescription", "AXTitle",
                                                    "AXDescription", "AXValue",   "AXIdentifier"};

// While a batch's queue runs its operation.
thread_local bool inOperation = false;

std::string textOf(const HLAttribute& attribute) {
  if (attribute.error != 0) return "";
  if (const auto* text = attribute.value.as<std::string>()) return *text;
  return HLNumberText(attribute.value).value_or("");
}

std::string withHalves(std::string text) {
  for (std::size_t at = 0; (at = text.find(kHalfMark, at)) != std::string::npos;) {
    text.replace(at, kHalfMark.size(), kHalfOfPair);
  }
  return text;
}

class WatchedElement : public ForwardingElement {
 public:
  WatchedElement(WatchedAccessibility& accessibility, HLElementRef inner, Seen* seen)
      : ForwardingElement(std::move(inner)), accessibility_(accessibility), seen_(seen) {
    ++watcher().course.alive["elements"];
  }
  ~WatchedElement() override { --watcher().course.alive["elements"]; }

  HLAttribute copyAttributeValue(std::string_view name) const override {
    const HLAttribute attribute = read(name);
    note(name, attribute);
    return attribute;
  }

  HLElementFacts copyFacts() const override {
    seen_->last = {};
    const std::size_t given = watcher().attributesGiven();
    std::size_t asked = 0;
    HLAttribute position{HLAXErrorNoValue, {}};
    HLAttribute size = position;
    HLElementFacts facts = HLFactsFromAttributes([&](std::string_view name) {
      HLAttribute attribute = asked++ < given ? read(name) : HLAttribute{HLAXErrorNoValue, {}};
      const auto text = std::find(kTexts.begin(), kTexts.end(), name);
      if (text != kTexts.end()) seen_->last.texts[static_cast<std::size_t>(text - kTexts.begin())] = textOf(attribute);
      if (name == "AXPosition") position = attribute;
      if (name == "AXSize") size = attribute;
      if (const auto* list = attribute.value.as<HLArray>()) append(*list, seen_->last.children);
      return attribute;
    });
    const auto* point = position.value.as<HLPoint>();
    const auto* extent = size.value.as<HLSize>();
    if (point != nullptr && extent != nullptr && extent->width > 0 && extent->height > 0) {
      seen_->last.framed = true;
      seen_->last.frame = {point->x, point->y, extent->width, extent->height};
    }
    if (given == HLFactAttributeNames.size()) facts.actionNames = HLNamesFromActionList(copyActionNames());
    return facts;
  }

  HLActionList copyActionNames() const override {
    if (const HLAXError fault = watcher().fault(); fault != 0) {
      seen_->last.actions.clear();
      return {fault, {}};
    }
    HLActionList list = ForwardingElement::copyActionNames();
    for (std::string& name : list.names) name = withHalves(std::move(name));
    seen_->last.actions = list.error == 0 ? list.names : std::vector<std::string>();
    return list;
  }

  HLAXError performAction(std::string_view action) const override {
    Watcher& watch = watcher();
    watch.now();
    BatchEntry* entry = watch.course.pressing(seen_, std::string(action), inOperation);
    ++watch.course.press.atOnce;
    watch.checker.check(When::press, watch.course);
    HLAXError code = watch.fault();
    const double start = watch.now();
    if (code == 0) code = ForwardingElement::performAction(action);
    if (!inOperation) watch.course.otherPressSeconds += watch.now() - start;
    --watch.course.press.atOnce;
    if (entry != nullptr) entry->code = code;
    return code;
  }

  [[nodiscard]] Seen* seen() const { return seen_; }

 private:
  [[nodiscard]] Watcher& watcher() const { return accessibility_.watcher(); }

  HLAttribute read(std::string_view name) const {
    if (const HLAXError fault = watcher().fault(); fault != 0) return {fault, {}};
    const HLAttribute attribute = ForwardingElement::copyAttributeValue(name);
    return {attribute.error, accessibility_.wrapped(attribute.value)};
  }

  void append(const HLArray& list, std::vector<Seen*>& to) const {
    for (const HLValue& member : list) {
      const auto* element = member.as<HLElementRef>();
      if (element != nullptr && *element != nullptr) to.push_back(accessibility_.seenBehind(*element));
    }
  }

  // Of attributes that are read alone.
  void note(std::string_view name, const HLAttribute& attribute) const {
    if (name == "AXSubrole") seen_->subrole = textOf(attribute);
    if (name == "AXDescription") seen_->description = textOf(attribute);
    for (std::size_t i = 0; i < seen_->closeControls.size(); ++i) {
      if (name != (i == 0 ? "AXCloseButton" : "AXCancelButton")) continue;
      const auto* control = attribute.value.as<HLElementRef>();
      seen_->closeControls[i] = control != nullptr ? accessibility_.seenBehind(*control) : nullptr;
    }
    if (name != "AXWindows") return;
    std::vector<Seen*> windows;
    if (const auto* list = attribute.value.as<HLArray>()) append(*list, windows);
    watcher().course.windowsRead(windows);
  }

  WatchedAccessibility& accessibility_;
  Seen* const seen_;
};

class WatchedObserver : public ForwardingObserver {
 public:
  WatchedObserver(std::unique_ptr<HLObserver> inner, Course& course)
      : ForwardingObserver(std::move(inner)),
        alive_(course.alive["observers"]),
        attached_(course.alive["attached observers"]) {
    ++alive_;
  }
  ~WatchedObserver() override { --alive_; }

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override {
    return ForwardingObserver::addNotification(behind(element), notification);
  }
  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override {
    return ForwardingObserver::removeNotification(behind(element), notification);
  }
  void attach() override {
    ForwardingObserver::attach();
    ++attached_;
  }
  void detach() override {
    ForwardingObserver::detach();
    --attached_;
  }

 private:
  static HLElementRef behind(const HLElementRef& element) {
    const auto* wrapper = dynamic_cast<const ForwardingElement*>(element.get());
    return wrapper != nullptr ? wrapper->inner() : element;
  }

  std::int64_t& alive_;
  std::int64_t& attached_;
};

// Marks the thread while an operation of a batch runs on it.
class WatchedQueue : public HLOperationQueue {
 public:
  WatchedQueue(std::unique_ptr<HLOperationQueue> inner, Watcher& watcher)
      : inner_(std::move(inner)), watcher_(watcher) {
    ++watcher_.course.alive["queues"];
    watcher_.course.batchBegins(watcher_.now());
  }
  ~WatchedQueue() override {
    inner_ = nullptr;
    --watcher_.course.alive["queues"];
    watcher_.course.batchEnds(watcher_.now());
    watcher_.checker.check(When::step, watcher_.course);
  }
  void addOperation(std::function<void()> operation) override {
    inner_->addOperation([operation = std::move(operation)] {
      inOperation = true;
      operation();
      inOperation = false;
    });
  }
  void waitUntilAllOperationsAreFinished() override { inner_->waitUntilAllOperationsAreFinished(); }

 private:
  std::unique_ptr<HLOperationQueue> inner_;
  Watcher& watcher_;
};

}  // namespace

HLAXError Watcher::fault() {
  ++calls;
  for (const CallFault& planned : course.plan.callFaults) {
    if (planned.call != calls) continue;
    ++course.callFaults;
    return planned.code;
  }
  return HLAXErrorSuccess;
}

std::size_t Watcher::attributesGiven() {
  ++wholeReadings;
  for (const ShortAnswer& planned : course.plan.shortAnswers) {
    if (planned.reading != wholeReadings) continue;
    ++course.callFaults;
    ++course.cutAnswers;
    return planned.attributes;
  }
  return HLFactAttributeNames.size();
}

bool WatchedAccessibility::isProcessTrusted(bool prompt) {
  return watcher_.fault() == 0 && ForwardingAccessibility::isProcessTrusted(prompt);
}

HLElementRef WatchedAccessibility::createApplication(std::int32_t pid) {
  if (watcher_.fault() != 0) return nullptr;
  return wrapped(ForwardingAccessibility::createApplication(pid));
}

std::unique_ptr<HLObserver> WatchedAccessibility::createObserver(std::int32_t pid, HLObserverCallback callback) {
  if (watcher_.fault() != 0) return nullptr;
  auto observer = ForwardingAccessibility::createObserver(
      pid, [this, callback = std::move(callback)](const HLElementRef& element, std::string_view notification) {
        callback(wrapped(element), notification);
        watcher_.checker.check(When::step, watcher_.course);
      });
  return observer == nullptr ? nullptr : std::make_unique<WatchedObserver>(std::move(observer), watcher_.course);
}

HLElementRef WatchedAccessibility::wrapped(const HLElementRef& element) {
  if (element == nullptr) return nullptr;
  Known& known = known_[element.get()];
  HLElementRef wrapper = known.wrapper.lock();
  if (wrapper != nullptr) return wrapper;
  if (known.seen == nullptr) {
    known.seen = seen_.emplace_back(std::make_unique<Seen>()).get();
    known.seen->node = element;
  }
  wrapper = std::make_shared<WatchedElement>(*this, element, known.seen);
  known.wrapper = wrapper;
  return wrapper;
}

HLValue WatchedAccessibility::wrapped(const HLValue& value) {
  if (const auto* element = value.as<HLElementRef>()) return wrapped(*element);
  if (const auto* text = value.as<std::string>()) return withHalves(*text);
  const auto* array = value.as<HLArray>();
  if (array == nullptr) return value;
  HLArray members;
  members.reserve(array->size());
  for (const HLValue& member : *array) members.push_back(wrapped(member));
  return members;
}

Seen* WatchedAccessibility::seenBehind(const HLElementRef& wrapper) {
  return static_cast<const WatchedElement*>(wrapper.get())->seen();
}

std::unique_ptr<HLOperationQueue> WatchedRunLoop::makeOperationQueue(const std::string& name,
                                                                     HLQualityOfService quality,
                                                                     int maxConcurrentOperations) {
  return std::make_unique<WatchedQueue>(ForwardingRunLoop::makeOperationQueue(name, quality, maxConcurrentOperations),
                                        watcher_);
}
