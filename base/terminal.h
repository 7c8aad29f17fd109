// Output that a person reads at a terminal.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

// Marks a stream as one that goes to a terminal so many columns wide, 0 when that is not known; no other stream is
// taken for one. Not while other threads use the stream.
void HLMarkAsTerminal(std::ostream& stream, int columns = 0);
[[nodiscard]] bool HLIsTerminal(std::ostream& stream);

// Returns the columns of a terminal, or `otherwise` when they are not known or the stream goes elsewhere.
[[nodiscard]] int HLTerminalColumns(std::ostream& stream, int otherwise);

// Returns the text with its control characters (C0, DEL and C1) written as \u001B.
[[nodiscard]] std::string HLVisibleText(std::string_view text);
