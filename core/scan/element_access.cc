#include "core/scan/element_access.h"

#include <utility>

#include "platform/platform.h"
#include "platform/text.h"

std::optional<HLValue> HLCopyAttribute(const HLElement& element, std::string_view name) {
  HLAttribute attribute = element.copyAttributeValue(name);
  if (attribute.error != HLAXErrorSuccess || attribute.value.isMissing()) return std::nullopt;
  return std::move(attribute.value);
}

std::optional<std::string> HLStringAttribute(const HLElement& element, std::string_view name) {
  return HLStringFromAttribute(element.copyAttributeValue(name));
}

HLElementRef HLElementAttribute(const HLElement& element, std::string_view name) {
  const std::optional<HLValue> value = HLCopyAttribute(element, name);
  const HLElementRef* held = value ? value->as<HLElementRef>() : nullptr;
  return held == nullptr ? nullptr : *held;
}

std::vector<std::string> HLActionNames(const HLElement& element) {
  return HLNamesFromActionList(element.copyActionNames());
}

HLPoint HLPointAttribute(const HLElement& element, std::string_view name) {
  return HLPointFromAttribute(element.copyAttributeValue(name));
}

HLSize HLSizeAttribute(const HLElement& element, std::string_view name) {
  return HLSizeFromAttribute(element.copyAttributeValue(name));
}

HLRect HLFrameForElement(const HLElement& element) { return element.copyFacts().frame; }

bool HLIsNotificationBannerSubrole(std::string_view subrole) {
  return HLLowercase(subrole).find("axnotificationcenter") != std::string::npos;
}

bool HLIsAccessibilityTrusted(bool prompt) { return HLCurrentPlatform().accessibility->isProcessTrusted(prompt); }
