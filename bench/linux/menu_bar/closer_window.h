// Where the smallest closer's window stands: away from the tray and from every server's banners.
#pragma once

inline constexpr int HLCloserX = 20;  // pixels
inline constexpr int HLCloserY = 500;
inline constexpr int HLCloserSize = 40;
