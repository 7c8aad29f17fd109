// Whether an element dismisses a notification: an additive score over yes/no tests of what was read of it.
#pragma once

#include <optional>
#include <string>

#include "core/scan/context.h"
#include "core/scan/records.h"
#include "platform/element_facts.h"

// Whether role, subrole or structural words mark a part of a menu.
[[nodiscard]] bool HLIsMenuLike(const HLElementFacts& facts);

// Returns the element as a target, or nullopt when it dismisses nothing. `own` are its searchable words, which end
// `context`.
[[nodiscard]] std::optional<HLDismissTarget> HLCandidateForElement(const HLElementRef& element,
                                                                   const HLElementFacts& facts,
                                                                   const HLContext& context, const std::string& own);
