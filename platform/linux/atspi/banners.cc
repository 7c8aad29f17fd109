#include "platform/linux/atspi/banners.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/text.h"

namespace {

const HLRawNode& at(const HLRawTree& tree, int index) { return tree[static_cast<std::size_t>(index)]; }

template <class Value, std::size_t size>
bool isOneOf(const Value (&values)[size], const Value& value) {
  return std::find(std::begin(values), std::end(values), value) != std::end(values);
}

bool isButton(const HLRawNode& node) { return node.role == HLRawRole::kPushButton; }

bool isLabel(const HLRawNode& node) {
  static constexpr std::uint32_t kLabels[] = {HLRawRole::kLabel, HLRawRole::kStatic, HLRawRole::kParagraph,
                                              HLRawRole::kHeading, HLRawRole::kSection};
  return isOneOf(kLabels, node.role);
}

bool hasBannerRole(const HLRawNode& node) {
  return node.isShowing() && (node.role == HLRawRole::kNotification || node.role == HLRawRole::kAlert);
}

// What a window that shows nothing but notifications is made of.
bool isPlainRole(std::uint32_t role) {
  static constexpr std::uint32_t kPlain[] = {
      HLRawRole::kAlert,       HLRawRole::kComboBox,     HLRawRole::kEntry,    HLRawRole::kDialog,
      HLRawRole::kDrawingArea, HLRawRole::kFiller,       HLRawRole::kFrame,    HLRawRole::kGrouping,
      HLRawRole::kHeading,     HLRawRole::kIcon,         HLRawRole::kImage,    HLRawRole::kLabel,
      HLRawRole::kLayeredPane, HLRawRole::kLink,         HLRawRole::kList,     HLRawRole::kListBox,
      HLRawRole::kListItem,    HLRawRole::kNotification, HLRawRole::kPanel,    HLRawRole::kParagraph,
      HLRawRole::kProgressBar, HLRawRole::kPushButton,   HLRawRole::kRootPane, HLRawRole::kScrollPane,
      HLRawRole::kSection,     HLRawRole::kSeparator,    HLRawRole::kStatic,   HLRawRole::kText,
      HLRawRole::kUnknown,     HLRawRole::kViewport,     HLRawRole::kWindow};
  return isOneOf(kPlain, role);
}

// Everything at and below the node, in tree order, without what lies below those for which visit says no.
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
    return !button && !isLabel(at(tree, i));
  });
  return banner;
}

bool holdsText(const HLRawTree& tree, const HLBanner& banner) {
  return std::any_of(banner.labels.begin(), banner.labels.end(),
                     [&](int label) { return !at(tree, label).name.empty(); });
}

// ---------------------------------------------------------------------------------------------------------------------
// What a close control is called.

// The names of a close button are in the language of the desktop.
bool isCloseName(const std::string& lower) {
  // clang-format off
  static constexpr std::string_view kNames[] = {
      "close", "dismiss", "close notification", "dismiss notification", "schließen", "fermer", "cerrar",
      "chiudi", "fechar", "sluiten", "закрыть", "закрити", "zamknij", "zavřít", "zavrieť", "stäng", "luk",
      "lukk", "sulje", "sulge", "kapat", "bezárás", "închide", "zapri", "zatvori", "κλείσιμο", "tanca", "关闭",
      "關閉", "閉じる", "닫기", "إغلاق"};
  // clang-format on
  return isOneOf(kNames, std::string_view(lower));
}

bool isCloseGlyph(const std::string& lower) {
  static constexpr std::string_view kGlyphs[] = {"x", "×", "✕", "✖", "✗", "✘", "⨯", "╳", "🗙"};
  return isOneOf(kGlyphs, std::string_view(lower));
}

// "Closes the notification." and its translations, by what their inflections have in common.
bool speaksOfClosing(const std::string& lower) {
  static constexpr std::string_view kStems[] = {
      "close",  "dismiss", "schließ", "ferme", "cierra", "cerrar", "chiud", "fecha", "slui",   "закр", "zamyka",
      "zamkni", "zavř",    "zavírá",  "stäng", "lukke",  "sulkee", "kapat", "bezár", "închid", "閉じ", "关闭"};
  return std::any_of(std::begin(kStems), std::end(kStems),
                     [&lower](std::string_view stem) { return lower.find(stem) != std::string::npos; });
}

