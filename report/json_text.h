// Writes JSON documents.
#pragma once

#include <string>

#include "platform/value.h"

// Returns the document as indented text, an object or list that fits into a line in one; ends with a line feed. A real
// number is written so that it is read as the same real number; what JSON cannot hold is null. Text is made encodable.
[[nodiscard]] std::string HLJsonText(const HLValue& document);
