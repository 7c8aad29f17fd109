// What the status button says while a dismissal runs. Pure; any thread.
#pragma once

#include <cstdint>
#include <string>

// "HL…" in the personal flavor; nothing in the product flavor, which has its image.
[[nodiscard]] std::string HLBusyTitle(bool isProductFlavor);

// "HL 5" or "5"; the busy title for a count below 1.
[[nodiscard]] std::string HLProgressTitle(bool isProductFlavor, std::int64_t count);

// To the nearest one, halves away from 0.
[[nodiscard]] std::int64_t HLElapsedMilliseconds(double seconds);
