// Points, sizes and frames in screen points, y growing downwards.
#pragma once

#include <cmath>
#include <limits>

struct HLPoint {
  double x = 0;
  double y = 0;
  bool operator==(const HLPoint&) const = default;
};

struct HLSize {
  double width = 0;
  double height = 0;
  bool operator==(const HLSize&) const = default;
};

// A frame, or the null rectangle where none is known. Ask isNull(); never compare fields for it.
struct HLRect {
  double x = std::numeric_limits<double>::infinity();
  double y = std::numeric_limits<double>::infinity();
  double width = 0;
  double height = 0;

  [[nodiscard]] bool isNull() const { return std::isinf(x) && std::isinf(y); }
  [[nodiscard]] double maxX() const { return x + width; }
  bool operator==(const HLRect&) const = default;
};
