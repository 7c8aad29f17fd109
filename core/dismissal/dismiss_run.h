// The entry of the engine: every dismissal is one call of HLDismissNotificationsNow.
#pragma once

#include <cstdint>

#include "core/dismissal/result.h"
#include "platform/accessibility.h"

// Dismisses all notifications. Keeps no state between calls. Any thread, one call at a time; blocks.
[[nodiscard]] HLDismissResult HLDismissNotificationsNow();

// Ends the process and waits for its successor. Returns the successor's process identifier, or 0 if none started.
// Blocks.
[[nodiscard]] std::int32_t HLRestartNotificationCenter(std::int32_t oldPid);

// Waits until two scans find the same number of targets, and returns that number; after 16 scans the last one. Blocks.
[[nodiscard]] std::int64_t HLWaitForRepresentedAlerts(const HLElement& application);