// ---------------------------------------------------------------------------------------------------------------------
// Where a close control is.

// An icon, not a text: roughly square, and small. Scaled desktops report up to twice the size.
bool hasIconShape(const HLRect& frame) {
  constexpr double kSide = 64;
  constexpr double kStretch = 1.35;
  return frame.width > 0 && frame.height > 0 && frame.height <= kSide && frame.width <= kSide &&
         frame.width <= kStretch * frame.height && frame.height <= kStretch * frame.width;
}

// At the left or right edge, not below the middle. The buttons of the application stand below the text.
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

// How sure it is that the button closes the banner; 0 is not enough.
int certainty(const HLRawTree& tree, const HLBanner& banner, int index) {
  const HLRawNode& button = at(tree, index);
  const std::string name = HLLowercase(HLTrim(button.name));
  const std::string description = HLLowercase(HLTrim(button.description));
  const bool named = isCloseName(name) || isCloseGlyph(name);
  if (speaksOfClosing(description) && (name.empty() || named)) return 4;
  const std::optional<HLRect>& frame = button.extents;
  const std::optional<HLRect>& whole = at(tree, banner.node).extents;
  if (!frame || !whole || !hasIconShape(*frame) || !isInUpperCorner(*frame, *whole)) return 0;
  if (isCloseGlyph(name)) return 3;
  if (isCloseName(name)) return showsText(tree, index) ? 0 : 2;
  return name.empty() && description.empty() ? 1 : 0;
}

// ---------------------------------------------------------------------------------------------------------------------
// Banners that bear no role of their own.

// Whether the button may turn out to close something; said without extents.
bool mayClose(const HLRawNode& button) {
  const std::string name = HLLowercase(HLTrim(button.name));
  return name.empty() || isCloseName(name) || isCloseGlyph(name);
}

bool mayBeWholeBanner(const HLRawTree& tree, int index) {
  const HLBanner banner = bannerAt(tree, index);
  return holdsText(tree, banner) && std::any_of(banner.buttons.begin(), banner.buttons.end(),
                                                [&](int button) { return mayClose(at(tree, button)); });
}

bool isContent(const HLRawNode& node) { return isButton(node) || (isLabel(node) && !node.name.empty()); }

// The children that show something, and those of them that may be banners themselves.
struct Content {
  std::vector<int> parts;
  std::vector<int> banners;
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

// One window may hold several banners, each a child of its own. A banner itself has no two parts that both hold texts
// and something to close it with.
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
  if (holdsText(tree, banner)) found.push_back(std::move(banner));
}

// The outermost nodes whose role says that they are a banner, without mere containers of others.
void findByRole(const HLRawTree& tree, int index, std::vector<int>& found) {
  const HLRawNode& node = at(tree, index);
  if (hasBannerRole(node) && !anyBelow(tree, index, hasBannerRole)) {
    found.push_back(index);
    return;
  }
  for (int child : node.children) findByRole(tree, child, found);
}

// A window may be the banner as a whole: its role is borne by the text inside only, with the close control beside it.
// Then it holds nothing else that is put together of several parts.
int wholeBanner(const HLRawTree& tree, int index, std::size_t inWindow) {
  const int parent = at(tree, index).parent;
  const bool alone = inWindow == 1 && parent > 0 && at(tree, parent).parent == 0;
  if (!alone || mayBeWholeBanner(tree, index)) return index;
  for (int sibling : at(tree, parent).children) {
    const bool simple = isButton(at(tree, sibling)) || isLabel(at(tree, sibling));
    if (sibling != index && !simple && anyBelow(tree, sibling, isContent)) return index;
  }
  return parent;
}

bool isPlain(const HLRawTree& tree, int window) {
  bool plain = true;
  walk(tree, window, [&](int index) {
    plain &= isPlainRole(at(tree, index).role);
    return plain && at(tree, index).role != HLRawRole::kComboBox;  // many actions are offered as a choice
  });
  return plain;
}

// ---------------------------------------------------------------------------------------------------------------------
// What a banner says.

