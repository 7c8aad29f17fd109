// Finds the control to press for a target that is a whole notification.
#pragma once

#include <optional>

#include "core/scan/records.h"

// Returns the target itself if it is not large or its action's name has a dismiss word; else the close control that is
// an attribute of its element or at or below it, or the target if there is none.
[[nodiscard]] HLDismissTarget HLResolvedTarget(const HLDismissTarget& target);

[[nodiscard]] bool HLTargetUsesClearAction(const HLDismissTarget& target);

// Returns the close or cancel button that is an attribute of the element.
[[nodiscard]] std::optional<HLDismissTarget> HLCloseControlAttributeTarget(const HLElement& element);

// Returns the best close control among the first 120 elements at and below the root, breadth-first.
[[nodiscard]] std::optional<HLDismissTarget> HLFocusedDismissControlInSubtree(const HLElementRef& root);
