#include "bench/linux/menu_bar/menu_bar_screen.h"

#include <xcb/xtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace {

template <class T>
struct FreeReply {
  void operator()(T* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, FreeReply<T>>;

constexpr std::chrono::seconds kTimeout{20};
constexpr int kAwayX = 300;
constexpr int kAwayY = 700;

}  // namespace

Screen::Screen() : x_(xcb_connect(nullptr, nullptr)) {
  if (xcb_connection_has_error(x_) == 0) root_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data->root;
}

Screen::~Screen() { xcb_disconnect(x_); }

bool Screen::waitForTray() {
  constexpr char kName[] = "_NET_SYSTEM_TRAY_S0";
  const Reply<xcb_intern_atom_reply_t> atom(
      xcb_intern_atom_reply(x_, xcb_intern_atom(x_, 0, sizeof kName - 1, kName), nullptr));
  const bool came = Eventually([&] {
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(x_, xcb_get_selection_owner(x_, atom->atom), nullptr));
    return owner != nullptr && owner->owner != XCB_NONE;
  });
  const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(x_, root_, XCB_CW_EVENT_MASK, &mask);
  sync();
  return came;
}

// An icon's window begins on the root; the tray takes it from there.
std::optional<xcb_window_t> Screen::takeDocked() {
  while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(x_)}) {
    if ((event->response_type & 0x7F) != XCB_REPARENT_NOTIFY) continue;
    const void* any = event.get();
    const xcb_window_t window = static_cast<const xcb_reparent_notify_event_t*>(any)->window;
    if (isInTray(window)) return window;
  }
  return std::nullopt;
}

std::optional<Icon> Screen::waitForIcon() {
  const Clock::time_point deadline = Clock::now() + kTimeout;
  std::optional<xcb_window_t> window;
  while (!window && Clock::now() < deadline) window = takeDocked();
  if (!window) return std::nullopt;
  Icon icon{*window, 0, 0, {}, {}};
  while (!isViewable(icon.window)) {
    if (Clock::now() >= deadline) return std::nullopt;
  }
  icon.mapped = Clock::now();
  while (!locate(icon) || !isDrawn(icon)) {
    if (Clock::now() >= deadline) return std::nullopt;
  }
  icon.drawn = Clock::now();
  return icon;
}

bool Screen::waitForWindowAt(int x, int y) {
  return Eventually([&] {
    const auto cookie =
        xcb_translate_coordinates(x_, root_, root_, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    const Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x_, cookie, nullptr));
    return place != nullptr && place->child != XCB_NONE;
  });
}

Clock::time_point Screen::click(int x, int y, std::uint8_t button) {
  fake(XCB_MOTION_NOTIFY, 0, x, y);
  fake(XCB_BUTTON_PRESS, button);
  sync();
  const Clock::time_point moment = Clock::now();
  fake(XCB_BUTTON_RELEASE, button);
  xcb_flush(x_);
  return moment;
}

void Screen::movePointerAway() {
  fake(XCB_MOTION_NOTIFY, 0, kAwayX, kAwayY);
  sync();
}

void Screen::fake(std::uint8_t type, std::uint8_t detail, int x, int y) {
  xcb_test_fake_input(x_, type, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(x),
                      static_cast<std::int16_t>(y), 0);
}

void Screen::sync() { std::free(xcb_get_input_focus_reply(x_, xcb_get_input_focus(x_), nullptr)); }

// A window manager's frame stands on the root; a tray's place for an icon does not.
bool Screen::isInTray(xcb_window_t window) {
  const xcb_window_t parent = parentOf(window);
  return parent != XCB_NONE && parent != root_ && parentOf(parent) != root_;
}

xcb_window_t Screen::parentOf(xcb_window_t window) {
  const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x_, xcb_query_tree(x_, window), nullptr));
  return tree == nullptr ? static_cast<xcb_window_t>(XCB_NONE) : tree->parent;
}

bool Screen::isViewable(xcb_window_t window) {
  const Reply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window), nullptr));
  return attributes != nullptr && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

bool Screen::locate(Icon& icon) {
  const auto shape = xcb_get_geometry(x_, icon.window);
  const auto where = xcb_translate_coordinates(x_, icon.window, root_, 0, 0);
  const Reply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(x_, shape, nullptr));
  const Reply<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(x_, where, nullptr));
  if (size == nullptr || place == nullptr) return false;
  iconWidth_ = size->width;
  iconHeight_ = size->height;
  icon.x = place->dst_x + iconWidth_ / 2;
  icon.y = place->dst_y + iconHeight_ / 2;
  return iconWidth_ > 1 && iconHeight_ > 1;
}

// The tray itself is of one color.
bool Screen::isDrawn(const Icon& icon) {
  const auto cookie =
      xcb_get_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, static_cast<std::int16_t>(icon.x - iconWidth_ / 2),
                    static_cast<std::int16_t>(icon.y - iconHeight_ / 2), iconWidth_, iconHeight_, 0x00FFFFFF);
  const Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(x_, cookie, nullptr));
  if (image == nullptr) return false;
  const void* data = xcb_get_image_data(image.get());
  const auto* pixels = static_cast<const std::uint32_t*>(data);
  const int count = xcb_get_image_data_length(image.get()) / 4;
  return std::any_of(pixels, pixels + count, [pixels](std::uint32_t pixel) { return pixel != pixels[0]; });
}

std::string statusLog(const DesktopSession& session) {
  std::ifstream file(session.environment().at("XDG_DATA_HOME") + "/com.tessaly.hushlet/status.log", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
