// The attributes that one visit of an element needs, read once. Everything derived from them is a pure function.
#pragma once

#include <string>
#include <vector>

#include "platform/accessibility.h"
#include "platform/geometry.h"

struct HLElementFacts {
  // Missing texts are "".
  std::string role;
  std::string subrole;
  std::string roleDescription;
  std::string title;
  std::string description;
  std::string value;
  std::string identifier;
  std::vector<std::string> actionNames;
  HLRect frame;
  // "AXChildren", then "AXRows", then "AXVisibleChildren"; a child in two of them is here twice.
  std::vector<HLElementRef> children;
};

[[nodiscard]] HLElementFacts HLReadElementFacts(const HLElement& element);

// Returns the frame of these attributes.
[[nodiscard]] HLRect HLFrameForElement(const HLElement& element);

// Returns the element's own words: its seven texts, lower-cased and compacted, the non-empty ones joined by spaces.
[[nodiscard]] std::string HLSearchableContext(const HLElementFacts& facts);

// The same of role, subrole, role description and identifier only.
[[nodiscard]] std::string HLStructuralContext(const HLElementFacts& facts);
