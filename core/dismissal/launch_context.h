// Names this process and its parent for the logs.
#pragma once

#include <string>

// Returns "pid=%d ppid=%d parentBundle=%@ parentName=%@" of this process; "none" unless the parent is a running
// application with bundle identifier and name.
[[nodiscard]] std::string HLLaunchContextSummary();
