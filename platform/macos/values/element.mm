#include "platform/macos/values/element.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/macos/values/cf_ref.h"
#include "platform/macos/values/values.h"

static_assert(HLAXErrorSuccess == kAXErrorSuccess);
static_assert(HLAXErrorFailure == kAXErrorFailure);
static_assert(HLAXErrorInvalidElement == kAXErrorInvalidUIElement);
static_assert(HLAXErrorCannotComplete == kAXErrorCannotComplete);
static_assert(HLAXErrorActionUnsupported == kAXErrorActionUnsupported);
static_assert(HLAXErrorNotificationUnsupported == kAXErrorNotificationUnsupported);
static_assert(HLAXErrorNotificationNotRegistered == kAXErrorNotificationNotRegistered);
static_assert(HLAXErrorAPIDisabled == kAXErrorAPIDisabled);
static_assert(HLAXErrorNoValue == kAXErrorNoValue);

namespace {

HLCFRef<CFArrayRef> arrayOfStrings(std::span<const std::string_view> texts) {
  const HLCFRef<CFMutableArrayRef> array(
      CFArrayCreateMutable(kCFAllocatorDefault, static_cast<CFIndex>(texts.size()), &kCFTypeArrayCallBacks));
  for (std::string_view text : texts) CFArrayAppendValue(array.get(), HLMakeCFString(text).get());
  return HLCFRef<CFArrayRef>::retaining(array.get());
}

// Whether one read of any attribute would fail in the same way, without being tried.
bool concernsWholeElement(AXError error) {
  return error == kAXErrorInvalidUIElement || error == kAXErrorCannotComplete || error == kAXErrorAPIDisabled;
}

class Element : public HLElement {
 public:
  explicit Element(AXUIElementRef element) : element_(HLCFRef<AXUIElementRef>::retaining(element)) {}

  [[nodiscard]] AXUIElementRef system() const { return element_.get(); }

  [[nodiscard]] HLAttribute copyAttributeValue(std::string_view name) const override {
    @autoreleasepool {
      CFTypeRef value = nullptr;
      const AXError error = AXUIElementCopyAttributeValue(system(), HLMakeCFString(name).get(), &value);
      const HLCFRef<CFTypeRef> owner(value);
      return {error, error == kAXErrorSuccess ? HLValueOfObject(value) : HLValue()};
    }
  }

  [[nodiscard]] HLElementFacts copyFacts() const override;

  [[nodiscard]] HLActionList copyActionNames() const override {
    @autoreleasepool {
      CFArrayRef names = nullptr;
      const AXError error = AXUIElementCopyActionNames(system(), &names);
      const HLCFRef<CFArrayRef> owner(names);
      HLActionList list{error, {}};
      if (error != kAXErrorSuccess || names == nullptr) return list;
      for (CFIndex i = 0; i < CFArrayGetCount(names); ++i) {
        // The other process says what stands there.
        const HLValue name = HLValueOfObject(CFArrayGetValueAtIndex(names, i));
        if (const std::string* text = name.as<std::string>()) list.names.push_back(*text);
      }
      return list;
    }
  }

  [[nodiscard]] HLAXError performAction(std::string_view action) const override {
    @autoreleasepool {
      return AXUIElementPerformAction(system(), HLMakeCFString(action).get());
    }
  }

  [[nodiscard]] bool isEqual(const HLElement& other) const override {
    const AXUIElementRef element = HLSystemElement(other);
    return element != nullptr && CFEqual(system(), element);
  }

  [[nodiscard]] std::size_t hash() const override { return CFHash(system()); }

 private:
  // The answer in one place of the array that a read of several attributes brings.
  [[nodiscard]] HLAttribute attribute(std::string_view name, CFTypeRef value) const {
    // A null there says only that there is no answer, and not why.
    if (CFGetTypeID(value) == CFNullGetTypeID()) return copyAttributeValue(name);
    if (CFGetTypeID(value) == AXValueGetTypeID()) {
      const auto* boxed = static_cast<AXValueRef>(value);
      AXError error = kAXErrorSuccess;
      if (AXValueGetType(boxed) == kAXValueTypeAXError && AXValueGetValue(boxed, kAXValueTypeAXError, &error)) {
        return {error, {}};
      }
    }
    return {kAXErrorSuccess, HLValueOfObject(value)};
  }

  const HLCFRef<AXUIElementRef> element_;
};

HLElementFacts Element::copyFacts() const {
  @autoreleasepool {
    CFArrayRef copied = nullptr;
    const AXError error = AXUIElementCopyMultipleAttributeValues(system(), arrayOfStrings(HLFactAttributeNames).get(),
                                                                 AXCopyMultipleAttributeOptions(0), &copied);
    const HLCFRef<CFArrayRef> values(copied);
    const auto& names = HLFactAttributeNames;
    const bool isComplete =
        error == kAXErrorSuccess && copied != nullptr && CFArrayGetCount(copied) == std::ssize(names);
    if (!isComplete && !concernsWholeElement(error)) return HLElement::copyFacts();
    HLElementFacts facts;
    if (isComplete) {
      facts = HLFactsFromAttributes([&](std::string_view name) {
        const CFIndex index = std::find(names.begin(), names.end(), name) - names.begin();
        return attribute(name, CFArrayGetValueAtIndex(copied, index));
      });
    }
    facts.actionNames = HLNamesFromActionList(copyActionNames());
    return facts;
  }
}

}  // namespace

HLElementRef HLMakeElement(AXUIElementRef element) { return std::make_shared<Element>(element); }

AXUIElementRef HLSystemElement(const HLElement& element) {
  const auto* ours = dynamic_cast<const Element*>(&element);
  return ours == nullptr ? nullptr : ours->system();
}
