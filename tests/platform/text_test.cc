// Text as every host must treat it.
#include "platform/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using testing::ElementsAre;

const std::string kFirstHalf = "\xED\xA0\xBD";    // of U+1F600, in generalized UTF-8
const std::string kSecondHalf = "\xED\xB8\x80";   // of the same
const std::string kFace = "\xF0\x9F\x98\x80";     // U+1F600
const std::string kReplacement = "\xEF\xBF\xBD";  // U+FFFD

std::vector<std::uint32_t> codePoints(std::string_view text) {
  std::vector<std::uint32_t> found;
  for (std::size_t position = 0; position < text.size();) found.push_back(HLNextCodePoint(text, position));
  return found;
}

TEST(CodePoints, AreReadOneAfterTheOther) {
  EXPECT_THAT(codePoints("a\x7F"), ElementsAre(0x61, 0x7F));
  EXPECT_THAT(codePoints("\u0080\u07FF\u0800\uFFFF\U00010000\U0010FFFF"),
              ElementsAre(0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF));
  EXPECT_THAT(codePoints(std::string_view("\0", 1)), ElementsAre(0));
}

TEST(CodePoints, KeepLoneSurrogates) {
  EXPECT_THAT(codePoints("a" + kFirstHalf + "b"), ElementsAre(0x61, 0xD83D, 0x62));
  EXPECT_THAT(codePoints(kSecondHalf), ElementsAre(0xDE00));
}

TEST(CodePoints, ReturnMalformedBytesSingly) {
  EXPECT_THAT(codePoints("\x80x"), ElementsAre(0xFFFD, 0x78));                   // a tail without its lead
  EXPECT_THAT(codePoints("\xC3"), ElementsAre(0xFFFD));                          // cut short
  EXPECT_THAT(codePoints("\xE2\x82"), ElementsAre(0xFFFD, 0xFFFD));              // cut short
  EXPECT_THAT(codePoints("\xC0\xAF"), ElementsAre(0xFFFD, 0xFFFD));              // longer than need be
  EXPECT_THAT(codePoints("\xE0\x80\xAF"), ElementsAre(0xFFFD, 0xFFFD, 0xFFFD));  // longer than need be
  EXPECT_THAT(codePoints("\xF0\x80\x80\xAF"), ElementsAre(0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD));
  EXPECT_THAT(codePoints("\xF4\x90\x80\x80"), ElementsAre(0xFFFD, 0xFFFD, 0xFFFD, 0xFFFD));  // beyond the last one
  EXPECT_THAT(codePoints("\xFFx"), ElementsAre(0xFFFD, 0x78));
  EXPECT_THAT(codePoints("\xE2(\xA1"), ElementsAre(0xFFFD, 0x28, 0xFFFD));
}

// White space

TEST(Whitespace, IncludesExactlyTheListedCodePoints) {
  std::vector<char32_t> table = {0x20, 0x85, 0xA0, 0x1680, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
  for (char32_t codePoint = 0x09; codePoint <= 0x0D; ++codePoint) table.push_back(codePoint);
  for (char32_t codePoint = 0x2000; codePoint <= 0x200B; ++codePoint) table.push_back(codePoint);
  for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    const bool expected = std::find(table.begin(), table.end(), codePoint) != table.end();
    ASSERT_EQ(HLIsWhitespace(codePoint), expected) << std::hex << static_cast<std::uint32_t>(codePoint);
  }
}

TEST(Trim, KeepsInnerWhitespace) {
  EXPECT_EQ(HLTrim(" \t\r\n\v\f a b \u00A0\u3000\u2028\u200B"), "a b");
  EXPECT_EQ(HLTrim("\u0085x\u1680"), "x");
  EXPECT_EQ(HLTrim("a"), "a");
  EXPECT_EQ(HLTrim(""), "");
  EXPECT_EQ(HLTrim(" \n\u205F"), "");
  EXPECT_EQ(HLTrim("\u200C"), "\u200C");  // joins letters, separates nothing
  EXPECT_EQ(HLTrim(" " + kFirstHalf + " "), kFirstHalf);
}

