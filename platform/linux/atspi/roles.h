// The AT-SPI roles that this program distinguishes, one row per role.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

// AT-SPI's role numbers. Every number may occur; those that the code compares with are named.
enum class HLRawRole : std::uint32_t {
  invalid = 0,
  alert = 2,
  checkBox = 7,
  comboBox = 11,
  dialog = 16,
  label = 29,
  pushButton = 43,
  text = 61,
  window = 69,
  application = 75,
  notification = 101,
};

// A set of bits.
namespace HLRoleTrait {
// Has no actions. GetActions would cost a round trip and return none.
inline constexpr unsigned kPassive = 1 << 0;
// Passive, and its name and description are never shown.
inline constexpr unsigned kContainer = kPassive | 1 << 1;
// No toolkit puts an element with actions below it.
inline constexpr unsigned kLeaf = 1 << 2;
// Its name may be a text of a banner.
inline constexpr unsigned kLabel = 1 << 3;
// A label without children or actions. Its name is all that it shows.
inline constexpr unsigned kText = kPassive | kLeaf | kLabel | 1 << 4;
// Occurs in windows that show only notifications.
inline constexpr unsigned kPlain = 1 << 5;
}  // namespace HLRoleTrait

struct HLRole {
  HLRawRole number;
  std::string_view name;  // in recorded trees
  std::string_view role;  // AX role and subrole
  std::string_view subrole = "";
  unsigned traits = 0;

  [[nodiscard]] constexpr bool has(unsigned trait) const { return (traits & trait) == trait; }
};

// Sorted by number.
inline constexpr auto HLRoles = [] {
  using namespace HLRoleTrait;
  return std::to_array<HLRole>({
      {HLRawRole::alert, "alert", "AXGroup", "AXApplicationAlert", kPassive | kPlain},
      {HLRawRole::checkBox, "check box", "AXCheckBox", "", kLeaf},
      {HLRawRole{8}, "check menu item", "AXMenuItem"},
      {HLRawRole::comboBox, "combo box", "AXComboBox", "", kPlain},
      {HLRawRole::dialog, "dialog", "AXWindow", "AXDialog", kPassive | kPlain},
      {HLRawRole{18}, "drawing area", "AXUnknown", "", kPlain},
      {HLRawRole{19}, "file chooser", "AXWindow", "AXDialog"},
      {HLRawRole{20}, "filler", "AXGroup", "", kContainer | kPlain},
      {HLRawRole{23}, "frame", "AXWindow", "AXStandardWindow", kPassive | kPlain},
      {HLRawRole{26}, "icon", "AXImage", "", kLeaf | kPlain},
      {HLRawRole{27}, "image", "AXImage", "", kPassive | kLeaf | kPlain},
      {HLRawRole::label, "label", "AXStaticText", "", kText | kPlain},
      {HLRawRole{30}, "layered pane", "AXGroup", "", kContainer | kPlain},
      {HLRawRole{31}, "list", "AXList", "", kPlain},
      {HLRawRole{32}, "list item", "AXGroup", "", kPlain},
      {HLRawRole{33}, "menu", "AXMenu"},
      {HLRawRole{34}, "menu bar", "AXMenuBar"},
      {HLRawRole{35}, "menu item", "AXMenuItem"},
      {HLRawRole{37}, "page tab", "AXRadioButton", "AXTabButton"},
      {HLRawRole{38}, "page tab list", "AXTabGroup"},
      {HLRawRole{39}, "panel", "AXGroup", "", kContainer | kPlain},
      {HLRawRole{40}, "password text", "AXTextField", "AXSecureTextField"},
      {HLRawRole{41}, "popup menu", "AXMenu"},
      {HLRawRole{42}, "progress bar", "AXProgressIndicator", "", kPassive | kLeaf | kPlain},
      {HLRawRole::pushButton, "button", "AXButton", "", kPlain},
      {HLRawRole{44}, "radio button", "AXRadioButton", "", kLeaf},
      {HLRawRole{45}, "radio menu item", "AXMenuItem"},
      {HLRawRole{46}, "root pane", "AXUnknown", "", kPlain},
      {HLRawRole{48}, "scroll bar", "AXScrollBar"},
      {HLRawRole{49}, "scroll pane", "AXScrollArea", "", kContainer | kPlain},
      {HLRawRole{50}, "separator", "AXSplitter", "", kContainer | kLeaf | kPlain},
      {HLRawRole{51}, "slider", "AXSlider"},
      {HLRawRole{52}, "spin button", "AXIncrementor"},
      {HLRawRole{53}, "split pane", "AXSplitGroup", "", kContainer},
      {HLRawRole{55}, "table", "AXTable"},
      {HLRawRole{56}, "table cell", "AXCell"},
      {HLRawRole{59}, "tearoff menu item", "AXMenuItem"},
      {HLRawRole::text, "text", "AXTextArea", "", kPlain},
      {HLRawRole{62}, "toggle button", "AXCheckBox", "AXToggle"},
      {HLRawRole{63}, "tool bar", "AXToolbar"},
      {HLRawRole{64}, "tool tip", "AXHelpTag"},
      {HLRawRole{65}, "tree", "AXOutline"},
      {HLRawRole{66}, "tree table", "AXOutline"},
      {HLRawRole{67}, "unknown", "AXUnknown", "", kPlain},
      {HLRawRole{68}, "viewport", "AXScrollArea", "", kContainer | kPlain},
      {HLRawRole::window, "window", "AXWindow", "AXStandardWindow", kPassive | kPlain},
      {HLRawRole{73}, "paragraph", "AXStaticText", "", kLabel | kPlain},
      {HLRawRole::application, "application", "AXApplication"},
      {HLRawRole{79}, "entry", "AXTextField", "", kLeaf | kPlain},
      {HLRawRole{83}, "heading", "AXHeading", "", kLabel | kPlain},
      {HLRawRole{85}, "section", "AXGroup", "", kLabel | kPlain},
      {HLRawRole{88}, "link", "AXLink", "", kPlain},
      {HLRawRole{90}, "table row", "AXRow"},
      {HLRawRole{91}, "tree item", "AXRow", "AXOutlineRow"},
      {HLRawRole{98}, "list box", "AXList", "", kPlain},
      {HLRawRole{99}, "grouping", "AXGroup", "", kPlain},
      {HLRawRole::notification, "notification", "AXGroup", "", kPassive | kPlain},
      {HLRawRole{116}, "static", "AXStaticText", "", kText | kPlain},
  });
}();

// Returns the role's row, or one without name and traits for every other number.
[[nodiscard]] constexpr HLRole HLRoleOf(HLRawRole number) {
  const auto precedes = [](const HLRole& role, HLRawRole wanted) { return role.number < wanted; };
  const auto* const found = std::lower_bound(HLRoles.begin(), HLRoles.end(), number, precedes);
  return found != HLRoles.end() && found->number == number ? *found : HLRole{number, "", "AXUnknown"};
}

static_assert(std::is_sorted(HLRoles.begin(), HLRoles.end(),
                             [](const HLRole& a, const HLRole& b) { return a.number < b.number; }));
