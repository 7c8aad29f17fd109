// From a target that is a whole notification to the control that is really to be pressed.
#pragma once

#include <optional>

#include "core/scan/records.h"

// The same target, or the close control at or below it.
[[nodiscard]] HLDismissTarget HLResolvedTarget(const HLDismissTarget& target);

[[nodiscard]] bool HLTargetUsesClearAction(const HLDismissTarget& target);

// The close or cancel button that the element itself names.
[[nodiscard]] std::optional<HLDismissTarget> HLCloseControlAttributeTarget(const HLElement& element);

// The best close control among the first 120 elements at and below the root.
[[nodiscard]] std::optional<HLDismissTarget> HLFocusedDismissControlInSubtree(const HLElementRef& root);
