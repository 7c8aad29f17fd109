// The application's item in the menu bar or tray, and the menu that it opens.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Without a title it is a separator.
struct HLMenuItem {
  std::string name;  // by which it is changed later; never shown
  std::string title;
  std::string keyEquivalent;  // a character, pressed with Command; "" for none
  std::function<void()> action;
};

struct HLMenu {
  std::string title;
  std::vector<HLMenuItem> items;
  std::function<void()> needsUpdate;  // called each time before the menu opens
};

struct HLStatusItemDescription {
  std::string toolTip;
  std::function<void()> action;  // on left and right mouse-up; HLApplication::currentEvent tells which
  HLMenu menu;
};

// A drawing that every host has under the home platform's name.
struct HLSymbolImage {
  std::string name;         // "bell.slash" or "exclamationmark.triangle"
  bool isTemplate = false;  // takes the color of its surroundings
  std::string accessibilityDescription;
};

// Main thread only. Where there is no menu bar or tray yet, the item shows itself as soon as there is one.
class HLStatusItem {
 public:
  HLStatusItem() = default;
  HLStatusItem(const HLStatusItem&) = delete;
  HLStatusItem& operator=(const HLStatusItem&) = delete;
  virtual ~HLStatusItem() = default;

  // Called once, before anything else.
  virtual void install(HLStatusItemDescription description) = 0;

  // Image and title stand side by side.
  virtual void setTitle(const std::string& title) = 0;
  virtual void setImage(const HLSymbolImage& image) = 0;

  virtual void setMenuItem(std::string_view name, const std::string& title, bool on) = 0;
  // Opens the menu below the item and returns when it has been closed.
  virtual void popUpMenu() = 0;
};
