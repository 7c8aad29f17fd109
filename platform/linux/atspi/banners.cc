#include "platform/linux/atspi/banners.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/linux/atspi/close_words.h"
#include "platform/text.h"

namespace {

const HLRawNode& at(const HLRawTree& tree, int index) { return tree[static_cast<std::size_t>(index)]; }

bool isButton(const HLRawNode& node) { return node.role == HLRawRole::pushButton; }

bool isLabel(const HLRawNode& node) { return node.is(HLRoleTrait::kLabel); }

// Its labels are what it asks for, such as a reply, no texts of the notification.
bool isTextField(const HLRawNode& node) { return node.role == HLRawRole::text; }

bool hasBannerRole(const HLRawNode& node) {
  return node.isShowing() && (node.role == HLRawRole::notification || node.role == HLRawRole::alert);
}

// Visits the node and its descendants in tree order. Returning false from `visit` prunes that subtree.
template <class Visit>
void walk(const HLRawTree& tree, int index, const Visit& visit) {
  if (!visit(index)) return;
  for (int child : at(tree, index).children) walk(tree, child, visit);
}

template <class Test>
bool anyBelow(const HLRawTree& tree, int index, const Test& test) {
  return std::any_of(at(tree, index).children.begin(), at(tree, index).children.end(),
                     [&](int child) { return test(at(tree, child)) || anyBelow(tree, child, test); });
}

HLBanner bannerAt(const HLRawTree& tree, int index) {
  HLBanner banner;
  banner.node = index;
  walk(tree, index, [&](int i) {
    const bool button = i != index && isButton(at(tree, i));
    if (button) banner.buttons.push_back(i);
    if (!button && isLabel(at(tree, i))) banner.labels.push_back(i);
    return !button && !isLabel(at(tree, i)) && !isTextField(at(tree, i));
  });
  return banner;
}

bool holdsText(const HLRawTree& tree, const HLBanner& banner) {
  return std::any_of(banner.labels.begin(), banner.labels.end(),
                     [&](int label) { return !at(tree, label).name.empty(); });
}

// ---------------------------------------------------------------------------------------------------------------------
// Close controls

// Whether the frame is small and roughly square, as icons are and texts are not. Scaled desktops report up to twice the
// icon's size.
bool hasIconShape(const HLRect& frame) {
  constexpr double kSide = 64;
  constexpr double kStretch = 1.35;
  return frame.width > 0 && frame.height > 0 && frame.height <= kSide && frame.width <= kSide &&
         frame.width <= kStretch * frame.height && frame.height <= kStretch * frame.width;
}

// Whether the button is at the left or right edge and not below the middle. The application's buttons are below the
// text.
bool isInUpperCorner(const HLRect& button, const HLRect& banner) {
  const double margin = std::max(48.0, banner.width / 8);
  const bool left = std::abs(button.x - banner.x) <= margin;
  const bool right = std::abs(banner.maxX() - button.maxX()) <= margin;
  return (left || right) && button.y + button.height / 2 <= banner.y + banner.height / 2 + 1;
}

bool showsText(const HLRawTree& tree, int button) {
  return anyBelow(tree, button,
                  [](const HLRawNode& node) { return isLabel(node) && node.isShowing() && !node.name.empty(); });
}

// The evidence that a button closes the banner, from 4 (its description says so) to 1 (an unnamed icon in an upper
// corner).
struct Certainty {
  int rank = 0;          // 0 is not a close control
  std::string_view why;  // of rank 0, for reports
};

Certainty certainty(const HLRawTree& tree, const HLBanner& banner, int index) {
  const HLRawNode& button = at(tree, index);
  if (std::none_of(button.actions.begin(), button.actions.end(), HLIsPressAction))
    return {0, "it has no action that presses it"};
  const std::string name = HLLowercase(HLTrim(button.name));
  const std::string description = HLLowercase(HLTrim(button.description));
  const bool named = HLIsCloseName(name) || HLIsCloseGlyph(name);
  if (HLMentionsClosing(description) && (name.empty() || named)) return {4, ""};
  const std::optional<HLRect>& frame = button.extents;
  const std::optional<HLRect>& whole = at(tree, banner.node).extents;
  if (!frame || !whole) return {0, "its place is not known"};
  if (!hasIconShape(*frame)) return {0, "it is not small and square like an icon"};
  if (!isInUpperCorner(*frame, *whole)) return {0, "it is in no upper corner of the banner"};
  if (HLIsCloseGlyph(name)) return {3, ""};
  if (HLIsCloseName(name)) {
    return showsText(tree, index) ? Certainty{0, "it shows its name as text, like an application's button"}
                                  : Certainty{2, ""};
  }
  return name.empty() && description.empty() ? Certainty{1, ""} : Certainty{0, "its name is no word for closing"};
}

// ---------------------------------------------------------------------------------------------------------------------
// Banners without the role notification or alert

// Whether the button could be a close control. Uses no extents.
bool mayClose(const HLRawNode& button) {
  const std::string name = HLLowercase(HLTrim(button.name));
  return name.empty() || HLIsCloseName(name) || HLIsCloseGlyph(name);
}

bool mayBeWholeBanner(const HLRawTree& tree, int index) {
  const HLBanner banner = bannerAt(tree, index);
  return holdsText(tree, banner) && std::any_of(banner.buttons.begin(), banner.buttons.end(),
                                                [&](int button) { return mayClose(at(tree, button)); });
}

bool isContent(const HLRawNode& node) { return isButton(node) || (isLabel(node) && !node.name.empty()); }

struct Content {
  std::vector<int> parts;    // children that are or contain a button or a text
  std::vector<int> banners;  // those of the parts that could be a whole banner
};

Content contentOf(const HLRawTree& tree, int index) {
  Content content;
  for (int child : at(tree, index).children) {
    const HLRawNode& node = at(tree, child);
    if (!node.isShowing() || (!isContent(node) && !anyBelow(tree, child, isContent))) continue;
    content.parts.push_back(child);
    if (mayBeWholeBanner(tree, child)) content.banners.push_back(child);
  }
  return content;
}

// A shell's window may have no other roles than notifications use, but has many more elements.
constexpr int kBannerNodes = 100;

int countNodes(const HLRawTree& tree, int index) {
  int count = 0;
  walk(tree, index, [&count](int) { return ++count <= kBannerNodes; });
  return count;
}

// Adds the banners at and below a node. A window may contain several banners, one per child. No single banner has two
// parts that each contain a text and a possible close control.
void findByStructure(const HLRawTree& tree, int index, std::vector<HLBanner>& found) {
  const Content content = contentOf(tree, index);
  if (content.banners.size() >= 2) {
    for (int child : content.banners) findByStructure(tree, child, found);
    return;
  }
  if (content.parts.size() == 1) {
    const int only = content.parts.front();
    const bool isEnd = isLabel(at(tree, only)) || (isButton(at(tree, only)) && content.banners.empty());
    if (!isEnd) return findByStructure(tree, only, found);
  }
  HLBanner banner = bannerAt(tree, index);
  if (holdsText(tree, banner) && countNodes(tree, index) <= kBannerNodes) found.push_back(std::move(banner));
}

// Banners are at most four levels below their window. GNOME gives the same role to the entries of its message list,
// which show while the list is open, and are more than twelve levels below.
constexpr int kBannerLevels = 8;

// Adds the nodes with a banner role, down to `levels` below the node, that contain no other such node.
void findByRole(const HLRawTree& tree, int index, int levels, std::vector<int>& found) {
  const HLRawNode& node = at(tree, index);
  if (hasBannerRole(node) && !anyBelow(tree, index, hasBannerRole)) {
    found.push_back(index);
    return;
  }
  if (levels == 0) return;
  for (int child : node.children) findByRole(tree, child, levels - 1, found);
}

// Returns the node that contains the whole banner: the node with the banner role, or its window. Some servers give the
// role to the text only and put the close control beside it. Such a window contains no other compound element.
int wholeBanner(const HLRawTree& tree, int index, std::size_t inWindow) {
  const int parent = at(tree, index).parent;
  const bool alone = inWindow == 1 && parent > 0 && at(tree, parent).parent == 0;
  if (!alone || mayBeWholeBanner(tree, index)) return index;
  for (int sibling : at(tree, parent).children) {
    const HLRawNode& beside = at(tree, sibling);
    const bool simple = isButton(beside) || isLabel(beside) || isTextField(beside);
    if (sibling != index && !simple && anyBelow(tree, sibling, isContent)) return index;
  }
  return parent;
}

bool isPlain(const HLRawTree& tree, int window) {
  bool plain = true;
  walk(tree, window, [&](int index) {
    plain &= at(tree, index).is(HLRoleTrait::kPlain);
    // Servers offer many actions as a combo box, whose items may have any role.
    return plain && at(tree, index).role != HLRawRole::comboBox;
  });
  return plain;
}

// ---------------------------------------------------------------------------------------------------------------------
// Texts

bool hasText(const HLRawNode& label) { return label.isVisible() && !HLTrim(label.name).empty(); }

// Sorts by position, since some toolkits list labels in no order. Labels without extents (scrolled away) come last.
std::vector<std::string> textsInReadingOrder(const HLRawTree& tree, const HLBanner& banner) {
  std::vector<int> labels;
  std::copy_if(banner.labels.begin(), banner.labels.end(), std::back_inserter(labels),
               [&](int label) { return hasText(at(tree, label)); });
  std::stable_sort(labels.begin(), labels.end(), [&](int a, int b) {
    const std::optional<HLRect>& first = at(tree, a).extents;
    const std::optional<HLRect>& second = at(tree, b).extents;
    if (!first || !second) return first && !second;
    return first->y != second->y ? first->y < second->y : first->x < second->x;
  });
  std::vector<std::string> texts;
  for (int label : labels) texts.emplace_back(HLTrim(at(tree, label).name));
  return texts;
}

// Whether the first text is the application's name. Servers that show the name have three labels from there on: name,
// title and body, the last possibly empty and hidden. An empty label before them is the icon.
bool namesApplication(const HLRawTree& tree, const HLBanner& banner) {
  const auto first =
      std::find_if(banner.labels.begin(), banner.labels.end(), [&](int label) { return hasText(at(tree, label)); });
  return std::count_if(first, banner.labels.end(),
                       [&](int label) { return at(tree, label).isVisible() || at(tree, label).name.empty(); }) >= 3;
}

// Returns the node with a banner role whose name and description repeat title and body, or nullptr.
const HLRawNode* nodeWithOwnTexts(const HLRawTree& tree, int index) {
  const HLRawNode& node = at(tree, index);
  if (hasBannerRole(node) && !node.name.empty() && !node.description.empty()) return &node;
  for (int child : node.children) {
    if (const HLRawNode* found = nodeWithOwnTexts(tree, child)) return found;
  }
  return nullptr;
}

struct BannerTexts {
  std::string application;
  std::string title;
  std::vector<std::string> body;
};

BannerTexts textsOf(const HLRawTree& tree, const HLBanner& banner) {
  const std::vector<std::string> texts = textsInReadingOrder(tree, banner);
  const HLRawNode* marked = nodeWithOwnTexts(tree, banner.node);
  BannerTexts parts;
  parts.title = marked == nullptr ? "" : marked->name;
  auto rest = texts.begin();
  if (const auto known = std::find(rest, texts.end(), parts.title); marked != nullptr && known != texts.end()) {
    if (known != rest) parts.application = *rest;
    rest = known + 1;
  } else if (!texts.empty()) {
    if (namesApplication(tree, banner)) parts.application = *rest++;
    parts.title = rest == texts.end() ? "" : *rest++;
  }
  parts.body.assign(rest, texts.end());
  if (parts.body.empty() && marked != nullptr) parts.body.push_back(marked->description);
  return parts;
}

}  // namespace

