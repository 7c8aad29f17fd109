// The application's item in the menu bar or tray, and its menu.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// A separator if the title is empty.
struct HLMenuItem {
  std::string name;  // for setMenuItem(); never shown
  std::string title;
  std::string keyEquivalent;  // a character, pressed with Command (Ctrl on Linux); "" for none
  std::function<void()> action;
};

struct HLMenu {
  std::string title;
  std::vector<HLMenuItem> items;
  std::function<void()> needsUpdate;  // called before each opening
};

struct HLStatusItemDescription {
  std::string toolTip;
  std::function<void()> action;  // on left and right mouse-up; see HLApplication::currentEvent
  HLMenu menu;
};

// A symbol of macOS, which every host can draw.
struct HLSymbolImage {
  std::string name;         // "bell.slash" or "exclamationmark.triangle"
  bool isTemplate = false;  // drawn in the menu bar's or tray's foreground color
  std::string accessibilityDescription;
};

// Main thread only. Without a menu bar or tray, the item appears once there is one.
class HLStatusItem {
 public:
  HLStatusItem() = default;
  HLStatusItem(const HLStatusItem&) = delete;
  HLStatusItem& operator=(const HLStatusItem&) = delete;
  virtual ~HLStatusItem() = default;

  // Called once, before every other method.
  virtual void install(HLStatusItemDescription description) = 0;

  // Image and title are shown side by side.
  virtual void setTitle(const std::string& title) = 0;
  virtual void setImage(const HLSymbolImage& image) = 0;
  virtual void setToolTip(const std::string& toolTip) = 0;
  // Returns whether a menu bar or tray has the item now.
  [[nodiscard]] virtual bool isVisible() = 0;

  virtual void setMenuItem(std::string_view name, const std::string& title, bool on) = 0;
  // Opens the menu below the item. Blocks in a nested main run loop until the menu closes.
  virtual void popUpMenu() = 0;
};
