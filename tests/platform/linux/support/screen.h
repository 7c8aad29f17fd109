// What a person has at hand: the windows of a screen, a pointer and a keyboard.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/platform/linux/support/child_process.h"

struct ScreenWindow {
  xcb_window_t id = XCB_NONE;
  std::string title;
  std::string instance;  // the first part of its class
  int x = 0;             // on the screen
  int y = 0;
  int width = 0;
  int height = 0;
};

// Keys are the kernel's codes (linux/input-event-codes.h). One thread.
class Screen {
 public:
  static constexpr std::uint8_t kLeftButton = 1;
  static constexpr std::uint8_t kRightButton = 3;

  // In the wishes for a frame.
  static constexpr std::uint32_t kCloseFunction = 1 << 5;
  static constexpr std::uint32_t kTitleDecoration = 1 << 3;
  static constexpr std::uint32_t kMinimizeDecoration = 1 << 5;
  static constexpr std::uint32_t kMaximizeDecoration = 1 << 6;

  explicit Screen(const Environment& environment);
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen();

  // The first window shown that fits, in whatever window it lies.
  [[nodiscard]] std::optional<ScreenWindow> find(const std::function<bool(const ScreenWindow&)>& fits);
  [[nodiscard]] std::optional<ScreenWindow> findTitled(const std::string& title);
  // Whether the window manager is at work, tried with a window. One that is shown while it starts may get lost.
  [[nodiscard]] bool isManaged();
  [[nodiscard]] xcb_window_t activeWindow();
  // Of what the program asks of the window's frame: bits of the buttons and of what a person may do with it.
  struct FrameWishes {
    std::uint32_t functions = 0;
    std::uint32_t decorations = 0;
  };
  [[nodiscard]] FrameWishes frameWishes(xcb_window_t window);

  // For its title bar: width, height and so many pixels, alpha first; once for each size.
  [[nodiscard]] std::vector<std::uint32_t> icons(xcb_window_t window);

  void moveTo(int x, int y);
  // Presses and releases the button where the pointer is, while the keys are held.
  void click(std::uint8_t button, const std::vector<int>& heldKeys = {});
  // Presses the keys in this order, and releases them in the other.
  void press(const std::vector<int>& keys);

 private:
  [[nodiscard]] std::optional<ScreenWindow> search(xcb_window_t window, int x, int y,
                                                   const std::function<bool(const ScreenWindow&)>& fits);
  [[nodiscard]] xcb_atom_t atom(const std::string& name);
  [[nodiscard]] std::string text(xcb_window_t window, xcb_atom_t property);
  [[nodiscard]] std::vector<std::uint32_t> numbers(xcb_window_t window, xcb_atom_t property);
  void fake(std::uint8_t type, int detail, int x = 0, int y = 0);

  xcb_connection_t* const connection_;
  xcb_window_t root_ = XCB_NONE;
};
