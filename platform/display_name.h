// What the program is called in front of its user.
#pragma once

#include <string>

#include "platform/process_info.h"

// What the process's bundle calls itself, "Hushlet" where it does not. Any thread.
[[nodiscard]] std::string HLDisplayName(HLProcessInfo& process);
