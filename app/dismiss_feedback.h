// Titles of the status button during a dismissal. Pure; thread-safe.
#pragma once

#include <cstdint>
#include <string>

// Returns "HL…" in the personal flavor, "" in the product flavor, which shows an image.
[[nodiscard]] std::string HLBusyTitle(bool isProductFlavor);

// Returns "HL 5" or "5"; the busy title for a count below 1.
[[nodiscard]] std::string HLProgressTitle(bool isProductFlavor, std::int64_t count);

// Rounds to the nearest integer, halves away from zero.
[[nodiscard]] std::int64_t HLElapsedMilliseconds(double seconds);
