// The records of a scan: elements to visit, and controls that it found.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/scan/context.h"
#include "platform/accessibility.h"
#include "platform/geometry.h"

// An element to visit.
struct HLQueueItem {
  HLElementRef element;
  HLContext context;  // of its parent; empty for the root
};

// A control that probably dismisses a notification.
struct HLDismissTarget {
  HLElementRef element;
  std::string action;  // as the element reports it
  HLRect frame;        // when the target was made; may be null
  std::int64_t score = 0;
  std::string snapshot;  // at most 180 UTF-16 units of the words that justified it
  std::string reason;    // why it was chosen: words joined by ","
};

inline constexpr std::size_t HLSnapshotLimit = 180;  // UTF-16 code units

// Returns the words separated by one space, without white space at the ends. Keeps letter case.
[[nodiscard]] std::string HLCompactSnapshot(std::string text);

// Within one scan, targets with equal keys are the same control.
[[nodiscard]] std::string HLDeduplicationKeyForTarget(const HLDismissTarget& target);
