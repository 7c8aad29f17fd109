#include "platform/sim/services/sim_windows.h"

#include <algorithm>
#include <functional>

#include "platform/sim/services/png.h"

namespace {

bool nameIs(const HLControl& control, std::string_view name) {
  return !name.empty() && std::visit([name](const auto& known) { return known.name == name; }, control);
}

}  // namespace

HLSimWindow::HLSimWindow(HLSimWindows& windows, HLWindowDescription description)
    : windows_(windows), description_(std::move(description)) {
  windows_.windows_.push_back(this);
  for (const HLStackItem& item : description_.stack) {
    Item made{{}, false, 0, item.after, item.fullWidth};
    if (const auto* row = std::get_if<HLRow>(&item.what)) {
      made.isRow = true;
      made.spacing = row->spacing;
      for (const HLControl& control : row->controls) made.controls.push_back({control});
    } else {
      std::visit(
          [&made](const auto& control) {
            if constexpr (!std::is_same_v<std::decay_t<decltype(control)>, HLRow>) made.controls.push_back({control});
          },
          item.what);
    }
    items_.push_back(std::move(made));
  }
}

HLSimWindow::~HLSimWindow() {
  std::erase(windows_.windows_, this);
  std::erase(windows_.order_, this);
}

template <class Kind, class Change>
void HLSimWindow::change(std::string_view name, const Change& change) {
  for (Item& item : items_) {
    for (Control& control : item.controls) {
      Kind* kind = std::get_if<Kind>(&control.what);
      if (kind != nullptr && nameIs(control.what, name)) change(control, *kind);
    }
  }
}

void HLSimWindow::setLabel(std::string_view name, const std::string& text, HLTextColor color) {
  change<HLLabel>(name, [&](Control&, HLLabel& label) {
    label.text = text;
    label.color = color;
  });
}

void HLSimWindow::setButtonTitle(std::string_view name, const std::string& title) {
  change<HLButton>(name, [&](Control&, HLButton& button) { button.title = title; });
}

void HLSimWindow::setCheckBox(std::string_view name, bool on) {
  change<HLCheckBox>(name, [&](Control& control, HLCheckBox&) { control.on = on; });
}

void HLSimWindow::setEnabled(std::string_view name, bool enabled) {
  const auto set = [&](Control& control, auto&) { control.enabled = enabled; };
  change<HLButton>(name, set);
  change<HLCheckBox>(name, set);
}

void HLSimWindow::makeKeyAndOrderFront() {
  visible_ = true;
  std::erase(windows_.order_, this);
  windows_.order_.push_back(this);
}

void HLSimWindow::close() {
  if (!visible_) return;
  visible_ = false;
  std::erase(windows_.order_, this);
  const std::function<void()> willClose = description_.willClose;
  if (willClose) willClose();
}

void HLSimWindow::perform(Control& control) {
  if (!control.enabled) return;
  if (const auto* button = std::get_if<HLButton>(&control.what)) {
    const std::function<void()> action = button->action;
    if (action) action();
  } else if (const auto* checkBox = std::get_if<HLCheckBox>(&control.what)) {
    control.on = !control.on;
    const std::function<void(bool)> action = checkBox->action;
    if (action) action(control.on);
  }
}

bool HLSimWindow::press(const std::string& title) {
  for (Item& item : items_) {
    for (Control& control : item.controls) {
      const auto* button = std::get_if<HLButton>(&control.what);
      const auto* checkBox = std::get_if<HLCheckBox>(&control.what);
      if ((button == nullptr || button->title != title) && (checkBox == nullptr || checkBox->title != title)) continue;
      perform(control);
      return true;
    }
  }
  return false;
}

void HLSimWindow::pressKeyButton() {
  for (Item& item : items_) {
    for (Control& control : item.controls) {
      const auto* button = std::get_if<HLButton>(&control.what);
      if (button != nullptr && button->keyEquivalent == "\r") return perform(control);
    }
  }
}

std::optional<double> HLSimWindow::height() const {
  return fitted_ ? std::nullopt : std::optional(description_.height);
}

HLWindowView HLSimWindow::view() const {
  return {description_.title, visible_, description_.width, description_.height,
          [width = description_.width, height = description_.height] {
            return std::optional(HLBlankPng(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)));
          }};
}

std::unique_ptr<HLWindow> HLSimWindows::makeWindow(HLWindowDescription description) {
  return std::make_unique<HLSimWindow>(*this, std::move(description));
}

std::vector<HLWindowView> HLSimWindows::views() {
  std::vector<HLWindowView> views;
  for (const HLSimWindow* window : windows_) views.push_back(window->view());
  return views;
}

HLSimWindow* HLSimWindows::visible(const std::string& title) const {
  const auto found = std::find_if(order_.rbegin(), order_.rend(),
                                  [&title](const HLSimWindow* window) { return window->title() == title; });
  return found == order_.rend() ? nullptr : *found;
}
