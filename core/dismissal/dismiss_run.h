// The entry of the engine: every dismissal, whatever asked for it, is one call of HLDismissNotificationsNow.
#pragma once

#include <cstdint>

#include "core/dismissal/result.h"
#include "platform/accessibility.h"

// Blocks until done; keeps nothing between calls. One call at a time.
[[nodiscard]] HLDismissResult HLDismissNotificationsNow();

// Ends the process and waits for its successor: its process identifier, or 0 when none came.
[[nodiscard]] std::int32_t HLRestartNotificationCenter(std::int32_t oldPid);

// Waits until the number of targets holds still, and returns it.
[[nodiscard]] std::int64_t HLWaitForRepresentedAlerts(const HLElement& application);
