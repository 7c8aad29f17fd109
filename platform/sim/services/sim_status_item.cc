#include "platform/sim/services/sim_status_item.h"

#include <functional>

void HLSimStatusItem::install(HLStatusItemDescription description) {
  description_ = std::move(description);
  for (const HLMenuItem& item : description_.menu.items) items_.push_back({item});
}

void HLSimStatusItem::setMenuItem(std::string_view name, const std::string& title, bool on) {
  for (Item& item : items_) {
    if (item.what.name != name) continue;
    item.what.title = title;
    item.on = on;
  }
}

void HLSimStatusItem::click() const {
  if (description_.action) description_.action();
}

void HLSimStatusItem::openMenu() const {
  if (description_.menu.needsUpdate) description_.menu.needsUpdate();
}

bool HLSimStatusItem::choose(const std::string& title) const {
  for (const Item& item : items_) {
    if (item.what.title != title || title.empty()) continue;
    const std::function<void()> action = item.what.action;
    if (action) action();
    return true;
  }
  return false;
}
