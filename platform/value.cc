#include "platform/value.h"

#include <array>
#include <cstdio>

const HLValue* HLDictionaryValue(const HLDictionary& dictionary, std::string_view key) {
  for (const HLDictionaryEntry& entry : dictionary) {
    if (entry.key == key) return &entry.value;
  }
  return nullptr;
}

std::optional<std::string> HLNumberText(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return *truth ? "1" : "0";
  if (const std::int64_t* integer = value.as<std::int64_t>()) return std::to_string(*integer);
  if (const double* real = value.as<double>()) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%0.16g", *real);
    return text.data();
  }
  return std::nullopt;
}

std::optional<std::int64_t> HLIntegerPart(const HLValue& value) {
  if (const std::int64_t* integer = value.as<std::int64_t>()) return *integer;
  const double* real = value.as<double>();
  constexpr double kBeyond = 9223372036854775808.0;
  if (real == nullptr || !(*real > -kBeyond && *real < kBeyond)) return std::nullopt;
  return static_cast<std::int64_t>(*real);
}
