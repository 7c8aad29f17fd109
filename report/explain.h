// The mode that explains what a dismissal would do.
#pragma once

#include <iosfwd>

// Prints what is on screen and what the program thinks of it; as data, if "--json" is among the process's arguments.
// Presses nothing. Texts of notifications are replaced, unless `out` is a terminal or "--keep-texts" is among the
// arguments. Returns 0, or 1 if there is an unknown argument, nothing can be read, the texts cannot be replaced, or
// `out` cannot be written.
[[nodiscard]] int HLExplainScreen(std::ostream& out, std::ostream& err);
