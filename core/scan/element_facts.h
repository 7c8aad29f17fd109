// What one visit of an element needs, read once. Everything derived from it is a pure function.
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
  // "AXChildren", "AXRows" and "AXVisibleChildren" one after the other; a child listed twice stands here twice.
  std::vector<HLElementRef> children;
};

[[nodiscard]] HLElementFacts HLReadElementFacts(const HLElement& element);

// The frame among them.
[[nodiscard]] HLRect HLFrameForElement(const HLElement& element);

// The element's own words: its seven texts, lower-cased and compacted, the non-empty ones joined by blanks.
[[nodiscard]] std::string HLSearchableContext(const HLElementFacts& facts);

// The same of role, subrole, role description and identifier only.
[[nodiscard]] std::string HLStructuralContext(const HLElementFacts& facts);
