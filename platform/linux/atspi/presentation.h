// An application's interface in the words of the home platform. All functions are pure.
#pragma once

#include <vector>

#include "platform/element_facts.h"
#include "platform/linux/atspi/banners.h"
#include "platform/linux/atspi/raw_tree.h"

// An action of a node in the raw tree.
struct HLPresentedAction {
  int node = -1;
  int action = 0;
};

struct HLPresentedNode {
  int raw = -1;  // the node that it stands for
  bool isBanner = false;
  HLElementFacts facts;  // without children: their handles exist only in a snapshot
  std::vector<int> children;
  std::vector<HLPresentedAction> actions;  // actions[i] performs facts.actionNames[i]
};

struct HLPresentation {
  std::vector<HLPresentedNode> nodes;
  std::vector<int> windows;
};

enum class HLProcessKind {
  notificationServer,  // only its banners can be pressed, and only by their close controls
  other,
};

// What a presentation will need of nodes beyond what HLReadTree brings: a round trip each, so only of those that can be
// acted on, and of what is around them.
struct HLNeededDetails {
  std::vector<int> extentsOf;
  std::vector<int> actionsOf;
};
[[nodiscard]] HLNeededDetails HLDetailsNeeded(const HLRawTree& tree, const std::vector<HLBanner>& banners,
                                              HLProcessKind kind);

// Each banner is one child of its window, before all others, with what it shows below it but for its close control. The
// banners are those that HLFindBanners found; none for processes of another kind.
[[nodiscard]] HLPresentation HLPresent(const HLRawTree& tree, const std::vector<HLBanner>& banners, HLProcessKind kind);
