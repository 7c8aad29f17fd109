#include "platform/linux/atspi/mapped_tree.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

#include "platform/text.h"

namespace {

constexpr std::string_view kCloseAction = "Name:Close";

// A child of the application is a window, whatever its AT-SPI role: Qt reports some windows as fillers.
HLRole roleOf(const HLRawNode& node) {
  HLRole role = HLRoleOf(node.role);
  if (node.parent != 0 || role.role == "AXWindow") return role;
  role.role = "AXWindow";
  role.subrole = node.role == HLRawRole::alert ? "AXDialog" : "AXStandardWindow";
  return role;
}

// Returns the AX name of an AT-SPI action. An action without one is named like an application's own: "Name:...".
std::string actionName(std::string_view name) {
  const std::string lower = HLLowercase(name);
  if (HLIsPressAction(lower)) return "AXPress";
  if (lower == "increase" || lower == "increment") return "AXIncrement";
  if (lower == "decrease" || lower == "decrement") return "AXDecrement";
  if (lower == "showmenu" || lower == "show menu" || lower == "menu") return "AXShowMenu";
  return "Name:" + std::string(name);
}

std::string textOf(const HLNotificationName& name) {
  const std::string text = name.number != 0 ? std::to_string(name.number) : name.application + " " + name.identifier;
  return "notification " + text;
}

std::string lastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

class Mapper {
 public:
  Mapper(const HLRawTree& tree, const std::vector<HLBanner>& banners, const HLClosingActions& closings,
         HLProcessKind kind)
      : tree_(tree), banners_(banners), closings_(closings), kind_(kind), isBanner_(tree.size(), false) {
    for (const HLBanner& banner : banners_) isBanner_[static_cast<std::size_t>(banner.node)] = true;
  }

  HLMappedTree map() {
    for (int window : raw(0).children) {
      if (!raw(window).isShowing()) continue;
      const int mapped = add(window);
      result_.windows.push_back(mapped);
      for (std::size_t i = 0; i < banners_.size(); ++i) {
        if (windowOf(banners_[i].node) == window) adopt(mapped, addBanner(banners_[i], closings_[i]));
      }
      if (!isBanner(window)) addChildren(mapped, window, kNone);
    }
    return std::move(result_);
  }

 private:
  static constexpr int kNone = -1;

  const HLRawNode& raw(int index) const { return tree_[static_cast<std::size_t>(index)]; }
  HLMappedNode& mapped(int index) { return result_.nodes[static_cast<std::size_t>(index)]; }
  bool isBanner(int index) const { return isBanner_[static_cast<std::size_t>(index)]; }

  int windowOf(int index) const {
    while (raw(index).parent > 0) index = raw(index).parent;
    return index;
  }

  void adopt(int parent, int child) { mapped(parent).children.push_back(child); }

  int add(int index) {
    const HLRawNode& node = raw(index);
    const HLRole role = roleOf(node);
    HLMappedNode& added = result_.nodes.emplace_back();
    added.raw = index;
    added.facts.role = role.role;
    added.facts.subrole = role.subrole;
    added.facts.description = node.description;
    added.facts.frame = frameOf(node);
    (role.role == "AXStaticText" ? added.facts.value : added.facts.title) = node.name;
    if (kind_ == HLProcessKind::other) addActions(added, node, index);
    return static_cast<int>(result_.nodes.size()) - 1;
  }

  // Of several actions with one name the first is mapped.
  static void addActions(HLMappedNode& added, const HLRawNode& node, int index) {
    for (std::size_t i = 0; i < node.actions.size(); ++i) {
      const std::string name = actionName(node.actions[i]);
      const std::vector<std::string>& known = added.facts.actionNames;
      if (std::find(known.begin(), known.end(), name) == known.end()) {
        addAction(added, name, HLRawAction{index, static_cast<int>(i)});
      }
    }
  }

  static void addAction(HLMappedNode& added, std::string_view name, const HLMappedAction& action) {
    added.facts.actionNames.emplace_back(name);
    added.actions.push_back(action);
  }

