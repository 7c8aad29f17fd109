// The words that mark notifications, close controls and their opposites.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using HLWordList = std::span<const std::string_view>;

// Whether the lower-cased text contains any of the (lower-case) words, anywhere.
[[nodiscard]] bool HLStringContainsAny(std::string_view text, HLWordList words);

// The same of a text that is lower-cased already.
[[nodiscard]] bool HLLowercaseContainsAny(std::string_view text, HLWordList words);

[[nodiscard]] bool HLIsNotificationContext(std::string_view text);

// Whether the text, in any letter case, holds "close", "dismiss" or "clear": what action names are tested for.
[[nodiscard]] bool HLContainsDismissWord(std::string_view text);

// Whether the element's own words hold a word that marks a close control.
[[nodiscard]] bool HLHasOwnCloseWord(std::string_view own);

// What a context, which is lower-cased already, is searched for. None of the words is longer than that, in bytes.
[[nodiscard]] bool HLContextHoldsNotificationWord(std::string_view context);
[[nodiscard]] bool HLContextHoldsCloseWord(std::string_view context);
inline constexpr std::size_t HLLongestContextWord = 23;

// The first action, unchanged, whose name in any letter case says that it closes, dismisses or clears.
[[nodiscard]] std::optional<std::string> HLExplicitDismissAction(const std::vector<std::string>& actionNames);

// Whether a plain press is among the actions.
[[nodiscard]] bool HLIsPressable(const std::vector<std::string>& actionNames);
