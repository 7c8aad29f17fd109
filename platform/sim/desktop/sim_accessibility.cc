#include "platform/sim/desktop/sim_accessibility.h"

#include <utility>

namespace {

class Element : public HLElement {
 public:
  Element(HLSimDesktop& desktop, HLSimNode& node) : desktop_(desktop), node_(node) {}

  HLAttribute copyAttributeValue(std::string_view name) const override {
    const HLSimLock lock(*desktop_.clock);
    return desktop_.world->read(node_, name);
  }

  HLElementFacts copyFacts() const override {
    const HLSimLock lock(*desktop_.clock);
    HLElementFacts facts = HLFactsFromAttributes(
        [this](std::string_view name) HL_REQUIRES(desktop_.clock) { return desktop_.world->read(node_, name); });
    facts.actionNames = HLNamesFromActionList(desktop_.world->actionNames(node_));
    return facts;
  }

  HLActionList copyActionNames() const override {
    const HLSimLock lock(*desktop_.clock);
    return desktop_.world->actionNames(node_);
  }

  HLAXError performAction(std::string_view action) const override {
    const HLSimLock lock(*desktop_.clock);
    const HLMicroseconds now = desktop_.clock->now();
    const HLSimWorld::Answer answer = desktop_.world->perform(node_, action, now);
    desktop_.clock->dueChanged();
    if (answer.at > now) desktop_.clock->sleepUntil(answer.at);
    return answer.code;
  }

  bool isEqual(const HLElement& other) const override {
    const auto* element = dynamic_cast<const Element*>(&other);
    return element != nullptr && &element->node_ == &node_;
  }

  std::size_t hash() const override { return std::hash<const HLSimNode*>()(&node_); }

  [[nodiscard]] const HLSimNode& node() const { return node_; }

 private:
  HLSimDesktop& desktop_;
  HLSimNode& node_;
};

class Observer : public HLObserver {
 public:
  Observer(HLSimDesktop& desktop, HLSimApplication& application, HLObserverCallback callback)
      : desktop_(desktop), registrations_(std::make_shared<HLSimRegistrations>()) {
    registrations_->application = &application;
    registrations_->callback = std::move(callback);
    desktop.world->addObserver(registrations_);
  }

  ~Observer() override { registrations_->attached = false; }

  HLAXError addNotification(const HLElementRef& element, std::string_view notification) override {
    const HLSimLock lock(*desktop_.clock);
    const auto* known = dynamic_cast<const Element*>(element.get());
    if (known == nullptr) return HLAXErrorInvalidElement;
    return desktop_.world->addNotification(*registrations_, known->node(), notification);
  }

  HLAXError removeNotification(const HLElementRef& element, std::string_view notification) override {
    const HLSimLock lock(*desktop_.clock);
    const auto* known = dynamic_cast<const Element*>(element.get());
    if (known == nullptr) return HLAXErrorInvalidElement;
    return desktop_.world->removeNotification(*registrations_, known->node(), notification);
  }

  void attach() override { registrations_->attached = true; }
  void detach() override { registrations_->attached = false; }

 private:
  HLSimDesktop& desktop_;
  std::shared_ptr<HLSimRegistrations> registrations_;
};

}  // namespace

HLElementRef HLMakeSimElement(HLSimDesktop& desktop, HLSimNode& node) {
  return std::make_shared<Element>(desktop, node);
}

bool HLSimAccessibility::isProcessTrusted(bool prompt) {
  const HLSimLock lock(*desktop_.clock);
  const bool trusted = desktop_.world->isTrusted();
  if (prompt && !trusted && desktop_.scene->services.grantOnPrompt) desktop_.promptPending = true;
  return trusted;
}

HLElementRef HLSimAccessibility::createApplication(std::int32_t pid) {
  const HLSimLock lock(*desktop_.clock);
  if (pid < 1) return nullptr;
  HLSimApplication& application = desktop_.world->applicationWithPid(pid);
  if (application.origin != nullptr && application.origin->elementFails) return nullptr;
  return desktop_.world->handle(*application.root);
}

std::unique_ptr<HLObserver> HLSimAccessibility::createObserver(std::int32_t pid, HLObserverCallback callback) {
  const HLSimLock lock(*desktop_.clock);
  if (pid < 1) return nullptr;
  HLSimApplication& application = desktop_.world->applicationWithPid(pid);
  if (application.origin != nullptr && application.origin->observerFails) return nullptr;
  return std::make_unique<Observer>(desktop_, application, std::move(callback));
}
