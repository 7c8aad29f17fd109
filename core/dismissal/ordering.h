// The order in which targets are considered: the most confident first, then the highest on screen, then the rightmost.
#pragma once

#include <vector>

#include "core/scan/records.h"

// Negative: a comes first; positive: b does; 0: they are equal. A target without a frame comes after all framed ones of
// its score. Where a coordinate is NaN, b comes first either way round.
[[nodiscard]] int HLCompareTargets(const HLDismissTarget& a, const HLDismissTarget& b);

[[nodiscard]] std::vector<HLDismissTarget> HLSortedTargets(std::vector<HLDismissTarget> targets);
