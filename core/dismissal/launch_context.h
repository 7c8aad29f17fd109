// Which process this is and what started it, for the logs.
#pragma once

#include <string>

// "pid=%d ppid=%d parentBundle=%@ parentName=%@" of this process; "none" where the parent is no running application.
[[nodiscard]] std::string HLLaunchContextSummary();
