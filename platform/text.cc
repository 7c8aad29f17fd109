#include "platform/text.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isSurrogate(char32_t codePoint) { return codePoint >= 0xD800 && codePoint <= 0xDFFF; }

// Looks at every byte, which is quicker than stopping at the first that is not.
bool isAscii(std::string_view text) {
  unsigned char all = 0;
  for (char c : text) all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

void append(std::string& text, char32_t codePoint) {
  const auto byte = [&text](char32_t value) { text.push_back(static_cast<char>(value)); };
  if (codePoint < 0x80) {
    byte(codePoint);
  } else if (codePoint < 0x800) {
    byte(0xC0 | (codePoint >> 6));
    byte(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    byte(0xE0 | (codePoint >> 12));
    byte(0x80 | ((codePoint >> 6) & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  } else {
    byte(0xF0 | (codePoint >> 18));
    byte(0x80 | ((codePoint >> 12) & 0x3F));
    byte(0x80 | ((codePoint >> 6) & 0x3F));
    byte(0x80 | (codePoint & 0x3F));
  }
}

// The bytes of the white space character at the beginning of the text, or 0.
std::size_t leadingWhitespace(std::string_view text) {
  std::size_t position = 0;
  return !text.empty() && HLIsWhitespace(HLNextCodePoint(text, position)) ? position : 0;
}

// The same at the end; none has more than three bytes.
std::size_t trailingWhitespace(std::string_view text) {
  for (std::size_t size = 1; size <= std::min<std::size_t>(3, text.size()); ++size) {
    if (leadingWhitespace(text.substr(text.size() - size)) == size) return size;
  }
  return 0;
}

char lowercaseAscii(char c) { return static_cast<char>(c + (c >= 'A' && c <= 'Z' ? 'a' - 'A' : 0)); }

std::string lowercaseAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = lowercaseAscii(c);
  return lower;
}

}  // namespace

char32_t HLNextCodePointBeyondAscii(std::string_view text, std::size_t& position) {
  const auto at = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = at(position++);
  const int tail = lead >= 0xF0 && lead <= 0xF4  ? 3
                   : lead >= 0xE0 && lead < 0xF0 ? 2
                   : lead >= 0xC2 && lead < 0xE0 ? 1
                                                 : 0;
  if (tail == 0 || position + static_cast<std::size_t>(tail) > text.size()) return kReplacement;
  char32_t codePoint = lead & (0x3F >> tail);
  for (int i = 0; i < tail; ++i) {
    const std::uint8_t next = at(position + static_cast<std::size_t>(i));
    if ((next & 0xC0) != 0x80) return kReplacement;
    codePoint = (codePoint << 6) | (next & 0x3F);
  }
  const bool overlong = (tail == 2 && codePoint < 0x800) || (tail == 3 && codePoint < 0x10000);
  if (overlong || codePoint > 0x10FFFF) return kReplacement;
  position += static_cast<std::size_t>(tail);
  return codePoint;
}

bool HLIsWhitespaceBeyondAscii(char32_t codePoint) {
  switch (codePoint) {
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return true;
    default:
      return codePoint >= 0x2000 && codePoint <= 0x200B;
  }
}

std::string_view HLTrim(std::string_view text) {
  while (const std::size_t size = leadingWhitespace(text)) text.remove_prefix(size);
  while (const std::size_t size = trailingWhitespace(text)) text.remove_suffix(size);
  return text;
}

std::u16string HLUtf16Units(std::string_view text) {
  std::u16string units;
  units.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const char32_t codePoint = HLNextCodePoint(text, position);
    if (codePoint < 0x10000) {
      units.push_back(static_cast<char16_t>(codePoint));
    } else {
      units.push_back(static_cast<char16_t>(0xD7C0 + (codePoint >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 | (codePoint & 0x3FF)));
    }
  }
  return units;
}

std::string HLTextOfUtf16(std::u16string_view units) {
  std::string text;
  text.reserve(units.size() * 2);
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char32_t unit = units[i];
    const bool pair =
        unit >= 0xD800 && unit <= 0xDBFF && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF;
    append(text, pair ? 0x10000 + ((unit - 0xD800) << 10) + (units[++i] - 0xDC00U) : unit);
  }
  return text;
}

std::string HLLowercase(std::string_view text) {
  return isAscii(text) ? lowercaseAscii(text) : HLTextOfUtf16(HLHostLowercase(HLUtf16Units(text)));
}

bool HLMakeAsciiLowercase(std::string& text) {
  unsigned char all = 0;
  for (char& c : text) {
    all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    c = lowercaseAscii(c);
  }
  return all < 0x80;
}

std::string HLUppercase(std::string_view text) { return HLTextOfUtf16(HLHostUppercase(HLUtf16Units(text))); }

std::string HLFoldCase(std::string_view text) {
  return isAscii(text) ? lowercaseAscii(text) : HLTextOfUtf16(HLHostFoldCase(HLUtf16Units(text)));
}

bool HLContainsIgnoringCase(std::string_view text, std::string_view part) {
  return HLFoldCase(text).find(HLFoldCase(part)) != std::string::npos;
}

std::size_t HLUtf16Length(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t position = 0; position < text.size();) units += HLNextCodePoint(text, position) >= 0x10000 ? 2U : 1U;
  return units;
}

std::string HLUtf16Prefix(std::string_view text, std::size_t units) {
  if (text.size() <= units) return std::string(text);  // no unit takes less than a byte
  std::string prefix;
  std::size_t used = 0;
  for (std::size_t position = 0; position < text.size() && used < units;) {
    const char32_t codePoint = HLNextCodePoint(text, position);
    const bool halved = codePoint >= 0x10000 && used + 1 == units;
    append(prefix, halved ? 0xD7C0 + (codePoint >> 10) : codePoint);
    used += codePoint >= 0x10000 ? 2 : 1;
  }
  return prefix;
}

bool HLIsEncodable(std::string_view text) {
  // U+FFFD itself is a fine character: it is told from the answer for ill-formed bytes by its length of three.
  for (std::size_t position = 0; position < text.size();) {
    const std::size_t start = position;
    const char32_t codePoint = HLNextCodePoint(text, position);
    if (isSurrogate(codePoint) || (codePoint == kReplacement && position - start == 1)) return false;
  }
  return true;
}

std::string HLEncodableText(std::string_view text) {
  std::string encodable;
  for (std::size_t position = 0; position < text.size();) {
    const char32_t codePoint = HLNextCodePoint(text, position);
    append(encodable, isSurrogate(codePoint) ? kReplacement : codePoint);
  }
  return encodable;
}

std::int64_t HLLeadingInteger(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
  const bool negative = i < text.size() && text[i] == '-';
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) ++i;
  using Limits = std::numeric_limits<std::int64_t>;
  std::int64_t number = 0;  // kept negative or zero, since the negative range is the wider one
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    const std::int64_t digit = text[i] - '0';
    if (number < (Limits::min() + digit) / 10) return negative ? Limits::min() : Limits::max();
    number = number * 10 - digit;
  }
  if (negative) return number;
  return number == Limits::min() ? Limits::max() : -number;
}

bool HLIsWordCharacter(char32_t codePoint) {
  if (codePoint >= 0x80) return HLHostIsWordCharacter(codePoint);
  return (codePoint >= '0' && codePoint <= '9') || (codePoint >= 'A' && codePoint <= 'Z') ||
         (codePoint >= 'a' && codePoint <= 'z');
}
