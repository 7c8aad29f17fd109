// Converts shortcuts to text and to the hot-key service's numbers. Pure; thread-safe.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/application/events.h"

// The modifiers that a shortcut can contain; Caps Lock, Fn and others are ignored.
inline constexpr std::uint64_t HLShortcutModifiers =
    HLModifierShift | HLModifierControl | HLModifierOption | HLModifierCommand;

// Returns, for example, "⌃⌥⌘N"; "?" replaces a missing key label.
[[nodiscard]] std::string HLShortcutLabel(std::uint64_t modifiers, const std::optional<std::string>& keyLabel);

// Returns the key's symbol or name; else its upper-case character; else, for example, "Key 90".
[[nodiscard]] std::string HLKeyLabelForEvent(const HLKeyEvent& event);

// Returns true for F1 to F12, which need no modifiers.
[[nodiscard]] bool HLIsFunctionKey(std::int64_t code);

// Converts event modifier flags to those of the hot-key service.
[[nodiscard]] std::uint32_t HLCarbonModifiers(std::uint64_t modifiers);
