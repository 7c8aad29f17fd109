#include "core/scan/element_access.h"

#include <cmath>
#include <limits>

#include "platform/platform.h"
#include "platform/text.h"

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

bool isPresent(const HLAttribute& attribute) {
  return attribute.error == HLAXErrorSuccess && !attribute.value.isMissing();
}

}  // namespace

std::optional<std::string> HLStringFromAttribute(const HLAttribute& attribute) {
  if (!isPresent(attribute)) return std::nullopt;
  if (const std::string* text = attribute.value.as<std::string>()) return *text;
  return HLNumberText(attribute.value);
}

HLPoint HLPointFromAttribute(const HLAttribute& attribute) {
  const HLPoint* point = isPresent(attribute) ? attribute.value.as<HLPoint>() : nullptr;
  return point != nullptr ? *point : HLPoint{kUnknown, kUnknown};
}

HLSize HLSizeFromAttribute(const HLAttribute& attribute) {
  const HLSize* size = isPresent(attribute) ? attribute.value.as<HLSize>() : nullptr;
  return size != nullptr ? *size : HLSize{kUnknown, kUnknown};
}

HLRect HLFrameFromPointAndSize(HLPoint point, HLSize size) {
  const bool unknown = std::isnan(point.x) || std::isnan(point.y) || std::isnan(size.width) || std::isnan(size.height);
  if (unknown || size.width <= 0 || size.height <= 0) return HLRect{};
  return HLRect{point.x, point.y, size.width, size.height};
}

std::vector<HLElementRef> HLElementsFromAttribute(const HLAttribute& attribute) {
  const HLArray* members = isPresent(attribute) ? attribute.value.as<HLArray>() : nullptr;
  std::vector<HLElementRef> elements;
  if (members == nullptr) return elements;
  elements.reserve(members->size());
  for (const HLValue& member : *members) {
    const HLElementRef* element = member.as<HLElementRef>();
    if (element != nullptr && *element != nullptr) elements.push_back(*element);
  }
  return elements;
}

std::optional<HLValue> HLCopyAttribute(const HLElement& element, std::string_view name) {
  HLAttribute attribute = element.copyAttributeValue(name);
  if (!isPresent(attribute)) return std::nullopt;
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
  HLActionList actions = element.copyActionNames();
  if (actions.error != HLAXErrorSuccess) return {};
  return std::move(actions.names);
}

HLPoint HLPointAttribute(const HLElement& element, std::string_view name) {
  return HLPointFromAttribute(element.copyAttributeValue(name));
}

HLSize HLSizeAttribute(const HLElement& element, std::string_view name) {
  return HLSizeFromAttribute(element.copyAttributeValue(name));
}

bool HLIsNotificationBannerSubrole(std::string_view subrole) {
  return HLLowercase(subrole).find("axnotificationcenter") != std::string::npos;
}

bool HLIsAccessibilityTrusted(bool prompt) { return HLCurrentPlatform().accessibility->isProcessTrusted(prompt); }
