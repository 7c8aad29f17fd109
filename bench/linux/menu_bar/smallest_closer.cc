// The least that a click can do to close banners whose numbers are known: a window, a connection to the session bus,
// and at a click one call each, without waiting in between. The numbers are its arguments.
#include <systemd/sd-bus.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>

#include "bench/linux/menu_bar/closer_window.h"

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";

xcb_connection_t* showWindow() {
  xcb_connection_t* x = xcb_connect(nullptr, nullptr);
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
  if (screen == nullptr) return nullptr;
  const xcb_window_t window = xcb_generate_id(x);
  const std::array<std::uint32_t, 2> values = {1, XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE};
  xcb_create_window(x, XCB_COPY_FROM_PARENT, window, screen->root, HLCloserX, HLCloserY, HLCloserSize, HLCloserSize, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
                    values.data());
  xcb_map_window(x, window);
  xcb_flush(x);
  return x;
}

bool waitForClick(xcb_connection_t* x) {
  while (xcb_generic_event_t* event = xcb_wait_for_event(x)) {
    const bool clicked = (event->response_type & 0x7F) == XCB_BUTTON_RELEASE;
    std::free(event);
    if (clicked) return true;
  }
  return false;
}

int countReply(sd_bus_message*, void* replies, sd_bus_error*) {
  ++*static_cast<int*>(replies);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  sd_bus* bus = nullptr;
  const char* name = nullptr;  // asked for, so that the connection stands before the window does
  if (sd_bus_open_user(&bus) < 0 || sd_bus_get_unique_name(bus, &name) < 0) return EXIT_FAILURE;
  xcb_connection_t* x = showWindow();
  if (x == nullptr || !waitForClick(x)) return EXIT_FAILURE;
  int replies = 0;
  for (int i = 1; i < argc; ++i) {
    const auto id = static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 10));
    sd_bus_call_method_async(bus, nullptr, kService, "/org/freedesktop/Notifications", kService, "CloseNotification",
                             countReply, &replies, "u", id);
  }
  while (replies < argc - 1) {
    if (sd_bus_process(bus, nullptr) == 0) sd_bus_wait(bus, UINT64_MAX);
  }
  pause();  // until its processor time has been read
}
