// Why a dismissal left notifications on screen.
#pragma once

#include <optional>
#include <string>

#include "core/dismissal/result.h"

// Returns whether Notification Center shows a banner, closable or not. False if this process is not trusted.
// Thread-safe; blocks until Notification Center replies.
[[nodiscard]] bool HLHasBanner();

// Returns one sentence for the user, or nullopt if no notification is known to be left. `hasBanner` counts only after a
// dismissal that found nothing to press. Pure; thread-safe.
[[nodiscard]] std::optional<std::string> HLFailureReason(const HLDismissResult& result, bool hasBanner,
                                                         const std::string& applicationName);
