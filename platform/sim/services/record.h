// The dump and the record of a run.
#pragma once

#include <string>

#include "platform/sim/desktop/desktop.h"
#include "platform/sim/services/user_interface.h"

// Returns the state of the user interface as one line of JSON, without a line feed.
[[nodiscard]] std::string HLDumpLine(const HLSimDesktop& desktop, HLSimUserInterface& interface)
    HL_REQUIRES(desktop.clock);
// Returns the same with the actions performed and the elements on screen.
[[nodiscard]] std::string HLRecordLine(const HLSimDesktop& desktop, HLSimUserInterface& interface)
    HL_REQUIRES(desktop.clock);

// Appends the line to the file. On failure returns false and prints a line on standard error.
bool HLAppendRecord(const std::string& path, const std::string& line);
