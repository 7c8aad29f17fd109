// The words by which notifications and the controls that close them are recognized: which list is for what. The lists
// overlap on purpose ("unmute" and "mute"); do not deduplicate.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using HLWordList = std::span<const std::string_view>;

// Words are lower-case ASCII with one space at most, do not end in i, and match anywhere in a lower-cased text.

// In an action's name: the action closes the element that has it. In the words of an element and its ancestors: the
// element is near a control that closes.
inline constexpr std::array<std::string_view, 3> HLDismissWords = {"close", "dismiss", "clear"};
// In an element's own words: the element is a control that closes.
inline constexpr std::array<std::string_view, 4> HLOwnCloseWords = {"close", "dismiss", "clear", "xmark"};
// In an action's name: the batch counts the action as clearing, any other one as closing.
inline constexpr std::array<std::string_view, 1> HLClearWords = {"clear"};
// In the words of an element and its ancestors: the element belongs to a notification.
inline constexpr std::array<std::string_view, 6> HLNotificationWords = {
    "notification", "axnotification", "stacked", "notification center", "from iphone", "axnotificationlistitems"};
// In an element's own words: the element does something else than closing.
inline constexpr std::array<std::string_view, 18> HLNegativeWords = {
    "reply",  "open", "options", "show", "view",  "accept", "decline", "allow",      "later",
    "snooze", "mute", "unmute",  "play", "pause", "call",   "manage",  "clear menu", "menu item"};
// In an element's own words: the element is a button.
inline constexpr std::array<std::string_view, 1> HLButtonWords = {"button"};
// In a role or subrole, and in an element's structural words: the element is a part of a menu.
inline constexpr std::array<std::string_view, 1> HLMenuRoleWords = {"menu"};
inline constexpr std::array<std::string_view, 3> HLMenuStructureWords = {"menu item", "menu bar", "menubar"};

// Whether the text, in any letter case, contains any of the words.
[[nodiscard]] bool HLStringContainsAny(std::string_view text, HLWordList words);

// The same for a text whose ASCII letters are lower-cased already.
[[nodiscard]] bool HLLowercaseContainsAny(std::string_view text, HLWordList words);

// Returns the first word of the list that a lower-cased text contains, or nullopt.
[[nodiscard]] std::optional<std::string_view> HLWordIn(std::string_view text, HLWordList words);

// Returns the first action, unchanged, whose name contains a dismiss word.
[[nodiscard]] std::optional<std::string> HLExplicitDismissAction(const std::vector<std::string>& actionNames);

// Returns the first action that closes a banner of an automation: one that begins with "Name:Close", or "AXClose". The
// auto-closer acts without the user, so it accepts fewer names than a dismissal.
[[nodiscard]] std::optional<std::string> HLCloseAction(const std::vector<std::string>& actionNames);

// Whether a plain press is among the actions.
[[nodiscard]] bool HLIsPressable(const std::vector<std::string>& actionNames);
