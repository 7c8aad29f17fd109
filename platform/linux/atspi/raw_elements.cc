#include "platform/linux/atspi/raw_elements.h"

#include <sstream>
#include <string>

#include "platform/linux/atspi/close_words.h"
#include "platform/text.h"

namespace {

// A role without a name is written as its number.
std::string roleName(HLRawRole role) {
  const std::string_view name = HLRoleOf(role).name;
  return name.empty() ? std::to_string(static_cast<std::uint32_t>(role)) : std::string(name);
}

std::string detailsOf(const HLRawNode& node) {
  std::ostringstream details;
  if (!node.isShowing()) details << (node.isVisible() ? " (covered)" : " (hidden)");
  if (node.extents) {
    const HLRect& frame = *node.extents;
    details << " [" << frame.x << " " << frame.y << " " << frame.width << "x" << frame.height << "]";
  }
  for (const std::string& action : node.actions) details << " <" << action << ">";
  return details.str();
}

// Whether the adapter's words decide on the element. Of a text that only mentions closing, no more than those words
// would have to stay, but buttons say little else.
bool isJudgedByWords(const HLRawNode& node) {
  if (node.role != HLRawRole::pushButton) return false;
  const std::string name = HLLowercase(HLTrim(node.name));
  const bool isNamed = HLIsCloseName(name) || HLIsCloseGlyph(name);
  const bool isDescribed = node.description.empty() || HLMentionsClosing(HLLowercase(node.description));
  return (isNamed || name.empty()) && isDescribed;
}

void add(const HLRawTree& tree, int index, int depth, std::vector<HLRawElement>& elements) {
  const HLRawNode& node = tree[static_cast<std::size_t>(index)];
  elements.push_back({depth, roleName(node.role), node.name, node.description, detailsOf(node), isJudgedByWords(node)});
  for (int child : node.children) add(tree, child, depth + 1, elements);
}

}  // namespace

std::vector<HLRawElement> HLRawElementsOf(const HLRawTree& tree) {
  std::vector<HLRawElement> elements;
  if (tree.empty()) return elements;
  for (int window : tree.front().children) add(tree, window, 0, elements);
  return elements;
}
