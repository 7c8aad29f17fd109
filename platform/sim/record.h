// What a run leaves behind for those who compare runs.
#pragma once

#include <string>

#include "platform/sim/desktop.h"

// The state of the desktop and what was done on it, as one line of JSON without its end.
[[nodiscard]] std::string HLRecordLine(const HLSimDesktop& desktop);

// Adds the line to the file; false, and a line on standard error, when that fails.
bool HLAppendRecord(const std::string& path, const std::string& line);
