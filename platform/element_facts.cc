#include "platform/element_facts.h"

#include <cmath>
#include <limits>
#include <utility>
#include <variant>

#include "platform/accessibility.h"

namespace {

constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();

// The value as a T; nullptr when it is missing or of another type.
template <class T>
const T* valueOf(const HLAttribute& attribute) {
  return attribute.error == HLAXErrorSuccess ? attribute.value.as<T>() : nullptr;
}

}  // namespace

HLElementFacts HLFactsFromAttributes(const std::function<HLAttribute(std::string_view name)>& read) {
  HLElementFacts facts;
  for (const HLTextAttribute& attribute : HLTextAttributes) {
    facts.*attribute.text = HLStringFromAttribute(read(attribute.name)).value_or("");
  }
  const HLPoint position = HLPointFromAttribute(read(HLPositionAttributeName));
  facts.frame = HLFrameFromPointAndSize(position, HLSizeFromAttribute(read(HLSizeAttributeName)));
  for (std::string_view name : HLChildAttributes) {
    for (HLElementRef& child : HLElementsFromAttribute(read(name))) facts.children.push_back(std::move(child));
  }
  return facts;
}

std::optional<std::string> HLStringFromAttribute(HLAttribute attribute) {
  if (attribute.error != HLAXErrorSuccess) return std::nullopt;
  if (auto* text = std::get_if<std::string>(&attribute.value)) return std::move(*text);
  return HLNumberText(attribute.value);
}

HLPoint HLPointFromAttribute(const HLAttribute& attribute) {
  const auto* point = valueOf<HLPoint>(attribute);
  return point != nullptr ? *point : HLPoint{kUnknown, kUnknown};
}

HLSize HLSizeFromAttribute(const HLAttribute& attribute) {
  const auto* size = valueOf<HLSize>(attribute);
  return size != nullptr ? *size : HLSize{kUnknown, kUnknown};
}

HLRect HLFrameFromPointAndSize(HLPoint point, HLSize size) {
  const bool unknown = std::isnan(point.x) || std::isnan(point.y) || std::isnan(size.width) || std::isnan(size.height);
  if (unknown || size.width <= 0 || size.height <= 0) return HLRect{};
  return HLRect{point.x, point.y, size.width, size.height};
}

std::vector<HLElementRef> HLElementsFromAttribute(const HLAttribute& attribute) {
  std::vector<HLElementRef> elements;
  const auto* members = valueOf<HLArray>(attribute);
  if (members == nullptr) return elements;
  elements.reserve(members->size());
  for (const HLValue& member : *members) {
    const HLElementRef* element = member.as<HLElementRef>();
    if (element != nullptr && *element != nullptr) elements.push_back(*element);
  }
  return elements;
}

std::vector<std::string> HLNamesFromActionList(HLActionList actions) {
  if (actions.error != HLAXErrorSuccess) return {};
  return std::move(actions.names);
}
