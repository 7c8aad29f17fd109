#pragma once

#include <string>

#include "platform/application/windows.h"

// Writes a PNG of each visible window into `directory`, which must exist, and logs each result. Main thread only.
void HLWriteWindowSnapshots(HLWindows& windows, const std::string& directory);
