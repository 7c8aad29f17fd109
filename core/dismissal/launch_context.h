// Names this process and its parent for the logs.
#pragma once

#include <string>

// Returns "pid=%d ppid=%d parentBundle=%@ parentName=%@" of this process. parentBundle and parentName are each
// "none" if the parent is no running application or lacks that value.
[[nodiscard]] std::string HLLaunchContextSummary();
