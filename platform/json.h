// JSON documents. Each host answers with its system's own parser, chosen when the program is linked.
#pragma once

#include <optional>
#include <string_view>

#include "platform/value.h"

// The document that the text holds, null as a missing value; nothing when it holds none. An integer is one of 64 bits,
// or else a real number. Any thread.
[[nodiscard]] std::optional<HLValue> HLReadJson(std::string_view text);
