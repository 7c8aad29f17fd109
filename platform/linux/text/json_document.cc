#include "platform/linux/text/json_document.h"

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "platform/json.h"

namespace {

// A document is copied, written and converted by functions that call themselves for each level.
constexpr int kDeepest = 500;

// The parser needs no stack for nesting, but gives out all that it has read: so it is counted before. Whatever the
// text is, no document is nested more deeply than its brackets outside of quotes.
bool isTooDeep(std::string_view text) {
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') quoted = !quoted;
    if (c == '\\' && quoted) ++i;
    if (quoted) continue;
    if ((c == '[' || c == '{') && ++depth > kDeepest) return true;
    if (c == ']' || c == '}') --depth;
  }
  return false;
}

}  // namespace

std::optional<HLJsonDocument> HLJsonDocumentOf(std::string_view text) {
  if (isTooDeep(text)) return std::nullopt;
  HLJsonDocument json = HLJsonDocument::parse(text, nullptr, /*allow_exceptions=*/false);
  if (json.is_discarded()) return std::nullopt;
  return json;
}

HLValue HLValueOfJson(const HLJsonDocument& json) {
  using Type = HLJsonDocument::value_t;
  switch (json.type()) {
    case Type::boolean:
      return json.get<bool>();
    case Type::number_integer:
      return json.get<std::int64_t>();
    case Type::number_unsigned: {
      const auto number = json.get<std::uint64_t>();
      if (number > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
        return static_cast<double>(number);
      }
      return static_cast<std::int64_t>(number);
    }
    case Type::number_float:
      return json.get<double>();
    case Type::string:
      return json.get_ref<const std::string&>();
    case Type::array: {
      HLArray array;
      array.reserve(json.size());
      for (const HLJsonDocument& member : json) array.push_back(HLValueOfJson(member));
      return array;
    }
    case Type::object: {
      HLDictionary dictionary;
      dictionary.reserve(json.size());
      for (const auto& [key, member] : json.items()) dictionary.push_back({key, HLValueOfJson(member)});
      return dictionary;
    }
    default:
      return {};
  }
}

std::optional<HLValue> HLReadJson(std::string_view text) {
  const std::optional<HLJsonDocument> json = HLJsonDocumentOf(text);
  if (!json) return std::nullopt;
  return HLValueOfJson(*json);
}
