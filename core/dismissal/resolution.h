// Finds the control to press for a target that is a whole notification.
#pragma once

#include <optional>

#include "core/scan/records.h"

// Returns the close control at or below the target if the target is large and its action dismisses nothing; otherwise
// the target itself.
[[nodiscard]] HLDismissTarget HLResolvedTarget(const HLDismissTarget& target);

[[nodiscard]] bool HLTargetUsesClearAction(const HLDismissTarget& target);

// Returns the close or cancel button that is an attribute of the element.
[[nodiscard]] std::optional<HLDismissTarget> HLCloseControlAttributeTarget(const HLElement& element);

// Returns the best close control among the first 120 elements at and below the root, breadth-first.
[[nodiscard]] std::optional<HLDismissTarget> HLFocusedDismissControlInSubtree(const HLElementRef& root);
