// Finds what can be dismissed in one window.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "core/scan/records.h"

inline constexpr std::size_t HLScanLimit = 1400;  // elements visited per root

// Returns the targets at and below the root, breadth-first, the first of each key. The label names the root in the log.
[[nodiscard]] std::vector<HLDismissTarget> HLTargetsInRoot(const HLElementRef& root, std::string_view label);

// Whether the target is so clearly a single control that the scan leaves out its descendants.
[[nodiscard]] bool HLShouldPruneDescendantsAfterCandidate(const HLDismissTarget& target);
