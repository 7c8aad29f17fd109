#include "tests/platform/linux/support/screen.h"

#include <xcb/xtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

constexpr int kFirstKeycode = 8;             // of the server, for the kernel's key 0
constexpr std::uint32_t kLongest = 0x10000;  // of a property, in words

// Of a window manager that has not lost the window.
constexpr std::chrono::milliseconds kReaction{500};

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class Reply>
using Held = std::unique_ptr<Reply, Free>;

}  // namespace

Screen::Screen(const Environment& environment) : connection_(xcb_connect(environment.at("DISPLAY").c_str(), nullptr)) {
  if (xcb_connection_has_error(connection_) != 0) throw std::runtime_error("no connection to the screen");
  root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

Screen::~Screen() { xcb_disconnect(connection_); }

std::optional<ScreenWindow> Screen::find(const std::function<bool(const ScreenWindow&)>& fits) {
  return search(root_, 0, 0, fits);
}

std::optional<ScreenWindow> Screen::findTitled(const std::string& title) {
  return find([&title](const ScreenWindow& window) { return window.title == title; });
}

// Windows come and go meanwhile; one that is gone has no attributes.
std::optional<ScreenWindow> Screen::search(xcb_window_t parent, int x, int y,
                                           const std::function<bool(const ScreenWindow&)>& fits) {
  const Held<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(connection_, xcb_query_tree(connection_, parent), nullptr));
  if (tree == nullptr) return std::nullopt;
  for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
    const xcb_window_t id = xcb_query_tree_children(tree.get())[i];
    const Held<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection_, xcb_get_window_attributes(connection_, id), nullptr));
    const Held<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, id), nullptr));
    if (attributes == nullptr || geometry == nullptr || attributes->map_state != XCB_MAP_STATE_VIEWABLE) continue;
    ScreenWindow window;
    window.id = id;
    window.title = text(id, atom("_NET_WM_NAME"));
    if (window.title.empty()) window.title = text(id, XCB_ATOM_WM_NAME);
    window.instance = text(id, XCB_ATOM_WM_CLASS).c_str();  // up to the zero that ends it
    window.x = x + geometry->x + geometry->border_width;
    window.y = y + geometry->y + geometry->border_width;
    window.width = geometry->width;
    window.height = geometry->height;
    if (fits(window)) return window;
    if (auto within = search(id, window.x, window.y, fits)) return within;
  }
  return std::nullopt;
}

bool Screen::isManaged() {
  const xcb_window_t window = xcb_generate_id(connection_);
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                    XCB_COPY_FROM_PARENT, 0, nullptr);
  xcb_map_window(connection_, window);
  const bool isManaged = Eventually([&] { return !numbers(window, atom("WM_STATE")).empty(); }, kReaction);
  xcb_destroy_window(connection_, window);
  xcb_flush(connection_);
  return isManaged;
}

xcb_window_t Screen::activeWindow() {
  const std::vector<std::uint32_t> active = numbers(root_, atom("_NET_ACTIVE_WINDOW"));
  return active.empty() ? XCB_NONE : active.front();
}

Screen::FrameWishes Screen::frameWishes(xcb_window_t window) {
  const std::vector<std::uint32_t> hints = numbers(window, atom("_MOTIF_WM_HINTS"));
  return hints.size() < 3 ? FrameWishes{} : FrameWishes{hints[1], hints[2]};
}

std::vector<std::uint32_t> Screen::icons(xcb_window_t window) { return numbers(window, atom("_NET_WM_ICON")); }

xcb_atom_t Screen::atom(const std::string& name) {
  const Held<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      connection_, xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()), nullptr));
  return reply == nullptr ? static_cast<xcb_atom_t>(XCB_ATOM_NONE) : reply->atom;
}

std::string Screen::text(xcb_window_t window, xcb_atom_t property) {
  const Held<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      connection_, xcb_get_property(connection_, 0, window, property, XCB_ATOM_ANY, 0, kLongest), nullptr));
  if (reply == nullptr) return "";
  return {static_cast<const char*>(xcb_get_property_value(reply.get())),
          static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::vector<std::uint32_t> Screen::numbers(xcb_window_t window, xcb_atom_t property) {
  const Held<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      connection_, xcb_get_property(connection_, 0, window, property, XCB_ATOM_ANY, 0, kLongest), nullptr));
  if (reply == nullptr || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof *first};
}

void Screen::moveTo(int x, int y) { fake(XCB_MOTION_NOTIFY, 0, x, y); }

void Screen::click(std::uint8_t button, const std::vector<int>& heldKeys) {
  for (int key : heldKeys) fake(XCB_KEY_PRESS, key + kFirstKeycode);
  fake(XCB_BUTTON_PRESS, button);
  fake(XCB_BUTTON_RELEASE, button);
  for (auto key = heldKeys.rbegin(); key != heldKeys.rend(); ++key) fake(XCB_KEY_RELEASE, *key + kFirstKeycode);
}

void Screen::press(const std::vector<int>& keys) {
  for (int key : keys) fake(XCB_KEY_PRESS, key + kFirstKeycode);
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) fake(XCB_KEY_RELEASE, *key + kFirstKeycode);
  // As any hand must rest: the server's clock has milliseconds, and what is pressed at the moment of its release is a
  // repetition.
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

// Returns when the server has done it.
void Screen::fake(std::uint8_t type, int detail, int x, int y) {
  xcb_test_fake_input(connection_, type, static_cast<std::uint8_t>(detail), XCB_CURRENT_TIME, root_,
                      static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
  std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}
