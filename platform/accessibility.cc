#include "platform/accessibility.h"

std::vector<HLAttribute> HLElement::copyAttributeValues(std::span<const std::string_view> names) const {
  std::vector<HLAttribute> attributes;
  attributes.reserve(names.size());
  for (std::string_view name : names) attributes.push_back(copyAttributeValue(name));
  return attributes;
}
