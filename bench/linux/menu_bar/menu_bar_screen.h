// The screen as a user has it: a pointer, and icons in a tray.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "bench/linux/menu_bar/menu_bar_processes.h"
#include "tests/platform/linux/support/desktop_session.h"

// An icon that a tray has taken in.
struct Icon {
  xcb_window_t window = 0;
  int x = 0;  // of its middle, on the screen
  int y = 0;
  Clock::time_point mapped;
  Clock::time_point drawn;  // when its picture could be seen
};

// A client of the X server that DISPLAY names.
class Screen {
 public:
  Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  // Waits until there is a tray, and follows from then on what comes to the screen.
  [[nodiscard]] bool waitForTray();

  // Waits for the next icon to be taken in by the tray and drawn.
  [[nodiscard]] std::optional<Icon> waitForIcon();

  // Waits for a window that covers the place.
  [[nodiscard]] bool waitForWindowAt(int x, int y);

  // Clicks; the moment at which the button was let go.
  Clock::time_point click(int x, int y, std::uint8_t button = 1);

  // To where nothing is.
  void movePointerAway();

 private:
  void fake(std::uint8_t type, std::uint8_t detail, int x = 0, int y = 0);
  void sync();
  std::optional<xcb_window_t> takeDocked();
  [[nodiscard]] bool isInTray(xcb_window_t window);
  [[nodiscard]] xcb_window_t parentOf(xcb_window_t window);
  [[nodiscard]] bool isViewable(xcb_window_t window);
  bool locate(Icon& icon);
  [[nodiscard]] bool isDrawn(const Icon& icon);

  xcb_connection_t* const x_;
  xcb_window_t root_ = 0;
  std::uint16_t iconWidth_ = 0;
  std::uint16_t iconHeight_ = 0;
};

// The menu-bar application's own log, in that session.
[[nodiscard]] std::string statusLog(const DesktopSession& session);