  static HLRect frameOf(const HLRawNode& node) {
    if (!node.extents) return {};
    return HLFrameFromPointAndSize({node.extents->x, node.extents->y}, {node.extents->width, node.extents->height});
  }

  int addBanner(const HLBanner& banner, const std::optional<HLMappedAction>& closing) {
    const int index = static_cast<int>(result_.nodes.size());
    HLMappedNode& added = result_.nodes.emplace_back();
    added.raw = banner.node;
    added.isBanner = true;
    added.facts.role = "AXGroup";
    added.facts.subrole = HLBannerSubrole;
    added.facts.description = HLBannerText(tree_, banner);
    added.facts.frame = frameOf(raw(banner.node));
    if (closing) addAction(added, kCloseAction, *closing);
    const auto* name = closing ? std::get_if<HLNotificationName>(&*closing) : nullptr;
    const auto* control = closing ? std::get_if<HLRawAction>(&*closing) : nullptr;
    if (name != nullptr) added.facts.roleDescription = textOf(*name);
    if (control != nullptr) added.facts.roleDescription = "banner " + lastPart(raw(banner.node).path);
    addChildren(index, banner.node, control != nullptr ? control->node : kNone);
    return index;
  }

  void addChildren(int parent, int index, int except) {
    for (int child : raw(index).children) {
      if (child == except || isBanner(child)) continue;
      const int added = add(child);
      adopt(parent, added);
      addChildren(added, child, except);
    }
  }

  const HLRawTree& tree_;
  const std::vector<HLBanner>& banners_;
  const HLClosingActions& closings_;
  const HLProcessKind kind_;
  std::vector<bool> isBanner_;
  HLMappedTree result_;
};

}  // namespace

HLNeededDetails HLDetailsNeeded(const HLRawTree& tree, const std::vector<HLBanner>& banners, HLProcessKind kind) {
  HLNeededDetails needed;
  std::vector<bool> asked(tree.size(), false);
  const auto extents = [&](int index) {
    const auto at = static_cast<std::size_t>(index);
    if (tree[at].hasExtents && !asked[at]) needed.extentsOf.push_back(index);
    asked[at] = true;
  };
  if (kind == HLProcessKind::notificationServer) {
    for (int window : tree.front().children) extents(window);
    for (const HLBanner& banner : banners) {
      extents(banner.node);
      for (int label : banner.labels) extents(label);
      for (int button : banner.buttons) extents(button);
      std::copy_if(banner.buttons.begin(), banner.buttons.end(), std::back_inserter(needed.actionsOf),
                   [&](int button) { return tree[static_cast<std::size_t>(button)].hasActions; });
    }
    return needed;
  }
  // Hidden elements cannot be pressed. Only windows and elements with actions need extents.
  for (std::size_t i = 1; i < tree.size(); ++i) {
    if (!tree[i].isShowing()) continue;
    if (tree[i].hasActions) needed.actionsOf.push_back(static_cast<int>(i));
    if (tree[i].hasActions || tree[i].parent == 0) extents(static_cast<int>(i));
  }
  return needed;
}

HLMappedTree HLMapTree(const HLRawTree& tree, const std::vector<HLBanner>& banners, const HLClosingActions& closings,
                       HLProcessKind kind) {
  return Mapper(tree, banners, closings, kind).map();
}

std::string_view HLCloseDoubt(const HLRawTree& tree, const HLMappedNode& node) {
  if (!node.actions.empty() || (!node.isBanner && node.facts.role != "AXButton")) return "";
  for (const HLBanner& banner : HLFindBanners(tree)) {
    if (node.isBanner && banner.node == node.raw) {
      return banner.buttons.empty() ? "it has no button" : "no button is certainly the server's own";
    }
    const bool isPart = std::find(banner.buttons.begin(), banner.buttons.end(), node.raw) != banner.buttons.end();
    if (!node.isBanner && isPart) return HLCloseDoubt(tree, banner, node.raw);
  }
  return "";
}
