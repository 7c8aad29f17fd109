// Windows as data: what they hold is described once and changed by name. Lengths are points.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

enum class HLFontWeight { regular, medium, semibold };
enum class HLTextColor { label, secondary, green, orange };

// Names are unique in a window; "" for what never changes.

// Breaks its lines to fit its width; cannot be selected.
struct HLLabel {
  std::string name;
  std::string text;
  double size = 13;
  HLFontWeight weight = HLFontWeight::regular;
  HLTextColor color = HLTextColor::label;
};

struct HLButton {
  std::string name;
  std::string title;
  std::string keyEquivalent;  // "\r" for Return; "" for none
  std::function<void()> action;
};

struct HLCheckBox {
  std::string name;
  std::string title;
  std::function<void(bool on)> action;  // after the user has changed it
};

using HLControl = std::variant<HLLabel, HLButton, HLCheckBox>;

// Side by side.
struct HLRow {
  std::vector<HLControl> controls;
  double spacing = 0;
};

struct HLStackItem {
  std::variant<HLLabel, HLButton, HLCheckBox, HLRow> what;
  double after = 0;        // the spacing that follows
  bool fullWidth = false;  // as wide as the stack, where it would be as wide as it likes
};

struct HLWindowDescription {
  std::string title;
  double width = 0;  // of the content
  double height = 0;
  // Between the content's edges and the stack.
  double sideMargin = 0;
  double verticalMargin = 0;       // below the stack at least so much
  std::vector<HLStackItem> stack;  // from the top down, aligned at the leading edge
  std::function<void()> willClose;
};

// Can be moved and closed, neither resized nor minimized. The user's closing hides it; it is kept and can be shown
// again. Names that it does not have are ignored.
class HLWindow {
 public:
  HLWindow() = default;
  HLWindow(const HLWindow&) = delete;
  HLWindow& operator=(const HLWindow&) = delete;
  virtual ~HLWindow() = default;

  virtual void setLabel(std::string_view name, const std::string& text, HLTextColor color) = 0;
  virtual void setButtonTitle(std::string_view name, const std::string& title) = 0;
  virtual void setCheckBox(std::string_view name, bool on) = 0;
  virtual void setEnabled(std::string_view name, bool enabled) = 0;

  // Makes the content as high as its texts need.
  virtual void fitHeight() = 0;
  virtual void center() = 0;
  virtual void makeKeyAndOrderFront() = 0;
  // Calls willClose, as the user's closing does.
  virtual void close() = 0;
};

// A window as it stands on screen, its frame and title bar included where the host draws them.
struct HLWindowView {
  std::string title;
  bool visible = false;
  double width = 0;
  double height = 0;
  std::function<std::optional<std::string>()> png;  // the picture, drawn when it is called; nothing when that fails
};

// Main thread only.
class HLWindows {
 public:
  HLWindows() = default;
  HLWindows(const HLWindows&) = delete;
  HLWindows& operator=(const HLWindows&) = delete;
  virtual ~HLWindows() = default;

  // Not yet on screen.
  [[nodiscard]] virtual std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) = 0;

  // All windows of the application in its window order, hidden ones and those of the host's own making included.
  [[nodiscard]] virtual std::vector<HLWindowView> views() = 0;
};
