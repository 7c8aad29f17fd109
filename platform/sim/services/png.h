// Pictures of nothing.
#pragma once

#include <cstdint>
#include <string>

// A white PNG of that many pixels.
[[nodiscard]] std::string HLBlankPng(std::uint32_t width, std::uint32_t height);
