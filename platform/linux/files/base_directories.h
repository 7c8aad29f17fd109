// Where a user's settings stand, by the XDG base directory rules.
#pragma once

#include <string>
#include <vector>

#include "platform/process_info.h"

// The user's own directory, $XDG_CONFIG_HOME or else ~/.config.
[[nodiscard]] std::string HLConfigHome(HLProcessInfo& process);

// The machine's, the most important first: $XDG_CONFIG_DIRS or else /etc/xdg.
[[nodiscard]] std::vector<std::string> HLConfigDirectories(HLProcessInfo& process);

// The parts of a text between those characters, without empty ones.
[[nodiscard]] std::vector<std::string> HLPartsBetween(const std::string& text, char separator);
