#include "platform/linux/atspi/presentation.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>
#include <utility>

#include "platform/text.h"

namespace {

constexpr std::string_view kBannerSubrole = "AXNotificationCenterAlert";
constexpr std::string_view kCloseAction = "Name:Close";

struct Role {
  std::uint32_t raw;
  std::string_view role;
  std::string_view subrole = "";
};

constexpr Role kRoles[] = {
    {HLRawRole::kAlert, "AXGroup", "AXApplicationAlert"},
    {HLRawRole::kApplication, "AXApplication"},
    {HLRawRole::kCheckBox, "AXCheckBox"},
    {HLRawRole::kCheckMenuItem, "AXMenuItem"},
    {HLRawRole::kComboBox, "AXComboBox"},
    {HLRawRole::kDialog, "AXWindow", "AXDialog"},
    {HLRawRole::kEntry, "AXTextField"},
    {HLRawRole::kFileChooser, "AXWindow", "AXDialog"},
    {HLRawRole::kFiller, "AXGroup"},
    {HLRawRole::kFrame, "AXWindow", "AXStandardWindow"},
    {HLRawRole::kGrouping, "AXGroup"},
    {HLRawRole::kHeading, "AXHeading"},
    {HLRawRole::kIcon, "AXImage"},
    {HLRawRole::kImage, "AXImage"},
    {HLRawRole::kLabel, "AXStaticText"},
    {HLRawRole::kLayeredPane, "AXGroup"},
    {HLRawRole::kLink, "AXLink"},
    {HLRawRole::kList, "AXList"},
    {HLRawRole::kListBox, "AXList"},
    {HLRawRole::kListItem, "AXGroup"},
    {HLRawRole::kMenu, "AXMenu"},
    {HLRawRole::kMenuBar, "AXMenuBar"},
    {HLRawRole::kMenuItem, "AXMenuItem"},
    {HLRawRole::kNotification, "AXGroup"},
    {HLRawRole::kPageTab, "AXRadioButton", "AXTabButton"},
    {HLRawRole::kPageTabList, "AXTabGroup"},
    {HLRawRole::kPanel, "AXGroup"},
    {HLRawRole::kParagraph, "AXStaticText"},
    {HLRawRole::kPasswordText, "AXTextField", "AXSecureTextField"},
    {HLRawRole::kPopupMenu, "AXMenu"},
    {HLRawRole::kProgressBar, "AXProgressIndicator"},
    {HLRawRole::kPushButton, "AXButton"},
    {HLRawRole::kRadioButton, "AXRadioButton"},
    {HLRawRole::kRadioMenuItem, "AXMenuItem"},
    {HLRawRole::kScrollBar, "AXScrollBar"},
    {HLRawRole::kScrollPane, "AXScrollArea"},
    {HLRawRole::kSection, "AXGroup"},
    {HLRawRole::kSeparator, "AXSplitter"},
    {HLRawRole::kSlider, "AXSlider"},
    {HLRawRole::kSpinButton, "AXIncrementor"},
    {HLRawRole::kSplitPane, "AXSplitGroup"},
    {HLRawRole::kStatic, "AXStaticText"},
    {HLRawRole::kTable, "AXTable"},
    {HLRawRole::kTableCell, "AXCell"},
    {HLRawRole::kTableRow, "AXRow"},
    {HLRawRole::kTearoffMenuItem, "AXMenuItem"},
    {HLRawRole::kText, "AXTextArea"},
    {HLRawRole::kToggleButton, "AXCheckBox", "AXToggle"},
    {HLRawRole::kToolBar, "AXToolbar"},
    {HLRawRole::kToolTip, "AXHelpTag"},
    {HLRawRole::kTree, "AXOutline"},
    {HLRawRole::kTreeItem, "AXRow", "AXOutlineRow"},
    {HLRawRole::kTreeTable, "AXOutline"},
    {HLRawRole::kViewport, "AXScrollArea"},
    {HLRawRole::kWindow, "AXWindow", "AXStandardWindow"},
};

// Every child of the application is a window, whatever it calls itself: some toolkits call theirs fillers.
Role roleOf(const HLRawNode& node) {
  const auto* const end = std::end(kRoles);
  const auto* const found =
      std::find_if(std::begin(kRoles), end, [&](const Role& role) { return role.raw == node.role; });
  const Role role = found == end ? Role{node.role, "AXUnknown"} : *found;
  if (node.parent != 0 || role.role == "AXWindow") return role;
  return {node.role, "AXWindow", node.role == HLRawRole::kAlert ? "AXDialog" : "AXStandardWindow"};
}

// An action that the home platform has no word for is presented as one that the application has named itself.
std::string actionName(std::string_view name) {
  const std::string lower = HLLowercase(name);
  if (HLIsPressAction(lower)) return "AXPress";
  if (lower == "increase" || lower == "increment") return "AXIncrement";
  if (lower == "decrease" || lower == "decrement") return "AXDecrement";
  if (lower == "showmenu" || lower == "show menu" || lower == "menu") return "AXShowMenu";
  return "Name:" + std::string(name);
}

class Presenter {
 public:
  Presenter(const HLRawTree& tree, const std::vector<HLBanner>& banners, HLProcessKind kind)
      : tree_(tree), banners_(banners), kind_(kind), isBanner_(tree.size(), false) {
    for (const HLBanner& banner : banners_) isBanner_[static_cast<std::size_t>(banner.node)] = true;
  }

