// Checks of what this process and the daemon can dismiss. They dismiss nothing.
#pragma once

#include <iosfwd>

// Prints trust, Notification Center's process and the number of targets. Returns 0 when this process is trusted,
// else 1.
[[nodiscard]] int HLSelfCheck(std::ostream& out);

// Returns whether a daemon answers that is trusted. Blocks while the daemon serves others.
[[nodiscard]] bool HLLocalDaemonReachable();

// Prints whether the daemon is reachable, and its answer. Returns 0 when it answers and is trusted, else 1.
[[nodiscard]] int HLLocalDaemonSelfCheck(std::ostream& out);
