// Whether an element dismisses a notification: an additive score over yes/no tests of what was read of it.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/context.h"
#include "core/element_facts.h"
#include "core/records.h"

// No word that a context is searched for is longer, in bytes.
inline constexpr std::size_t HLLongestContextWord = 23;

using HLWordList = std::span<const std::string_view>;

// Whether the lower-cased text contains any of the (lower-case) words, anywhere.
[[nodiscard]] bool HLStringContainsAny(std::string_view text, HLWordList words);

[[nodiscard]] bool HLIsNotificationContext(std::string_view text);

// Whether the text, in any letter case, holds "close", "dismiss" or "clear": what action names are tested for.
[[nodiscard]] bool HLContainsDismissWord(std::string_view text);

// What a context, which is lower-cased already, is searched for.
[[nodiscard]] bool HLContextHoldsNotificationWord(std::string_view context);
[[nodiscard]] bool HLContextHoldsCloseWord(std::string_view context);

// Whether the element's own words hold a word that marks a close control.
[[nodiscard]] bool HLHasOwnCloseWord(std::string_view own);

// Whether role, subrole or structural words mark a part of a menu.
[[nodiscard]] bool HLIsMenuLike(const HLElementFacts& facts);

// The first action, unchanged, whose name in any letter case says that it closes, dismisses or clears.
[[nodiscard]] std::optional<std::string> HLExplicitDismissAction(const std::vector<std::string>& actionNames);

[[nodiscard]] bool HLIsPressable(const std::vector<std::string>& actionNames);

// The target that the element is, or nothing. The context is that of the element itself, own its own words.
[[nodiscard]] std::optional<HLDismissTarget> HLCandidateForElement(const HLElementRef& element,
                                                                   const HLElementFacts& facts,
                                                                   const HLContext& context, const std::string& own);
