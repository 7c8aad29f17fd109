// An application's elements as AT-SPI reports them, before they are mapped to AX terms.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/geometry.h"
#include "platform/linux/atspi/roles.h"

// Bits of AT-SPI's state set.
namespace HLRawState {
inline constexpr std::uint64_t kDefunct = 1ULL << 6;
inline constexpr std::uint64_t kShowing = 1ULL << 25;
inline constexpr std::uint64_t kVisible = 1ULL << 30;  // not hidden, but possibly covered or scrolled away
inline constexpr std::uint64_t kManagesDescendants = 1ULL << 31;
}  // namespace HLRawState

struct HLRawNode {
  std::string path;  // D-Bus object path in the application
  int parent = -1;
  std::vector<int> children;
  HLRawRole role = HLRawRole::invalid;
  std::uint64_t states = 0;
  std::string name;
  std::string description;
  bool hasActions = false;
  bool hasExtents = false;
  // Filled by HLReadDetails() only.
  std::vector<std::string> actions;
  std::optional<HLRect> extents;

  // Whether the role has the traits of HLRoleTrait.
  [[nodiscard]] bool is(unsigned traits) const { return HLRoleOf(role).has(traits); }
  [[nodiscard]] bool isVisible() const { return isShowing() || (states & HLRawState::kVisible) != 0; }
  [[nodiscard]] bool isShowing() const {
    return (states & HLRawState::kShowing) != 0 && (states & HLRawState::kDefunct) == 0;
  }
};

// Parents precede their children. Node 0 is the application.
using HLRawTree = std::vector<HLRawNode>;

// An action of a node, by its index in the node's list.
struct HLRawAction {
  int node = -1;
  int action = 0;
};