TEST(Trim, MatchesASearchFromTheStart) {
  constexpr std::array<std::string_view, 16> kPieces = {" ",        "\t",     "a",    "\u0085", "\u3000", "\u200B",
                                                        "\u205F",   "\u00E0", "\x85", "\xC2",   "\xE2",   "\x80",
                                                        "\xE3\x80", "\xF0",   "\xA0", "\u0820"};
  std::mt19937 random(20261122);
  for (int round = 0; round < 20'000; ++round) {
    std::string text;
    for (std::size_t length = random() % 8; length > 0; --length) text += kPieces[random() % kPieces.size()];
    std::size_t begin = text.size();
    std::size_t end = text.size();
    for (std::size_t position = 0; position < text.size();) {
      const std::size_t start = position;
      if (HLIsWhitespace(HLNextCodePoint(text, position))) continue;
      begin = std::min(begin, start);
      end = position;
    }
    ASSERT_EQ(HLTrim(text), std::string_view(text).substr(begin, end - begin)) << testing::PrintToString(text);
  }
}

// Case

TEST(Lowercase, IsFullUnicodeWithoutALocale) {
  EXPECT_EQ(HLLowercase("AXButton [\\]^_`@Z{"), "axbutton [\\]^_`@z{");
  EXPECT_EQ(HLLowercase("ÄÖÜ ẞ ЖУК"), "äöü ß жук");
  EXPECT_EQ(HLLowercase("ΟΔΥΣΣΕΥΣ, ΣΑΣ"), "οδυσσευς, σας") << "a sigma at the end of a word is another letter";
  EXPECT_EQ(HLLowercase("İI"), "i\u0307i") << "a dotted I becomes two characters, a dotless one an i";
  EXPECT_EQ(HLLowercase("\U00010400"), "\U00010428");
  EXPECT_EQ(HLLowercase("ǅ Ⅷ"), "ǆ ⅷ");
  EXPECT_EQ(HLLowercase(""), "");
}

// Searches for ASCII words rely on this.
TEST(Lowercase, AddsAsciiToTwoCharactersOnly) {
  std::vector<char32_t> found;
  for (char32_t codePoint = 0x80; codePoint <= 0x10FFFF; ++codePoint) {
    std::u16string units = {static_cast<char16_t>(codePoint)};
    if (codePoint > 0xFFFF) {
      units = {static_cast<char16_t>(0xD7C0 + (codePoint >> 10)), static_cast<char16_t>(0xDC00 | (codePoint & 0x3FF))};
    }
    const std::u16string lower = HLHostLowercase(units);
    if (std::any_of(lower.begin(), lower.end(), [](char16_t unit) { return unit < 0x80; })) found.push_back(codePoint);
  }
  EXPECT_THAT(found, ElementsAre(0x130, 0x212A));
  EXPECT_EQ(HLLowercase("\u0130\u212A"), "i\u0307k");
}

// No other letter's mapping may depend on the case of an ASCII letter.
TEST(Lowercase, IgnoresTheCaseOfAsciiNeighbors) {
  constexpr std::array<std::string_view, 14> kPieces = {"A",      "i", "I", "\u0307", "\u0130", "\u03A3", " ", "\u0345",
                                                        "\u0300", "Z", "J", "\u00AD", ".",      "\u1E9E"};
  std::mt19937 random(20261122);
  for (int round = 0; round < 5000; ++round) {
    std::string text;
    for (std::size_t length = random() % 7; length > 0; --length) text += kPieces[random() % kPieces.size()];
    std::string lowered = text;
    HLMakeAsciiLowercase(lowered);
    ASSERT_EQ(HLLowercase(lowered), HLLowercase(text)) << text;
  }
}

TEST(Lowercase, PassesLoneHalvesOfPairsThrough) {
  EXPECT_EQ(HLLowercase("Ä" + kFirstHalf + "B"), "ä" + kFirstHalf + "b");
  EXPECT_EQ(HLLowercase(kSecondHalf), kSecondHalf);
}

TEST(Lowercase, HandlesLongTexts) {
  std::string upper;
  std::string lower;
  for (int i = 0; i < 5000; ++i) {
    upper += "Äİ";
    lower += "äi\u0307";
  }
  EXPECT_EQ(HLLowercase(upper), lower);
}

