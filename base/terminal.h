// Output that a person reads at a terminal.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

// Marks a stream as one that goes to a terminal; `columns` is 0 if its width is not known. Not while other threads use
// the stream.
void HLMarkAsTerminal(std::ostream& stream, int columns = 0);
[[nodiscard]] bool HLIsTerminal(std::ostream& stream);

// Returns the width of a terminal, or `otherwise` if it is not known or the stream goes elsewhere.
[[nodiscard]] int HLTerminalColumns(std::ostream& stream, int otherwise);

// Returns the text with control characters, and those that change the direction of text, written as \u001B.
[[nodiscard]] std::string HLVisibleText(std::string_view text);

// Returns how many columns a terminal needs for a visible text. Wide characters take two; combining ones count as one.
[[nodiscard]] std::size_t HLColumns(std::string_view text);

// Cuts a visible text, with an ellipsis at its end, so that it needs at most `columns`, of which there is one at least.
[[nodiscard]] std::string HLCutToColumns(std::string_view text, std::size_t columns);
