// Finding everything in one window that can be dismissed.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "core/scan/records.h"

inline constexpr std::size_t HLScanLimit = 1400;  // elements visited per root

// The targets at and below the root, in the order found, the first of each key. The label names the root in the log.
[[nodiscard]] std::vector<HLDismissTarget> HLTargetsInRoot(const HLElementRef& root, std::string_view label);

// Whether the target is so clearly a single control that what lies below it is not worth a look.
[[nodiscard]] bool HLShouldPruneDescendantsAfterCandidate(const HLDismissTarget& target);
