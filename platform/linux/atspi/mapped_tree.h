// An application's elements in AX terms. All functions are pure.
#pragma once

#include <string_view>
#include <vector>

#include "platform/element_facts.h"
#include "platform/linux/atspi/banners.h"
#include "platform/linux/atspi/raw_tree.h"

inline constexpr std::string_view HLBannerSubrole = "AXNotificationCenterAlert";

// An action of a raw node.
struct HLMappedAction {
  int node = -1;
  int action = 0;
};

struct HLMappedNode {
  int raw = -1;  // index in the raw tree; a banner and its window may have the same
  bool isBanner = false;
  HLElementFacts facts;  // without children: their handles exist only in a snapshot
  std::vector<int> children;
  std::vector<HLMappedAction> actions;  // actions[i] performs facts.actionNames[i]
};

struct HLMappedTree {
  std::vector<HLMappedNode> nodes;
  std::vector<int> windows;
};

enum class HLProcessKind {
  notificationServer,  // only its banners have an action, which presses their close control
  other,
};

// The nodes of which HLMapTree() needs more than HLReadTree() reads. Each entry costs a round trip.
struct HLNeededDetails {
  std::vector<int> extentsOf;
  std::vector<int> actionsOf;
};
[[nodiscard]] HLNeededDetails HLDetailsNeeded(const HLRawTree& tree, const std::vector<HLBanner>& banners,
                                              HLProcessKind kind);

// Maps the windows that are showing. Each banner is a child of its window, before all others; its close control is left
// out below it. `banners` are those of HLFindBanners(), empty for other kinds of process.
[[nodiscard]] HLMappedTree HLMapTree(const HLRawTree& tree, const std::vector<HLBanner>& banners, HLProcessKind kind);
