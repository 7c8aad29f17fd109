// Maps the kernel's key codes to macOS virtual key codes. Both name a position on the keyboard.
#pragma once

#include <cstdint>
#include <optional>

// X11 and xkb keycodes are the kernel's plus this offset.
inline constexpr std::uint32_t HLKeycodeOffsetOfXKB = 8;

// `kernelKey` is a KEY_* of linux/input-event-codes.h. Returns nullopt for modifier keys and for keys that Apple
// keyboards lack.
[[nodiscard]] std::optional<std::uint16_t> HLVirtualKeyForKernelKey(std::uint32_t kernelKey);
// The inverse.
[[nodiscard]] std::optional<std::uint32_t> HLKernelKeyForVirtualKey(std::uint32_t virtualKey);
