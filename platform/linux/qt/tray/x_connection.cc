#include "platform/linux/qt/tray/x_connection.h"

namespace {

constexpr std::uint32_t kLongestProperty = 64;  // 32-bit values

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
  xcb_screen_iterator_t screen = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screen.rem > 1; --number) xcb_screen_next(&screen);
  return screen.data;
}

}  // namespace

std::optional<HLXConnection> HLXConnection::open() {
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(nullptr, &screenNumber);
  if (xcb_connection_has_error(connection) != 0) {
    xcb_disconnect(connection);
    return std::nullopt;
  }
  return HLXConnection(connection, screenNumber);
}

HLXConnection::HLXConnection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection), screen_(screenOf(connection, screenNumber)), screenNumber_(screenNumber) {}

xcb_atom_t HLXConnection::atom(const std::string& name) const {
  const auto cookie = xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.c_str());
  const HLXReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(get(), cookie, nullptr));
  return reply == nullptr ? static_cast<xcb_atom_t>(XCB_ATOM_NONE) : reply->atom;
}

std::vector<std::uint32_t> HLXConnection::property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const {
  const auto cookie = xcb_get_property(get(), 0, window, name, type, 0, kLongestProperty);
  const HLXReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(get(), cookie, nullptr));
  if (reply == nullptr || reply->format != 32) return {};
  const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {values, values + reply->value_len};
}

std::optional<HLXVisual> HLXConnection::visual(xcb_visualid_t id) const {
  for (auto depth = xcb_screen_allowed_depths_iterator(screen_); depth.rem > 0; xcb_depth_next(&depth)) {
    for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual)) {
      if (visual.data->visual_id == id) return HLXVisual{id, depth.data->depth};
    }
  }
  return std::nullopt;
}
