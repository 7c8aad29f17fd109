// The order in which targets are considered: the most confident first, then the highest on screen, then the rightmost.
#pragma once

#include <vector>

#include "core/scan/records.h"

// Returns a negative number when a comes first, a positive one when b does, and 0 when they are equal. Targets without
// a frame come after those of the same score with one. When a coordinate is NaN, b comes first.
[[nodiscard]] int HLCompareTargets(const HLDismissTarget& a, const HLDismissTarget& b);

[[nodiscard]] std::vector<HLDismissTarget> HLSortedTargets(std::vector<HLDismissTarget> targets);
