// Programs that are started and left alone.
#pragma once

#include <string>
#include <vector>

// Starts the program (a path) with these words as its arguments, the first being its name: in a session of its own, as
// nobody's child, with none of this process's descriptors. False when it could not be started.
[[nodiscard]] bool HLStartDetached(const std::string& program, const std::vector<std::string>& words);
