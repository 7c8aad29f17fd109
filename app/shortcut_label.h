// A shortcut as text and as numbers. All functions are pure; any thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/application/events.h"

// Those that a shortcut may have; Caps Lock, Fn and others do not count.
inline constexpr std::uint64_t HLShortcutModifiers =
    HLModifierShift | HLModifierControl | HLModifierOption | HLModifierCommand;

// "⌃⌥⌘N"; "?" in place of a missing key label.
[[nodiscard]] std::string HLShortcutLabel(std::uint64_t modifiers, const std::optional<std::string>& keyLabel);

// A sign or name where the key has one, else the character that it types, in upper case, else "Key 90".
[[nodiscard]] std::string HLKeyLabelForEvent(const HLKeyEvent& event);

// F1 to F12, which need no modifiers.
[[nodiscard]] bool HLIsFunctionKey(std::int64_t code);

// The hot-key service's numbers for the same modifiers.
[[nodiscard]] std::uint32_t HLCarbonModifiers(std::uint64_t modifiers);
