// The mode that explains what a dismissal would do.
#pragma once

#include <iosfwd>

// Prints what is on screen and what the program thinks of it; presses nothing. With "--json" among the process's
// arguments it prints the same as data. Texts of notifications are shown on a terminal, elsewhere replaced, unless
// "--keep-texts" is among the arguments. Returns 0, or 1 when this process may not read, nothing shows notifications,
// or the texts cannot be replaced.
[[nodiscard]] int HLExplainScreen(std::ostream& out, std::ostream& err);
