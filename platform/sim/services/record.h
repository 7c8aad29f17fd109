// What a run leaves behind for those who compare runs.
#pragma once

#include <string>

#include "platform/sim/desktop/desktop.h"
#include "platform/sim/services/user_interface.h"

// The state of the user interface, as one line of JSON without its end. With the desktop's lock held.
[[nodiscard]] std::string HLDumpLine(const HLSimDesktop& desktop, HLSimUserInterface& interface);
// The same, and what was done on the desktop.
[[nodiscard]] std::string HLRecordLine(const HLSimDesktop& desktop, HLSimUserInterface& interface);

// Adds the line to the file; false, and a line on standard error, when that fails.
bool HLAppendRecord(const std::string& path, const std::string& line);
