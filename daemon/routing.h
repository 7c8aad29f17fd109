// Where a dismissal runs: in this process when it is trusted, else in the daemon.
#pragma once

#include "core/dismissal/result.h"

// Dismisses here or in the daemon and returns the result. Blocks, also while the daemon serves others. Thread-safe.
[[nodiscard]] HLDismissResult HLDismissNotificationsPreferTrustedDaemon();