  HLPresentation present() {
    for (int window : raw(0).children) {
      if (!raw(window).isShowing()) continue;
      const int presented = add(window);
      result_.windows.push_back(presented);
      for (const HLBanner& banner : banners_) {
        if (windowOf(banner.node) == window) adopt(presented, addBanner(banner));
      }
      if (!isBanner(window)) addChildren(presented, window, kNone);
    }
    return std::move(result_);
  }

 private:
  static constexpr int kNone = -1;

  const HLRawNode& raw(int index) const { return tree_[static_cast<std::size_t>(index)]; }
  HLPresentedNode& presented(int index) { return result_.nodes[static_cast<std::size_t>(index)]; }
  bool isBanner(int index) const { return isBanner_[static_cast<std::size_t>(index)]; }

  int windowOf(int index) const {
    while (raw(index).parent > 0) index = raw(index).parent;
    return index;
  }

  void adopt(int parent, int child) { presented(parent).children.push_back(child); }

  int add(int index) {
    const HLRawNode& node = raw(index);
    const Role role = roleOf(node);
    HLPresentedNode& added = result_.nodes.emplace_back();
    added.raw = index;
    added.facts.role = role.role;
    added.facts.subrole = role.subrole;
    added.facts.description = node.description;
    added.facts.frame = frameOf(node);
    (role.role == "AXStaticText" ? added.facts.value : added.facts.title) = node.name;
    if (kind_ == HLProcessKind::other) addActions(added, node, index);
    return static_cast<int>(result_.nodes.size()) - 1;
  }

  // A name that an element bears twice can be performed once.
  static void addActions(HLPresentedNode& added, const HLRawNode& node, int index) {
    for (std::size_t i = 0; i < node.actions.size(); ++i) {
      const std::string name = actionName(node.actions[i]);
      const std::vector<std::string>& known = added.facts.actionNames;
      if (std::find(known.begin(), known.end(), name) == known.end()) addAction(added, name, index, i);
    }
  }

  static void addAction(HLPresentedNode& added, std::string_view name, int node, std::size_t action) {
    added.facts.actionNames.emplace_back(name);
    added.actions.push_back({node, static_cast<int>(action)});
  }

  static HLRect frameOf(const HLRawNode& node) {
    if (!node.extents) return {};
    return HLFrameFromPointAndSize({node.extents->x, node.extents->y}, {node.extents->width, node.extents->height});
  }

  int addBanner(const HLBanner& banner) {
    const int index = static_cast<int>(result_.nodes.size());
    HLPresentedNode& added = result_.nodes.emplace_back();
    added.raw = banner.node;
    added.isBanner = true;
    added.facts.role = "AXGroup";
    added.facts.subrole = kBannerSubrole;
    added.facts.description = HLBannerText(tree_, banner);
    added.facts.frame = frameOf(raw(banner.node));
    const std::optional<HLCloseControl> control = HLFindCloseControl(tree_, banner);
    if (control) addAction(added, kCloseAction, control->node, static_cast<std::size_t>(control->action));
    addChildren(index, banner.node, control ? control->node : kNone);
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
  const HLProcessKind kind_;
  std::vector<bool> isBanner_;
  HLPresentation result_;
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
  // Nobody can press what is hidden; and where something is, matters for windows and for what can be pressed only.
  for (std::size_t i = 1; i < tree.size(); ++i) {
    if (!tree[i].isShowing()) continue;
    if (tree[i].hasActions) needed.actionsOf.push_back(static_cast<int>(i));
    if (tree[i].hasActions || tree[i].parent == 0) extents(static_cast<int>(i));
  }
  return needed;
}

HLPresentation HLPresent(const HLRawTree& tree, const std::vector<HLBanner>& banners, HLProcessKind kind) {
  return Presenter(tree, banners, kind).present();
}
