// How notification servers label their close buttons, in the larger languages. All texts are passed trimmed and in
// lower case. Only the adapter uses these words: it maps a close button to an action "Name:Close", which the engine
// knows.
#pragma once

#include <string_view>

// Whether the whole name is one that servers give their close button. An application may give its own buttons the same
// name, so the name alone identifies nothing.
[[nodiscard]] bool HLIsCloseName(std::string_view lower);

// Whether the whole name is a letter or symbol that looks like a cross.
[[nodiscard]] bool HLIsCloseGlyph(std::string_view lower);

// Whether the description contains the stem of a word for closing, as in "Closes the notification."
[[nodiscard]] bool HLMentionsClosing(std::string_view lower);
