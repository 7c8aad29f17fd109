#include "tests/support/faults.h"

#include <utility>

namespace {

class FaultyElement : public HLElement {
 public:
  FaultyElement(FaultyAccessibility& accessibility, HLElementRef inner)
      : accessibility_(accessibility), inner_(std::move(inner)) {}

  HLAttribute copyAttributeValue(std::string_view name) const override {
    if (const HLAXError fault = accessibility_.nextFault(); fault != HLAXErrorSuccess) return {fault, {}};
    const HLAttribute attribute = inner_->copyAttributeValue(name);
    return {attribute.error, accessibility_.wrapped(attribute.value)};
  }

  HLActionList copyActionNames() const override {
    if (const HLAXError fault = accessibility_.nextFault(); fault != HLAXErrorSuccess) return {fault, {}};
    return inner_->copyActionNames();
  }

  HLAXError performAction(std::string_view action) const override {
    if (const HLAXError fault = accessibility_.nextFault(); fault != HLAXErrorSuccess) return fault;
    return inner_->performAction(action);
  }

  bool isEqual(const HLElement& other) const override {
    const auto* wrapper = dynamic_cast<const FaultyElement*>(&other);
    return wrapper != nullptr && inner_->isEqual(*wrapper->inner_);
  }

 private:
  FaultyAccessibility& accessibility_;
  HLElementRef inner_;
};

}  // namespace

bool FaultyAccessibility::isProcessTrusted(bool prompt) {
  return nextFault() == HLAXErrorSuccess && inner_.isProcessTrusted(prompt);
}

HLElementRef FaultyAccessibility::createApplication(std::int32_t pid) {
  if (nextFault() != HLAXErrorSuccess) return nullptr;
  return wrapped(inner_.createApplication(pid));
}

std::unique_ptr<HLObserver> FaultyAccessibility::createObserver(std::int32_t pid, HLObserverCallback callback) {
  if (nextFault() != HLAXErrorSuccess) return nullptr;
  return inner_.createObserver(pid, std::move(callback));
}

HLElementRef FaultyAccessibility::wrapped(const HLElementRef& element) {
  if (element == nullptr) return nullptr;
  const std::lock_guard lock(mutex_);
  HLElementRef& wrapper = wrappers_[element];
  if (wrapper == nullptr) wrapper = std::make_shared<FaultyElement>(*this, element);
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
