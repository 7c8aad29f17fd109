// Output that a person reads at a terminal.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

// Marks a stream that goes to a terminal; `columns` is 0 if its width is unknown. Not thread-safe.
void HLMarkAsTerminal(std::ostream& stream, int columns = 0);
[[nodiscard]] bool HLIsTerminal(std::ostream& stream);

// Returns the width of a terminal, or `otherwise` if it is unknown or the stream goes elsewhere.
[[nodiscard]] int HLTerminalColumns(std::ostream& stream, int otherwise);

// Returns the text with control characters, and those that change the direction of text, written as \u001B.
[[nodiscard]] std::string HLVisibleText(std::string_view text);

// Returns the terminal columns of a visible text: two for wide characters, one for others, combining ones included.
[[nodiscard]] std::size_t HLColumns(std::string_view text);

// Cuts a visible text to `columns`, at least 1; a cut text ends with an ellipsis.
[[nodiscard]] std::string HLCutToColumns(std::string_view text, std::size_t columns);
