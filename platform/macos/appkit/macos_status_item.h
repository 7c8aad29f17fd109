// An item of variable length in the system's status bar.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/application/status_item.h"

@class HLActionTarget;
@class HLMenuDelegate;
@class NSMenu;
@class NSMenuItem;
@class NSStatusItem;

// The menu is not attached to the NSStatusItem; only popUpMenu() opens it.
class HLMacStatusItem : public HLStatusItem {
 public:
  HLMacStatusItem();
  ~HLMacStatusItem() override;

  void install(HLStatusItemDescription description) override;
  void setTitle(const std::string& title) override;
  void setImage(const HLSymbolImage& image) override;
  void setToolTip(const std::string& toolTip) override;
  [[nodiscard]] bool isVisible() override { return item_ != nullptr; }
  void setMenuItem(std::string_view name, const std::string& title, bool on) override;
  void popUpMenu() override;

 private:
  void addMenuItem(HLMenuItem description);

  NSStatusItem* item_ = nullptr;
  NSMenu* menu_ = nullptr;
  HLActionTarget* target_ = nullptr;
  HLMenuDelegate* menuDelegate_ = nullptr;
  std::map<std::string, NSMenuItem*, std::less<>> menuItems_;
};
