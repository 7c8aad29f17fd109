// An application's interface in the words of the home platform. All functions are pure.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/geometry.h"
#include "platform/linux/atspi/banners.h"
#include "platform/linux/atspi/raw_tree.h"

struct HLPresentedAction {
  std::string name;
  int node = -1;  // whose action it is, and which
  int action = 0;
};

struct HLPresentedNode {
  int raw = -1;  // the node that it stands for
  bool isBanner = false;
  std::string role;
  std::string subrole;  // texts are "" where there is none
  std::string title;
  std::string description;
  std::string value;
  std::optional<HLRect> frame;
  std::vector<HLPresentedAction> actions;
  std::vector<int> children;
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
