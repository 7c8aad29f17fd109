// Output that a person reads at a terminal.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

// Marks a stream as one that goes to a terminal; no other is taken for one. Not while other threads use the stream.
void HLMarkAsTerminal(std::ostream& stream);
[[nodiscard]] bool HLIsTerminal(std::ostream& stream);

// Returns the text with its control characters (C0, DEL and C1) written as \u001B.
[[nodiscard]] std::string HLVisibleText(std::string_view text);
