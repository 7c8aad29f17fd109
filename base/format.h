// A type-checked formatter: an argument that does not fit its placeholder does not compile. Placeholders are %@ for
// text and for booleans ("true", "false"), and C's %s, %d, %ld, %u, %lu and %%, zero-padded integers (%02ld), and %f
// with a precision.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

using HLFormatArgument = std::variant<std::string_view, std::int64_t, std::uint64_t, double>;

// One parsed placeholder.
struct HLFormatPlaceholder {
  char kind = 0;       // '@', 'd', 'u', 'f', or '%' for the sign itself
  int precision = 6;   // of 'f'; the minimum number of digits of an integer
  std::size_t length;  // in the format, with the percent sign; 0 for an unknown placeholder
};

constexpr HLFormatPlaceholder HLParsePlaceholder(std::string_view format) {
  std::size_t i = 1;
  int precision = 6;
  if (i < format.size() && format[i] == '.') {
    precision = 0;
    for (++i; i < format.size() && format[i] >= '0' && format[i] <= '9'; ++i)
      precision = precision * 10 + (format[i] - '0');
    return i < format.size() && format[i] == 'f' ? HLFormatPlaceholder{'f', precision, i + 1}
                                                 : HLFormatPlaceholder{0, 0, 0};
  }
  int digits = 1;
  if (i + 1 < format.size() && format[i] == '0' && format[i + 1] >= '1' && format[i + 1] <= '9') {
    digits = format[i + 1] - '0';
    i += 2;
  }
  const bool isLong = i < format.size() && format[i] == 'l';
  if (isLong) ++i;
  const char c = i < format.size() ? format[i] : '\0';
  if (c == 'd' || c == 'u') return {c, digits, i + 1};
  if (digits > 1) return {0, 0, 0};
  if (!isLong && (c == '@' || c == 's')) return {'@', precision, i + 1};
  if (!isLong && (c == 'f' || c == '%')) return {c, precision, i + 1};
  return {0, 0, 0};
}

template <class T>
constexpr char HLPlaceholderKindOf() {
  if constexpr (std::convertible_to<T, std::string_view> || std::same_as<T, bool>) {
    return '@';
  } else if constexpr (std::floating_point<T>) {
    return 'f';
  } else {
    static_assert(std::integral<T>);
    return std::signed_integral<T> ? 'd' : 'u';
  }
}

template <class... Args>
class HLFormatString {
 public:
  template <class Text>
  requires std::convertible_to<const Text&, std::string_view>
  consteval HLFormatString(const Text& text) : text_(text) {  // NOLINT: converts on purpose
    constexpr char kinds[] = {HLPlaceholderKindOf<std::remove_cvref_t<Args>>()..., '\0'};
    std::size_t argument = 0;
    for (std::size_t i = 0; i < text_.size(); ++i) {
      if (text_[i] != '%') continue;
      const HLFormatPlaceholder placeholder = HLParsePlaceholder(text_.substr(i));
      if (placeholder.length == 0) throw "unknown placeholder";
      if (placeholder.kind != '%' && placeholder.kind != kinds[argument++])
        throw "an argument does not fit its placeholder";
      i += placeholder.length - 1;
    }
    if (argument != sizeof...(Args)) throw "arguments left over";
  }

  [[nodiscard]] constexpr std::string_view text() const { return text_; }

 private:
  std::string_view text_;
};

// Formats arguments that are known to fit the format.
[[nodiscard]] std::string HLFormatArguments(std::string_view format, std::span<const HLFormatArgument> arguments);

template <class T>
HLFormatArgument HLMakeFormatArgument(const T& value) {
  if constexpr (std::convertible_to<T, std::string_view>) {
    return std::string_view(value);
  } else if constexpr (std::same_as<T, bool>) {
    return std::string_view(value ? "true" : "false");
  } else if constexpr (std::floating_point<T>) {
    return static_cast<double>(value);
  } else if constexpr (std::signed_integral<T>) {
    return static_cast<std::int64_t>(value);
  } else {
    return static_cast<std::uint64_t>(value);
  }
}

template <class... Args>
[[nodiscard]] std::string HLFormat(HLFormatString<std::type_identity_t<Args>...> format, const Args&... args) {
  if constexpr (sizeof...(Args) == 0) {
    return HLFormatArguments(format.text(), {});
  } else {
    const HLFormatArgument arguments[] = {HLMakeFormatArgument(args)...};
    return HLFormatArguments(format.text(), arguments);
  }
}
