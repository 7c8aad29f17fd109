// Windows as data: described once, then changed by control name. Lengths are in points.
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

// Control names are unique in a window; "" for controls that never change.

// Wraps to its width; its text cannot be selected.
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
  std::function<void(bool on)> action;  // called after the user changes it
};

using HLControl = std::variant<HLLabel, HLButton, HLCheckBox>;

// Controls side by side.
struct HLRow {
  std::vector<HLControl> controls;
  double spacing = 0;
};

struct HLStackItem {
  std::variant<HLLabel, HLButton, HLCheckBox, HLRow> what;
  double after = 0;        // spacing below
  bool fullWidth = false;  // as wide as the stack instead of its natural width
};

struct HLWindowDescription {
  std::string title;
  double width = 0;  // of the content, like height
  double height = 0;
  // Space between the content's edges and the stack.
  double sideMargin = 0;
  double verticalMargin = 0;       // a minimum below the stack
  std::vector<HLStackItem> stack;  // top to bottom, leading-aligned
  std::function<void()> willClose;
};

// Movable and closable, not resizable or minimizable. Closing hides the window, which can be shown again. Unknown
// control names are ignored.
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

  // Sets the content's height to what its texts need.
  virtual void fitHeight() = 0;
  virtual void center() = 0;
  virtual void makeKeyAndOrderFront() = 0;
  // Calls willClose, then hides the window, like closing by the user.
  virtual void close() = 0;
};

// A window of this application, including its frame and title bar if the process draws them.
struct HLWindowView {
  std::string title;
  bool visible = false;
  double width = 0;
  double height = 0;
  std::function<std::optional<std::string>()> png;  // draws the window when called; nullopt on failure
};

// Main thread only.
class HLWindows {
 public:
  HLWindows() = default;
  HLWindows(const HLWindows&) = delete;
  HLWindows& operator=(const HLWindows&) = delete;
  virtual ~HLWindows() = default;

  // Returns a hidden window.
  [[nodiscard]] virtual std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) = 0;

  // Returns all windows in the application's window order, including hidden ones and those created by the host.
  [[nodiscard]] virtual std::vector<HLWindowView> views() = 0;
};
