// An application's elements in AX terms. All functions are pure.
#pragma once

#include <optional>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/element_facts.h"
#include "platform/linux/atspi/banners.h"
#include "platform/linux/atspi/raw_tree.h"
#include "platform/linux/notifications/open_notifications.h"

inline constexpr std::string_view HLBannerSubrole = "AXNotificationCenterAlert";

// What an action does: it presses an element, or closes a notification by its name.
using HLMappedAction = std::variant<HLRawAction, HLNotificationName>;

// At each banner's index what closes it; nullopt for a banner that is left alone.
using HLClosingActions = std::vector<std::optional<HLMappedAction>>;

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
  notificationServer,  // only its banners have an action, which closes them
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
// out below it. A banner that can be closed has the name of its notification, or else of its element, in its role
// description, which tells it from an equal banner that a server shows next in the same place. `banners` are those of
// HLFindBanners(), empty for other kinds of process.
[[nodiscard]] HLMappedTree HLMapTree(const HLRawTree& tree, const std::vector<HLBanner>& banners,
                                     const HLClosingActions& closings, HLProcessKind kind);

// Returns, for reports, why a banner has no close control or why a button of a banner is none; "" for any other node.
[[nodiscard]] std::string_view HLCloseDoubt(const HLRawTree& tree, const HLMappedNode& node);
