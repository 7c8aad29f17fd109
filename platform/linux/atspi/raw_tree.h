// An application's interface as the accessibility bus tells it, before it is put into the home platform's words.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/geometry.h"

// The bus's role numbers that are told apart here; any other is carried along.
namespace HLRawRole {
inline constexpr std::uint32_t kAlert = 2;
inline constexpr std::uint32_t kCheckBox = 7;
inline constexpr std::uint32_t kCheckMenuItem = 8;
inline constexpr std::uint32_t kComboBox = 11;
inline constexpr std::uint32_t kDialog = 16;
inline constexpr std::uint32_t kDrawingArea = 18;
inline constexpr std::uint32_t kFileChooser = 19;
inline constexpr std::uint32_t kFiller = 20;
inline constexpr std::uint32_t kFrame = 23;
inline constexpr std::uint32_t kIcon = 26;
inline constexpr std::uint32_t kImage = 27;
inline constexpr std::uint32_t kLabel = 29;
inline constexpr std::uint32_t kLayeredPane = 30;
inline constexpr std::uint32_t kList = 31;
inline constexpr std::uint32_t kListItem = 32;
inline constexpr std::uint32_t kMenu = 33;
inline constexpr std::uint32_t kMenuBar = 34;
inline constexpr std::uint32_t kMenuItem = 35;
inline constexpr std::uint32_t kPageTab = 37;
inline constexpr std::uint32_t kPageTabList = 38;
inline constexpr std::uint32_t kPanel = 39;
inline constexpr std::uint32_t kPasswordText = 40;
inline constexpr std::uint32_t kPopupMenu = 41;
inline constexpr std::uint32_t kProgressBar = 42;
inline constexpr std::uint32_t kPushButton = 43;
inline constexpr std::uint32_t kRadioButton = 44;
inline constexpr std::uint32_t kRadioMenuItem = 45;
inline constexpr std::uint32_t kRootPane = 46;
inline constexpr std::uint32_t kScrollBar = 48;
inline constexpr std::uint32_t kScrollPane = 49;
inline constexpr std::uint32_t kSeparator = 50;
inline constexpr std::uint32_t kSlider = 51;
inline constexpr std::uint32_t kSpinButton = 52;
inline constexpr std::uint32_t kSplitPane = 53;
inline constexpr std::uint32_t kTable = 55;
inline constexpr std::uint32_t kTableCell = 56;
inline constexpr std::uint32_t kTearoffMenuItem = 59;
inline constexpr std::uint32_t kText = 61;
inline constexpr std::uint32_t kToggleButton = 62;
inline constexpr std::uint32_t kToolBar = 63;
inline constexpr std::uint32_t kToolTip = 64;
inline constexpr std::uint32_t kTree = 65;
inline constexpr std::uint32_t kTreeTable = 66;
inline constexpr std::uint32_t kUnknown = 67;
inline constexpr std::uint32_t kViewport = 68;
inline constexpr std::uint32_t kWindow = 69;
inline constexpr std::uint32_t kParagraph = 73;
inline constexpr std::uint32_t kApplication = 75;
inline constexpr std::uint32_t kEntry = 79;
inline constexpr std::uint32_t kHeading = 83;
inline constexpr std::uint32_t kSection = 85;
inline constexpr std::uint32_t kLink = 88;
inline constexpr std::uint32_t kTableRow = 90;
inline constexpr std::uint32_t kTreeItem = 91;
inline constexpr std::uint32_t kListBox = 98;
inline constexpr std::uint32_t kGrouping = 99;
inline constexpr std::uint32_t kNotification = 101;
inline constexpr std::uint32_t kStatic = 116;
}  // namespace HLRawRole

// Bits of the state set.
namespace HLRawState {
inline constexpr std::uint64_t kDefunct = 1ULL << 6;
inline constexpr std::uint64_t kShowing = 1ULL << 25;
inline constexpr std::uint64_t kVisible = 1ULL << 30;  // would show, were it not covered or scrolled away
inline constexpr std::uint64_t kManagesDescendants = 1ULL << 31;
}  // namespace HLRawState

struct HLRawNode {
  std::string path;  // its address in the application
  int parent = -1;
  std::vector<int> children;
  std::uint32_t role = 0;
  std::uint64_t states = 0;
  std::string name;
  std::string description;
  bool hasActions = false;
  bool hasExtents = false;
  // Read for those only that need them.
  std::vector<std::string> actions;
  std::optional<HLRect> extents;

  [[nodiscard]] bool isVisible() const { return isShowing() || (states & HLRawState::kVisible) != 0; }
  [[nodiscard]] bool isShowing() const {
    return (states & HLRawState::kShowing) != 0 && (states & HLRawState::kDefunct) == 0;
  }
};

// Parents come before their children; node 0 is the application.
using HLRawTree = std::vector<HLRawNode>;
