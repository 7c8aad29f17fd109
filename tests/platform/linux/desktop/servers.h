// The notification servers that tests run.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>

struct Server {
  std::string name;
  std::string command;
  int most;                     // it refuses more notifications than that, or there is no point in more
  std::uint32_t closingReason;  // that it gives when Hushlet closes a notification
};

inline void PrintTo(const Server& server, std::ostream* out) { *out << server.name; }

inline const Server kMate = {"mate", HL_MATE_SERVER, 20, 1};
inline const Server kLxqt = {"lxqt", HL_LXQT_SERVER, 25, 2};
// Their banners have no close control, so they are closed by number.
inline const Server kXfce = {"xfce", HL_XFCE_SERVER, 25, 3};
inline const Server kDunst = {"dunst", HL_DUNST_SERVER, 20, 3};