TEST(Uppercase, IsFullUnicodeWithoutALocale) {
  EXPECT_EQ(HLUppercase("axbutton [\\]^_`@z{"), "AXBUTTON [\\]^_`@Z{");
  EXPECT_EQ(HLUppercase("n"), "N");
  EXPECT_EQ(HLUppercase("äöü жук é"), "ÄÖÜ ЖУК É");
  EXPECT_EQ(HLUppercase("οδυσσευς σας"), "ΟΔΥΣΣΕΥΣ ΣΑΣ") << "both small sigmas have the same capital";
  EXPECT_EQ(HLUppercase("iı"), "II") << "with and without its dot";
  EXPECT_EQ(HLUppercase("ß"), "SS");
  EXPECT_EQ(HLUppercase("ﬁ ﬃ ﬄ ŉ"), "FI FFI FFL ʼN");
  EXPECT_EQ(HLUppercase("ǆ ǅ ⅷ"), "Ǆ Ǆ Ⅷ");
  EXPECT_EQ(HLUppercase("ÿµ"), "ŸΜ");
  EXPECT_EQ(HLUppercase("\U00010428"), "\U00010400");
  EXPECT_EQ(HLUppercase("日本 1 ⎋"), "日本 1 ⎋");
  EXPECT_EQ(HLUppercase(""), "");
}

TEST(Uppercase, PassesLoneHalvesOfPairsThrough) {
  EXPECT_EQ(HLUppercase("ä" + kFirstHalf + "b"), "Ä" + kFirstHalf + "B");
  EXPECT_EQ(HLUppercase(kSecondHalf), kSecondHalf);
}

TEST(FoldCase, MakesTextsOfDifferentCaseAlike) {
  EXPECT_EQ(HLFoldCase("Straße"), "strasse");
  EXPECT_EQ(HLFoldCase("ﬁn ﬄ"), "fin ffl");
  EXPECT_EQ(HLFoldCase("ΣΑΣ"), "σασ");
  EXPECT_EQ(HLFoldCase("σας"), "σασ");
  EXPECT_EQ(HLFoldCase("ŉ"), "ʼn");
  EXPECT_EQ(HLFoldCase("A" + kFirstHalf), "a" + kFirstHalf);
}

TEST(SearchIgnoringCase, FoldsBothSides) {
  EXPECT_TRUE(HLContainsIgnoringCase("Große STRASSE", "straße"));
  EXPECT_TRUE(HLContainsIgnoringCase("die Straße", "STRASSE"));
  EXPECT_TRUE(HLContainsIgnoringCase("Oﬃce", "FFI"));
  EXPECT_TRUE(HLContainsIgnoringCase("office", "ﬃ"));
  EXPECT_TRUE(HLContainsIgnoringCase("Running Your Automation", "your auto"));
  EXPECT_TRUE(HLContainsIgnoringCase("ΜΟΥΣΑΣ", "σας"));
  EXPECT_FALSE(HLContainsIgnoringCase("Running", "runing"));
  EXPECT_FALSE(HLContainsIgnoringCase("café", "cafe")) << "accents count";
  EXPECT_FALSE(HLContainsIgnoringCase("e\u0301", "é")) << "the search is literal";
}

TEST(SearchIgnoringCase, FindsTheEmptyTextEverywhere) {
  EXPECT_TRUE(HLContainsIgnoringCase("abc", ""));
  EXPECT_TRUE(HLContainsIgnoringCase("", ""));
  EXPECT_FALSE(HLContainsIgnoringCase("", "a"));
}

// Cuts

TEST(Utf16Prefix, CountsUnitsNotBytes) {
  EXPECT_EQ(HLUtf16Prefix("abcdef", 3), "abc");
  EXPECT_EQ(HLUtf16Prefix("äöü", 2), "äö");
  EXPECT_EQ(HLUtf16Prefix("日本語", 2), "日本");
  EXPECT_EQ(HLUtf16Prefix("a" + kFace + "b", 3), "a" + kFace);
  EXPECT_EQ(HLUtf16Prefix("abc", 3), "abc");
  EXPECT_EQ(HLUtf16Prefix("abc", 9), "abc");
  EXPECT_EQ(HLUtf16Prefix("äöü", 3), "äöü");
  EXPECT_EQ(HLUtf16Prefix("abc", 0), "");
}

TEST(Utf16Prefix, KeepsHalfOfACutPair) {
  EXPECT_EQ(HLUtf16Prefix("a" + kFace, 2), "a" + kFirstHalf);
  EXPECT_EQ(HLUtf16Prefix(kFace + kFace, 1), kFirstHalf);
  EXPECT_EQ(HLUtf16Prefix(kFace + kFace, 3), kFace + kFirstHalf);
  EXPECT_EQ(HLUtf16Prefix(kFirstHalf + "ab", 2), kFirstHalf + "a");
}

