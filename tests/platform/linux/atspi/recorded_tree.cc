#include "tests/platform/linux/atspi/recorded_tree.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <utility>
#include <vector>

#include "platform/linux/atspi/raw_elements.h"

namespace {

// A role without a name is written as its number.
HLRawRole roleNamed(const std::string& name) {
  const auto* const found =
      std::find_if(HLRoles.begin(), HLRoles.end(), [&name](const HLRole& role) { return role.name == name; });
  return found != HLRoles.end() ? found->number : HLRawRole{static_cast<std::uint32_t>(std::stoul(name))};
}

HLRawNode parseNode(const std::string& line) {
  static const std::regex pattern(
      R"(^ *([a-z0-9 ]+?) '(.*?)'(?: / '(.*?)')?(?: \((hidden|covered)\))?(?: \[(-?\d+) (-?\d+) (\d+)x(\d+)\])?((?: <[^>]*>)*)$)");
  std::smatch parts;
  if (!std::regex_match(line, parts, pattern)) throw std::runtime_error("not a node: " + line);
  HLRawNode node;
  node.role = roleNamed(parts[1]);
  node.name = parts[2];
  node.description = parts[3];
  node.states = parts[4] == "covered" ? HLRawState::kVisible : parts[4] == "hidden" ? 0 : HLRawState::kShowing;
  if (parts[5].matched) {
    node.extents = HLRect{std::stod(parts[5]), std::stod(parts[6]), std::stod(parts[7]), std::stod(parts[8])};
  }
  static const std::regex action("<([^>]*)>");
  const std::string actions = parts[9];
  for (std::sregex_iterator i(actions.begin(), actions.end(), action), end; i != end; ++i)
    node.actions.push_back((*i)[1]);
  node.hasActions = !node.actions.empty();
  node.hasExtents = node.extents.has_value();
  return node;
}

}  // namespace

HLRawTree ParseTree(std::string_view text) {
  HLRawTree tree(1);
  std::vector<int> path = {0};  // the ancestors of the next line
  std::istringstream lines{std::string(text)};
  for (std::string line; std::getline(lines, line);) {
    if (line.find_first_not_of(' ') == std::string::npos || line.front() == '#') continue;
    const std::size_t depth = line.find_first_not_of(' ') / 2;
    if (depth + 1 > path.size()) throw std::runtime_error("no parent: " + line);
    path.resize(depth + 1);
    const int index = static_cast<int>(tree.size());
    HLRawNode node = parseNode(line);
    node.path = "/" + std::to_string(index);
    node.parent = path.back();
    tree[static_cast<std::size_t>(path.back())].children.push_back(index);
    tree.push_back(std::move(node));
    path.push_back(index);
  }
  return tree;
}

std::string PrintTree(const HLRawTree& tree) {
  std::string text;
  for (const HLRawElement& element : HLRawElementsOf(tree)) text += HLRawElementLine(element) + "\n";
  return text;
}

HLRawTree RecordedTree(const std::string& name) {
  std::ifstream file(std::string(HL_TREES) + "/" + name + ".txt");
  if (!file) throw std::runtime_error("no such tree: " + name);
  return ParseTree(std::string{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
}
