// Keys by their position: the kernel's key codes and the home platform's virtual key codes.
#pragma once

#include <cstdint>
#include <optional>

// What the X server, and xkb on Wayland, add to the kernel's key codes.
inline constexpr std::uint32_t HLKeycodeOffsetOfXKB = 8;

// The virtual key code of the key with the kernel's code (KEY_* of linux/input-event-codes.h). The keys that only
// modify others have none, nor have those that the home platform's keyboards lack.
[[nodiscard]] std::optional<std::uint16_t> HLVirtualKeyForKernelKey(std::uint32_t kernelKey);
// The way back.
[[nodiscard]] std::optional<std::uint32_t> HLKernelKeyForVirtualKey(std::uint32_t virtualKey);