TEST(Utf16Length, CountsUnits) {
  EXPECT_EQ(HLUtf16Length(""), 0U);
  EXPECT_EQ(HLUtf16Length("abc"), 3U);
  EXPECT_EQ(HLUtf16Length("äöü"), 3U);
  EXPECT_EQ(HLUtf16Length("日本語"), 3U);
  EXPECT_EQ(HLUtf16Length(kFace), 2U) << "a pair";
  EXPECT_EQ(HLUtf16Length("e\u0301"), 2U) << "a letter and its accent";
  EXPECT_EQ(HLUtf16Length(kFirstHalf + "a"), 2U);
  EXPECT_EQ(HLUtf16Length(std::string_view("a\0b", 3)), 3U);
}

// Numbers

TEST(LeadingInteger, IsWhatTheTextBeginsWith) {
  EXPECT_EQ(HLLeadingInteger("45"), 45);
  EXPECT_EQ(HLLeadingInteger("-45"), -45);
  EXPECT_EQ(HLLeadingInteger("+45"), 45);
  EXPECT_EQ(HLLeadingInteger(" \t\n\v\f\r45 keys"), 45);
  EXPECT_EQ(HLLeadingInteger("0045"), 45);
  EXPECT_EQ(HLLeadingInteger("12.9"), 12);
  EXPECT_EQ(HLLeadingInteger("1e3"), 1);
  EXPECT_EQ(HLLeadingInteger("0x10"), 0);
}

TEST(LeadingInteger, IsZeroWithoutDigits) {
  for (const char* text : {"", " ", "-", "+", "+-1", "--1", "- 1", "a1", ".5", "\u00A01", "１"}) {
    EXPECT_EQ(HLLeadingInteger(text), 0) << text;
  }
}

TEST(LeadingInteger, ClampsToItsRange) {
  EXPECT_EQ(HLLeadingInteger("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(HLLeadingInteger("9223372036854775808"), INT64_MAX);
  EXPECT_EQ(HLLeadingInteger("-9223372036854775808"), INT64_MIN);
  EXPECT_EQ(HLLeadingInteger("-9223372036854775809"), INT64_MIN);
  EXPECT_EQ(HLLeadingInteger("99999999999999999999999"), INT64_MAX);
  EXPECT_EQ(HLLeadingInteger("-99999999999999999999999"), INT64_MIN);
}

// UTF-16

TEST(Utf16Units, IncludeHalvesOfPairs) {
  EXPECT_EQ(HLUtf16Units("aä\u20AC" + kFace), u"aä\u20AC\U0001F600");
  EXPECT_EQ(HLUtf16Units("a" + kFirstHalf + "b"), (std::u16string{u'a', 0xD83D, u'b'}));
  EXPECT_EQ(HLUtf16Units("\xFF"), u"\uFFFD");
  EXPECT_EQ(HLUtf16Units(""), u"");
}

TEST(Utf16Units, BecomeTheSameTextAgain) {
  for (const std::string& text : {std::string("plain"), "Zoë " + kFace, kFirstHalf, kSecondHalf + "x" + kFirstHalf}) {
    EXPECT_EQ(HLTextOfUtf16(HLUtf16Units(text)), text);
  }
}

// Encoding

TEST(Encodable, RejectsHalvesAndStrayBytes) {
  EXPECT_TRUE(HLIsEncodable(""));
  EXPECT_TRUE(HLIsEncodable("plain"));
  EXPECT_TRUE(HLIsEncodable("äöü " + kFace));
  EXPECT_TRUE(HLIsEncodable(kReplacement)) << "the replacement character itself is a character";
  EXPECT_FALSE(HLIsEncodable("a" + kFirstHalf));
  EXPECT_FALSE(HLIsEncodable(kSecondHalf + "b"));
  EXPECT_FALSE(HLIsEncodable("\xFF"));
  EXPECT_FALSE(HLIsEncodable("ab\xFF"));
  EXPECT_FALSE(HLIsEncodable("\xE2\x82"));
}

TEST(Encodable, ReplacesOtherBytes) {
  EXPECT_EQ(HLEncodableText("a" + kFirstHalf + "b"), "a" + kReplacement + "b");
  EXPECT_EQ(HLEncodableText("\xFF\xFE"), kReplacement + kReplacement);
  EXPECT_EQ(HLEncodableText("äöü " + kFace), "äöü " + kFace);
}

}  // namespace
