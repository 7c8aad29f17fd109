// What can be dismissed from here: by this process, and by the daemon.
#pragma once

#include <iosfwd>

// Prints one line; 0 when this process is trusted, else 1. Dismisses nothing.
[[nodiscard]] int HLSelfCheck(std::ostream& out);

// Whether a daemon answers that is itself trusted.
[[nodiscard]] bool HLLocalDaemonReachable();

// Prints whether the daemon answers and with what; 0 when it does and is trusted, else 1.
[[nodiscard]] int HLLocalDaemonSelfCheck(std::ostream& out);
