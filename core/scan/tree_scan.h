// Finds the dismissible controls of one window.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "core/scan/records.h"
#include "core/scan/scoring.h"
#include "core/scan/tree_walk.h"

inline constexpr std::size_t HLScanLimit = 1400;  // elements visited per root

// The outcome of visiting one element.
struct HLScanStep {
  const HLVisit& visit;
  const HLScoreDetails& details;
  const std::optional<HLDismissTarget>& candidate;
  HLDescent descent;  // whether the scan goes on below the element
};
using HLScanListener = std::function<void(const HLScanStep&)>;

// Returns the targets at and below the root, breadth-first, the first of each key. The label names the root in the log.
// Calls the listener, if there is one, at each step, and then writes no log.
[[nodiscard]] std::vector<HLDismissTarget> HLTargetsInRoot(const HLElementRef& root, std::string_view label,
                                                           const HLScanListener& listener = nullptr);

// Whether the scan skips the descendants: the target is certainly a single control.
[[nodiscard]] bool HLShouldPruneDescendantsAfterCandidate(const HLDismissTarget& target);
