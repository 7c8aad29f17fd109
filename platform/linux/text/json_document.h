// JSON text and the values that it stands for.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

#include "platform/value.h"

// Keeps its keys in the order of the text; of a key that comes twice, the last value.
using HLJsonDocument = nlohmann::ordered_json;

// Nothing when the text is not JSON to the letter, or is nested too deeply for its reader's stack.
[[nodiscard]] std::optional<HLJsonDocument> HLJsonDocumentOf(std::string_view text);

[[nodiscard]] HLValue HLValueOfJson(const HLJsonDocument& json);
