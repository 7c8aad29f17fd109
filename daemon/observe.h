// Showing what Notification Center does: its accessibility events, and its elements in one line each.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/accessibility.h"
#include "platform/geometry.h"

// Prints every event of Notification Center for so many seconds, each line as it happens. Returns 1, and prints the
// reason on err, when there is none or it cannot be watched; else 0. Main thread.
[[nodiscard]] int HLObserveNotificationCenter(double seconds, std::ostream& out, std::ostream& err);

[[nodiscard]] std::string HLElementDebugSummary(const HLElement& element);

// The element that the attribute holds, or "none".
[[nodiscard]] std::string HLAttributeButtonSummary(const HLElement& element, std::string_view attribute);

[[nodiscard]] std::string HLFrameSummary(const HLRect& frame);
