// Feedback of a dismissal: titles of the status button while it runs, and why notifications are left.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/dismissal/result.h"

// Returns "HL…" in the personal flavor, "" in the product flavor, which shows an image. Pure; thread-safe.
[[nodiscard]] std::string HLBusyTitle(bool isProductFlavor);

// Returns "HL 5" or "5"; the busy title for a count below 1. Pure; thread-safe.
[[nodiscard]] std::string HLProgressTitle(bool isProductFlavor, std::int64_t count);

// Rounds to the nearest integer, halves away from zero.
[[nodiscard]] std::int64_t HLElapsedMilliseconds(double seconds);

// Returns whether Notification Center shows a banner, closable or not. False if this process is not trusted.
// Thread-safe; blocks until Notification Center replies.
[[nodiscard]] bool HLHasBanner();

// Returns one sentence for the user, or nullopt if no notification is known to be left. `hasBanner` counts only after a
// dismissal that found nothing to press. Pure; thread-safe.
[[nodiscard]] std::optional<std::string> HLFailureReason(const HLDismissResult& result, bool hasBanner,
                                                         const std::string& applicationName);