bool HLIsPressAction(std::string_view name) {
  const std::string lower = HLLowercase(name);
  return lower == "click" || lower == "press" || lower == "activate";
}

std::vector<HLBanner> HLFindBanners(const HLRawTree& tree) {
  std::vector<HLBanner> banners;
  std::vector<int> unmarked;
  bool onlyNotifications = true;
  for (int window : tree.empty() ? std::vector<int>() : tree.front().children) {
    if (!at(tree, window).isShowing()) continue;
    std::vector<int> marked;
    findByRole(tree, window, kBannerLevels, marked);
    for (int index : marked) banners.push_back(bannerAt(tree, wholeBanner(tree, index, marked.size())));
    if (marked.empty()) unmarked.push_back(window);
    onlyNotifications &= isPlain(tree, window);
  }
  // A desktop shell has other elements with a text and a close button, such as its list of windows.
  if (!onlyNotifications) return banners;
  for (int window : unmarked) findByStructure(tree, window, banners);
  return banners;
}

std::optional<HLRawAction> HLFindCloseControl(const HLRawTree& tree, const HLBanner& banner) {
  int best = 0;
  std::optional<HLRawAction> control;
  for (int button : banner.buttons) {
    const std::vector<std::string>& actions = at(tree, button).actions;
    const auto press = std::find_if(actions.begin(), actions.end(), HLIsPressAction);
    const int sure = certainty(tree, banner, button).rank;
    if (sure == 0 || sure < best) continue;
    // Of two equally likely buttons, one may be the application's, so neither is chosen.
    control.reset();
    if (sure > best) control = HLRawAction{button, static_cast<int>(press - actions.begin())};
    best = sure;
  }
  return control;
}

std::string_view HLCloseDoubt(const HLRawTree& tree, const HLBanner& banner, int button) {
  const Certainty found = certainty(tree, banner, button);
  return found.rank > 0 ? "another button is as likely or likelier" : found.why;
}

std::string HLBannerText(const HLRawTree& tree, const HLBanner& banner) {
  const BannerTexts texts = textsOf(tree, banner);
  std::string body;
  for (const std::string& text : texts.body) body += (body.empty() ? "" : " ") + text;
  return texts.application + ", " + texts.title + (body.empty() ? "" : ", " + body);
}

HLShownTexts HLBannerTexts(const HLRawTree& tree, const HLBanner& banner) {
  BannerTexts texts = textsOf(tree, banner);
  HLShownTexts shown = {std::move(texts.application), std::move(texts.title)};
  shown.insert(shown.end(), texts.body.begin(), texts.body.end());
  std::erase(shown, "");
  return shown;
}