bool saysSomething(const HLRawNode& label) { return label.isVisible() && !HLTrim(label.name).empty(); }

// Some toolkits list labels in no order. Those that are cut off have no place, and come last.
std::vector<std::string> textsInReadingOrder(const HLRawTree& tree, const HLBanner& banner) {
  std::vector<int> labels;
  std::copy_if(banner.labels.begin(), banner.labels.end(), std::back_inserter(labels),
               [&](int label) { return saysSomething(at(tree, label)); });
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

// Servers that name the application have a label for each of its name, the title and the body, if only a hidden empty
// one; an empty one before them stands for the icon.
bool namesApplication(const HLRawTree& tree, const HLBanner& banner) {
  const auto first = std::find_if(banner.labels.begin(), banner.labels.end(),
                                  [&](int label) { return saysSomething(at(tree, label)); });
  return std::count_if(first, banner.labels.end(),
                       [&](int label) { return at(tree, label).isVisible() || at(tree, label).name.empty(); }) >= 3;
}

// Some servers say title and body once more, as name and description of the node that bears the role.
const HLRawNode* nodeWithOwnTexts(const HLRawTree& tree, int index) {
  const HLRawNode& node = at(tree, index);
  if (hasBannerRole(node) && !node.name.empty() && !node.description.empty()) return &node;
  for (int child : node.children) {
    if (const HLRawNode* found = nodeWithOwnTexts(tree, child)) return found;
  }
  return nullptr;
}

}  // namespace

bool HLIsPressAction(std::string_view name) {
  static constexpr std::string_view kPresses[] = {"click", "press", "activate"};
  return isOneOf(kPresses, std::string_view(HLLowercase(name)));
}

std::vector<HLBanner> HLFindBanners(const HLRawTree& tree) {
  std::vector<HLBanner> banners;
  std::vector<int> unmarked;
  bool onlyNotifications = true;
  for (int window : tree.empty() ? std::vector<int>() : tree.front().children) {
    if (!at(tree, window).isShowing()) continue;
    std::vector<int> marked;
    findByRole(tree, window, marked);
    for (int index : marked) banners.push_back(bannerAt(tree, wholeBanner(tree, index, marked.size())));
    if (marked.empty()) unmarked.push_back(window);
    onlyNotifications &= isPlain(tree, window);
  }
  // A desktop shell shows much else that has a text and a close button, the users' own windows not least.
  if (!onlyNotifications) return banners;
  for (int window : unmarked) findByStructure(tree, window, banners);
  return banners;
}

std::optional<HLCloseControl> HLFindCloseControl(const HLRawTree& tree, const HLBanner& banner) {
  int best = 0;
  std::optional<HLCloseControl> control;
  for (int button : banner.buttons) {
    const std::vector<std::string>& actions = at(tree, button).actions;
    const auto press = std::find_if(actions.begin(), actions.end(), HLIsPressAction);
    const int sure = press == actions.end() ? 0 : certainty(tree, banner, button);
    if (sure == 0 || sure < best) continue;
    // Of two that are equally likely, one may be the application's.
    control.reset();
    if (sure > best) control = HLCloseControl{button, static_cast<int>(press - actions.begin())};
    best = sure;
  }
  return control;
}

std::string HLBannerText(const HLRawTree& tree, const HLBanner& banner) {
  const std::vector<std::string> texts = textsInReadingOrder(tree, banner);
  const HLRawNode* marked = nodeWithOwnTexts(tree, banner.node);
  std::string application;
  std::string title = marked == nullptr ? "" : marked->name;
  std::string body;
  auto rest = texts.begin();
  if (const auto known = std::find(rest, texts.end(), title); marked != nullptr && known != texts.end()) {
    if (known != rest) application = *rest;
    rest = known + 1;
  } else if (!texts.empty()) {
    if (namesApplication(tree, banner)) application = *rest++;
    title = rest == texts.end() ? "" : *rest++;
  }
  for (; rest != texts.end(); ++rest) body += (body.empty() ? "" : " ") + *rest;
  if (body.empty() && marked != nullptr) body = marked->description;
  return application + ", " + title + (body.empty() ? "" : ", " + body);
}
