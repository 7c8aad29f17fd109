#include "base/format.h"

#include <array>
#include <cstdio>

namespace {

void appendReal(std::string& text, int precision, double value) {
  // Room for the largest double with a few decimals.
  std::array<char, 400> digits{};
  std::snprintf(digits.data(), digits.size(), "%.*f", precision, value);
  text += digits.data();
}

// The sign counts as one of the digits, as in C.
void appendInteger(std::string& text, int digits, std::string number) {
  const std::size_t sign = number.front() == '-' ? 1 : 0;
  const auto least = static_cast<std::size_t>(digits);
  if (number.size() < least) number.insert(sign, least - number.size(), '0');
  text += number;
}

}  // namespace

std::string HLFormatArguments(std::string_view format, std::span<const HLFormatArgument> arguments) {
  std::string text;
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%') {
      text += format[i];
      continue;
    }
    const HLFormatPlaceholder placeholder = HLParsePlaceholder(format.substr(i));
    i += placeholder.length - 1;
    if (placeholder.kind == '%') {
      text += '%';
      continue;
    }
    const HLFormatArgument& argument = arguments[next++];
    if (const auto* words = std::get_if<std::string_view>(&argument)) {
      text += *words;
    } else if (const auto* integer = std::get_if<std::int64_t>(&argument)) {
      appendInteger(text, placeholder.precision, std::to_string(*integer));
    } else if (const auto* natural = std::get_if<std::uint64_t>(&argument)) {
      appendInteger(text, placeholder.precision, std::to_string(*natural));
    } else {
      appendReal(text, placeholder.precision, std::get<double>(argument));
    }
  }
  return text;
}
