// Mouse and keyboard events, in the numbers of macOS, which are also stored in the preferences and logged.
#pragma once

#include <cstdint>
#include <string>

inline constexpr std::uint64_t HLModifierCapsLock = 0x10000;
inline constexpr std::uint64_t HLModifierShift = 0x20000;
inline constexpr std::uint64_t HLModifierControl = 0x40000;
inline constexpr std::uint64_t HLModifierOption = 0x80000;
inline constexpr std::uint64_t HLModifierCommand = 0x100000;
inline constexpr std::uint64_t HLModifierFunction = 0x800000;

inline constexpr std::int64_t HLEventLeftMouseUp = 2;
inline constexpr std::int64_t HLEventRightMouseUp = 4;

// A mouse event.
struct HLEvent {
  std::int64_t type = 0;
  std::uint64_t modifiers = 0;  // a host may set other bits too
};

// A virtual key code of macOS: a position on the keyboard.
using HLKeyCode = std::uint16_t;
inline constexpr HLKeyCode HLKeyReturn = 36;
inline constexpr HLKeyCode HLKeyTab = 48;
inline constexpr HLKeyCode HLKeySpace = 49;
inline constexpr HLKeyCode HLKeyDelete = 51;
inline constexpr HLKeyCode HLKeyEscape = 53;

struct HLKeyEvent {
  HLKeyCode code = 0;
  std::uint64_t modifiers = 0;
  std::string charactersIgnoringModifiers;
};
