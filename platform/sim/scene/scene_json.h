// JSON text as a document, and what is wrong with it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <variant>

// Keeps the keys of objects in the order in which they are written.
using HLJson = nlohmann::ordered_json;

// The document, or "PLACE: what is wrong": no JSON, or one key twice in an object.
[[nodiscard]] std::variant<HLJson, std::string> HLParseJson(std::string_view text);
