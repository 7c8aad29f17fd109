// The attributes that one visit of an element reads, as typed values.
#pragma once

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/geometry.h"
#include "platform/value.h"

struct HLAttribute;
struct HLActionList;

struct HLElementFacts {
  // Missing texts are "".
  std::string role;
  std::string subrole;
  std::string roleDescription;
  std::string title;
  std::string description;
  std::string value;
  std::string identifier;
  HLRect frame;  // null unless position and size are known and the size is positive
  // The elements of all HLChildAttributes. An element that is listed twice is here twice.
  std::vector<HLElementRef> children;
  std::vector<std::string> actionNames;
};

struct HLTextAttribute {
  std::string_view name;
  std::string HLElementFacts::*text;
};

inline constexpr std::array<HLTextAttribute, 7> HLTextAttributes = {{
    {"AXRole", &HLElementFacts::role},
    {"AXSubrole", &HLElementFacts::subrole},
    {"AXRoleDescription", &HLElementFacts::roleDescription},
    {"AXTitle", &HLElementFacts::title},
    {"AXDescription", &HLElementFacts::description},
    {"AXValue", &HLElementFacts::value},
    {"AXIdentifier", &HLElementFacts::identifier},
}};
inline constexpr std::string_view HLPositionAttributeName = "AXPosition";
inline constexpr std::string_view HLSizeAttributeName = "AXSize";
inline constexpr std::array<std::string_view, 3> HLChildAttributes = {"AXChildren", "AXRows", "AXVisibleChildren"};

// Every attribute that HLFactsFromAttributes() reads.
inline constexpr auto HLFactAttributeNames = [] {
  std::array<std::string_view, HLTextAttributes.size() + 2 + HLChildAttributes.size()> names;
  auto* next = names.begin();
  for (const HLTextAttribute& attribute : HLTextAttributes) *next++ = attribute.name;
  *next++ = HLPositionAttributeName;
  *next++ = HLSizeAttributeName;
  std::copy(HLChildAttributes.begin(), HLChildAttributes.end(), next);
  return names;
}();

// Builds facts without action names. Calls `read` once per name of HLFactAttributeNames. An attribute with an error or
// of another type is missing.
[[nodiscard]] HLElementFacts HLFactsFromAttributes(const std::function<HLAttribute(std::string_view name)>& read);

// A string as is, a number or boolean in decimal; else nullopt.
[[nodiscard]] std::optional<std::string> HLStringFromAttribute(HLAttribute attribute);

// (NaN, NaN) when missing.
[[nodiscard]] HLPoint HLPointFromAttribute(const HLAttribute& attribute);
[[nodiscard]] HLSize HLSizeFromAttribute(const HLAttribute& attribute);

// The null rectangle unless all four values are known and the size is positive. Negative coordinates are valid: screens
// may lie left of or above the main screen.
[[nodiscard]] HLRect HLFrameFromPointAndSize(HLPoint point, HLSize size);

// The elements of a list, in order; members of other types and null elements are skipped.
[[nodiscard]] std::vector<HLElementRef> HLElementsFromAttribute(const HLAttribute& attribute);

// Empty on an error.
[[nodiscard]] std::vector<std::string> HLNamesFromActionList(HLActionList actions);
