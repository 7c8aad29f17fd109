// Output about Notification Center: its accessibility events, and summaries of its elements.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "platform/accessibility.h"
#include "platform/geometry.h"

// Prints every accessibility event of Notification Center for `seconds`, each when it happens. Returns 0, or 1 with the
// reason on `err` if Notification Center is not running or cannot be observed. Main thread; runs its run loop.
[[nodiscard]] int HLObserveNotificationCenter(double seconds, std::ostream& out, std::ostream& err);

[[nodiscard]] std::string HLElementDebugSummary(const HLElement& element);

// Returns a summary of the element in the attribute, or "none".
[[nodiscard]] std::string HLAttributeButtonSummary(const HLElement& element, std::string_view attribute);

[[nodiscard]] std::string HLFrameSummary(const HLRect& frame);
