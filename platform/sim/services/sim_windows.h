// Simulated windows: what they hold, without a screen.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/application/windows.h"

class HLSimWindows;

class HLSimWindow : public HLWindow {
 public:
  HLSimWindow(HLSimWindows& windows, HLWindowDescription description);
  ~HLSimWindow() override;

  void setLabel(std::string_view name, const std::string& text, HLTextColor color) override;
  void setButtonTitle(std::string_view name, const std::string& title) override;
  void setCheckBox(std::string_view name, bool on) override;
  void setEnabled(std::string_view name, bool enabled) override;
  void fitHeight() override { fitted_ = true; }
  void center() override {}
  void makeKeyAndOrderFront() override;
  void close() override;

  // Presses the button, or toggles the check box, that is titled so; whether there is one.
  [[nodiscard]] bool press(const std::string& title);
  // The button that Return stands for, if there is one.
  void pressKeyButton();

  // A control as it now is.
  struct Control {
    HLControl what;
    bool on = false;
    bool enabled = true;
  };
  struct Item {
    std::vector<Control> controls;  // one, or those of a row
    bool isRow = false;
    double spacing = 0;  // in the row
    double after = 0;
    bool fullWidth = false;
  };
  [[nodiscard]] const std::string& title() const { return description_.title; }
  [[nodiscard]] bool isVisible() const { return visible_; }
  [[nodiscard]] double width() const { return description_.width; }
  [[nodiscard]] std::optional<double> height() const;  // nothing where it fits the content
  [[nodiscard]] const std::vector<Item>& items() const { return items_; }
  [[nodiscard]] HLWindowView view() const;

 private:
  // The controls of that kind and name.
  template <class Kind, class Change>
  void change(std::string_view name, const Change& change);
  void perform(Control& control);

  HLSimWindows& windows_;
  HLWindowDescription description_;
  std::vector<Item> items_;
  bool visible_ = false;
  bool fitted_ = false;
};

class HLSimWindows : public HLWindows {
 public:
  [[nodiscard]] std::unique_ptr<HLWindow> makeWindow(HLWindowDescription description) override;
  // In the order in which they were made.
  [[nodiscard]] std::vector<HLWindowView> views() override;

  [[nodiscard]] const std::vector<HLSimWindow*>& all() const { return windows_; }
  // The front one of those that are open; nullptr when none is.
  [[nodiscard]] HLSimWindow* key() const { return order_.empty() ? nullptr : order_.back(); }
  [[nodiscard]] HLSimWindow* visible(const std::string& title) const;

 private:
  friend class HLSimWindow;

  std::vector<HLSimWindow*> windows_;
  std::vector<HLSimWindow*> order_;  // the open ones, the front one last
};
