// Finding notification banners, and the controls that close them, in the interface of a notification server. Servers
// are told apart by the structure of what they show, never by name. All functions are pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/atspi/raw_tree.h"

struct HLBanner {
  int node = -1;  // everything that belongs to the banner is at or below it
  // Below the node, in the order of the tree: what may say something, and what may be pressed. Neither of them looks
  // into the other.
  std::vector<int> labels;
  std::vector<int> buttons;
};

// The banners on screen, in the order of the tree. Needs no actions and no extents.
[[nodiscard]] std::vector<HLBanner> HLFindBanners(const HLRawTree& tree);

// What presses a banner's close control: one of its node's actions.
struct HLCloseControl {
  int node = -1;
  int action = 0;
};

// Needs the actions and extents of the banner and its buttons. Nothing when no control is beyond doubt the server's
// own: a button that the notifying application asked for must never be taken for it.
[[nodiscard]] std::optional<HLCloseControl> HLFindCloseControl(const HLRawTree& tree, const HLBanner& banner);

// "application, title, body", without what is missing at the end; the application is empty where the server hides it.
// Uses the extents of the labels, where they are known: some toolkits list them in no order.
[[nodiscard]] std::string HLBannerText(const HLRawTree& tree, const HLBanner& banner);

// Whether an action of that name is what a click does.
[[nodiscard]] bool HLIsPressAction(std::string_view name);
