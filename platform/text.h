// Text is UTF-8 in std::string. A pair of UTF-16 units that was cut in half leaves its half in generalized UTF-8 (three
// bytes); everything here passes such a half through unchanged. All functions are pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Of a sequence that begins with a byte of 0x80 or more; see HLNextCodePoint.
[[nodiscard]] char32_t HLNextCodePointBeyondAscii(std::string_view text, std::size_t& position);

// The code point at that byte, and the byte after it. A lone half of a pair is given as its surrogate; a byte that
// begins nothing well-formed is given as U+FFFD, alone.
[[nodiscard]] inline char32_t HLNextCodePoint(std::string_view text, std::size_t& position) {
  const auto byte = static_cast<unsigned char>(text[position]);
  if (byte >= 0x80) return HLNextCodePointBeyondAscii(text, position);
  ++position;
  return byte;
}

[[nodiscard]] bool HLIsWhitespaceBeyondAscii(char32_t codePoint);

// White space and line breaks, one table for every host: U+0009 to 000D, 0020, 0085, 00A0, 1680, 2000 to 200B, 2028,
// 2029, 202F, 205F, 3000.
[[nodiscard]] inline bool HLIsWhitespace(char32_t codePoint) {
  if (codePoint >= 0x80) return HLIsWhitespaceBeyondAscii(codePoint);
  return codePoint == 0x20 || (codePoint >= 0x09 && codePoint <= 0x0D);
}

// Whether the code point is a letter, a mark or a digit of any script, by Unicode's general categories L, M and N.
[[nodiscard]] bool HLIsWordCharacter(char32_t codePoint);

// Without white space and line breaks at both ends.
[[nodiscard]] std::string_view HLTrim(std::string_view text);

// Full Unicode mappings that depend on no locale.
[[nodiscard]] std::string HLLowercase(std::string_view text);
[[nodiscard]] std::string HLUppercase(std::string_view text);
[[nodiscard]] std::string HLFoldCase(std::string_view text);

// Lower-cases the ASCII letters; HLLowercase() of the result is that of the original. Returns whether the whole text is
// ASCII.
bool HLMakeAsciiLowercase(std::string& text);

// Full case folding of both sides, then a literal search. Everything contains the empty text.
[[nodiscard]] bool HLContainsIgnoringCase(std::string_view text, std::string_view part);

[[nodiscard]] std::size_t HLUtf16Length(std::string_view text);

// The UTF-16 code units of a text, and back; what is ill-formed becomes U+FFFD, halves of pairs are kept.
[[nodiscard]] std::u16string HLUtf16Units(std::string_view text);
[[nodiscard]] std::string HLTextOfUtf16(std::u16string_view units);

// Returns the first `units` UTF-16 code units. If the cut splits a pair, keeps its first half.
[[nodiscard]] std::string HLUtf16Prefix(std::string_view text, std::size_t units);

// Whether the text can be written as UTF-8: well-formed, without halves of pairs.
[[nodiscard]] bool HLIsEncodable(std::string_view text);

// The text with U+FFFD in place of everything that cannot be encoded.
[[nodiscard]] std::string HLEncodableText(std::string_view text);

// The integer that the text begins with: ASCII blanks, one sign, digits; 0 without digits, the nearest limit beyond 64
// bits.
[[nodiscard]] std::int64_t HLLeadingInteger(std::string_view text);

// What the host's Unicode library does; the functions above call these for text that is not plain ASCII. A lone
// surrogate maps to itself.
[[nodiscard]] std::u16string HLHostLowercase(std::u16string_view text);
[[nodiscard]] std::u16string HLHostUppercase(std::u16string_view text);
[[nodiscard]] std::u16string HLHostFoldCase(std::u16string_view text);
[[nodiscard]] bool HLHostIsWordCharacter(char32_t codePoint);
