// An X server connection with the queries that the tray icon needs.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct HLXFree {
  void operator()(void* reply) const { std::free(reply); }  // NOLINT: allocated by xcb with malloc
};
template <class Reply>
using HLXReply = std::unique_ptr<Reply, HLXFree>;

struct HLXVisual {
  xcb_visualid_t id = 0;
  std::uint8_t depth = 0;
};

class HLXConnection {
 public:
  // Returns nullopt if the server cannot be reached.
  [[nodiscard]] static std::optional<HLXConnection> open();

  [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
  [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
  [[nodiscard]] int screenNumber() const { return screenNumber_; }

  [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
  // Returns the 32-bit values of a property; empty if it is missing or of another type.
  [[nodiscard]] std::vector<std::uint32_t> property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;
  // Returns nullopt if no depth of the screen has the visual.
  [[nodiscard]] std::optional<HLXVisual> visual(xcb_visualid_t id) const;

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  HLXConnection(xcb_connection_t* connection, int screenNumber);

  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
  const xcb_screen_t* screen_;
  int screenNumber_;
};
