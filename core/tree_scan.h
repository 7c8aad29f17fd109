// The breadth-first walk of one window.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "core/context.h"
#include "core/element_facts.h"
#include "core/records.h"

inline constexpr std::size_t HLScanLimit = 1400;  // elements visited per root

// The targets at and below the root, in the order found, the first of each key. The label names the root in the log.
[[nodiscard]] std::vector<HLDismissTarget> HLTargetsInRoot(const HLElementRef& root, std::string_view label);

// The children of an element whose context this is, in their order; one that is listed twice comes twice.
[[nodiscard]] std::vector<HLQueueItem> HLChildQueueItems(const HLElementFacts& facts,
                                                         const std::shared_ptr<const HLContext>& context);

// Whether the target is so clearly a single control that what lies below it is not worth a look.
[[nodiscard]] bool HLShouldPruneDescendantsAfterCandidate(const HLDismissTarget& target);
