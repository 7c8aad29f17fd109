// Where a dismissal runs: in this process when it is trusted, else in the daemon.
#pragma once

#include "core/dismissal/result.h"

// Blocks until the result is known, at worst for as long as the daemon is busy. Any thread.
[[nodiscard]] HLDismissResult HLDismissNotificationsPreferTrustedDaemon();
