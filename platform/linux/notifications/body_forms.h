// How notification servers show the texts that were sent to them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Returns the text with each run of white space and line breaks as one blank, without blanks at the ends and without
// object replacement characters (U+FFFC). Servers break lines in their own ways and put images into texts.
[[nodiscard]] std::string HLPlainBlanks(std::string_view text);

// Returns the texts that a server may show for this body, with plain blanks, each once:
// - the text of the markup, read as leniently as HTML, or with only <b>, <i>, <u> and some entities understood;
// - the body itself, if it is not well-formed or has elements that strict servers do not understand;
// - its text outside angle brackets and its text before the fault, if it is not well-formed;
// - "", if it has elements that strict servers do not understand, since some servers then show no text.
[[nodiscard]] std::vector<std::string> HLBodyForms(std::string_view body);
