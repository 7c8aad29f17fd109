// Pictures of nothing.
#pragma once

#include <cstdint>
#include <string>

// Returns a white PNG of `width` x `height` pixels.
[[nodiscard]] std::string HLBlankPng(std::uint32_t width, std::uint32_t height);
