// Writes JSON documents.
#pragma once

#include <string>

#include "platform/value.h"

// Returns the document as indented text that ends with a line feed; short objects and lists take one line. Reals keep
// their exact value. NaN, infinities and values that JSON lacks become null; ill-formed text becomes U+FFFD.
[[nodiscard]] std::string HLJsonText(const HLValue& document);
