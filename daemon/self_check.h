// Whether this process could dismiss anything, and how much there is.
#pragma once

#include <iosfwd>

// Prints one line; 0 when this process is trusted, else 1. Dismisses nothing.
[[nodiscard]] int HLSelfCheck(std::ostream& out);
