// The simulated status item and its menu, which nobody sees open.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/application/status_item.h"

class HLSimStatusItem : public HLStatusItem {
 public:
  void install(HLStatusItemDescription description) override;
  void setTitle(const std::string& title) override { title_ = title; }
  void setImage(const HLSymbolImage& image) override { image_ = image; }
  void setToolTip(const std::string& toolTip) override { description_.toolTip = toolTip; }
  [[nodiscard]] bool isVisible() override { return true; }
  void setMenuItem(std::string_view name, const std::string& title, bool on) override;
  void popUpMenu() override { openMenu(); }

  void click() const;
  // Opens the menu and closes it again.
  void openMenu() const;
  // Whether there is such an item.
  [[nodiscard]] bool choose(const std::string& title) const;

  struct Item {
    HLMenuItem what;
    bool on = false;
  };
  [[nodiscard]] const std::string& title() const { return title_; }
  [[nodiscard]] const std::optional<HLSymbolImage>& image() const { return image_; }
  [[nodiscard]] const std::string& toolTip() const { return description_.toolTip; }
  [[nodiscard]] const std::vector<Item>& items() const { return items_; }

 private:
  HLStatusItemDescription description_;
  std::vector<Item> items_;
  std::string title_;
  std::optional<HLSymbolImage> image_;
};
