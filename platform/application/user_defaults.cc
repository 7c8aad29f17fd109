#include "platform/application/user_defaults.h"

#include <algorithm>
#include <limits>

#include "platform/text.h"

namespace {

std::int64_t cut(double number) {
  // The largest 64-bit integer is no double; the next double above it is where clamping begins.
  constexpr double kBeyond = 9223372036854775808.0;
  if (!(number < kBeyond)) return number != number ? 0 : std::numeric_limits<std::int64_t>::max();
  if (number < -kBeyond) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(number);
}

}  // namespace

std::int64_t HLIntegerDefault(HLUserDefaults& defaults, std::string_view key) {
  const HLValue value = defaults.value(key);
  if (const bool* truth = value.as<bool>()) return *truth ? 1 : 0;
  if (const std::int64_t* integer = value.as<std::int64_t>()) return *integer;
  if (const double* number = value.as<double>()) return cut(*number);
  if (const std::string* text = value.as<std::string>()) return HLLeadingInteger(*text);
  return 0;
}

bool HLBooleanDefault(HLUserDefaults& defaults, std::string_view key) {
  const HLValue value = defaults.value(key);
  if (const std::string* text = value.as<std::string>()) {
    const std::string lower = HLLowercase(HLTrim(*text));
    return lower.starts_with('y') || lower.starts_with('t') || HLLeadingInteger(lower) != 0;
  }
  return HLIntegerDefault(defaults, key) != 0;
}

std::optional<std::string> HLStringDefault(HLUserDefaults& defaults, std::string_view key) {
  const HLValue value = defaults.value(key);
  if (const std::string* text = value.as<std::string>()) return *text;
  return HLNumberText(value);
}
