#include "report/text_mask.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>

#include "core/scan/context.h"
#include "platform/text.h"

namespace {

constexpr std::uint64_t kSeed = 7;

std::string replaced(std::string_view text) {
  HLTextMask mask(kSeed);
  mask.meet(text);
  return mask.replaced(text);
}

std::string shapeOf(const std::string& text) {
  std::string shape;
  for (const char c : text) {
    const bool isUpper = c >= 'A' && c <= 'Z';
    const bool isLower = c >= 'a' && c <= 'z';
    const bool isDigit = c >= '0' && c <= '9';
    shape += isUpper ? 'A' : isLower ? 'a' : isDigit ? '9' : c;
  }
  return shape;
}

TEST(TextMask, KeepsCaseLengthAndPunctuation) {
  const std::string text = "Ana Petrova, Dinner at 19:30 (Lindenstr. 12, B204c), 30459 Ulm!";
  EXPECT_NE(replaced(text), text);
  EXPECT_EQ(shapeOf(replaced(text)), shapeOf(text));
}

TEST(TextMask, LeavesNoWordReadable) {
  const std::string hidden = replaced("Ana Petrova meets Tom");
  for (const char* word : {"Ana", "Petrova", "meets", "Tom"}) EXPECT_EQ(hidden.find(word), std::string::npos) << hidden;
}

TEST(TextMask, KeepsPhrasesOfTheEngine) {
  for (const std::string_view phrase : HLEnginePhrases()) {
    EXPECT_NE(replaced("zq" + std::string(phrase) + "t").find(phrase), std::string::npos) << phrase;
  }
  EXPECT_NE(replaced("Show the REPLY").find("REPLY"), std::string::npos);
  EXPECT_NE(replaced("Clear \n menu").find("Clear \n menu"), std::string::npos);
}

TEST(TextMask, MakesNoPhraseOfTheEngine) {
  for (std::uint64_t seed = 0; seed < 400; ++seed) {
    HLTextMask mask(seed);
    // Whatever letter is put before "allow", it must not be a c.
    const std::string hidden = HLLowercase(mask.replaced("xallow"));
    EXPECT_EQ(hidden.find("call"), std::string::npos) << seed;
    EXPECT_TRUE(hidden.ends_with("allow"));
  }
}

TEST(TextMask, MapsWordsOneToOne) {
  HLTextMask mask(kSeed);
  EXPECT_EQ(HLLowercase(mask.replaced("Tom")), HLLowercase(mask.replaced("TOM")));
  std::set<std::string> hidden;
  for (char first = 'a'; first <= 'z'; ++first) {
    hidden.insert(mask.replaced(std::string(1, first)));
    for (char second = 'a'; second <= 'z'; ++second) hidden.insert(mask.replaced(std::string{first, second}));
  }
  for (int number = 0; number < 1000; ++number) hidden.insert(mask.replaced(std::to_string(number)));
  EXPECT_EQ(hidden.size(), 26U + 26 * 26 + 1000);
}

TEST(TextMask, KeepsPhrasesAcrossTexts) {
  HLTextMask mask(kSeed);
  mask.meet("Main menu");
  mask.meet("item seven");
  EXPECT_TRUE(mask.replaced("item seven").starts_with("item "));
  HLTextMask without(kSeed);
  without.meet("item seven");
  EXPECT_FALSE(without.replaced("item seven").starts_with("item "));
}

TEST(TextMask, KeepsWordsOfKeptTexts) {
  HLTextMask mask(kSeed);
  mask.meetKept("body-7");
  EXPECT_EQ(mask.replaced("Body 7"), "Body 7");
  EXPECT_NE(mask.replaced("Bodyguard"), "Bodyguard");
}

TEST(TextMask, KeepsGivenPartsOfWords) {
  HLTextMask mask(kSeed);
  const std::string hidden = mask.replaced("Alarmglocke", {"GLOCKE"});
  EXPECT_EQ(hidden.substr(5), "glocke");
  EXPECT_NE(hidden.substr(0, 5), "Alarm");
}

TEST(TextMask, KeepsTheBeginningBeforeACut) {
  HLTextMask mask(kSeed);
  mask.meetCut("the foobar", 9);
  mask.meetCut("the foobaz", 9);
  const std::string first = mask.replaced("foobar");
  const std::string second = mask.replaced("foobaz");
  EXPECT_EQ(first.substr(0, 5), second.substr(0, 5));
  EXPECT_NE(first, second);
}

TEST(TextMask, KeepsCutWordsOfKeptTexts) {
  HLTextMask mask(kSeed);
  mask.meetKept("Shortcuts");
  mask.meetCut("Shortcuts", 4);
  EXPECT_EQ(mask.replaced("Shortcuts, done").substr(0, 9), "Shortcuts");
}

TEST(TextMask, KeepsEqualWordsWithFinalSigma) {
  HLTextMask mask(kSeed);
  EXPECT_EQ(HLLowercase(mask.replaced("ΟΔΟΣ")), HLLowercase(mask.replaced("οδος")));
}

TEST(TextMask, KeepsLowerCasedLength) {
  for (const char* text : {"İstanbul", "ΣΊΣΥΦΟΣ", "Straße", "日本語", "𝔘nicode", "ﬁne", "naïve", "💬 Ça va?"}) {
    EXPECT_EQ(HLUtf16Length(HLLowercase(replaced(text))), HLUtf16Length(HLLowercase(text))) << text;
  }
  EXPECT_TRUE(replaced("💬 Ça va?").starts_with("💬 "));
}

TEST(TextMask, ReplacesSurrogatePairsByOthers) {
  const std::string text = "\U00010400\U0001D518";  // a capital letter and one without case
  const std::u16string hidden = HLUtf16Units(replaced(text));
  ASSERT_EQ(hidden.size(), 4U);
  EXPECT_EQ(HLTextOfUtf16(hidden), replaced(text));
  for (const std::size_t high : {0U, 2U}) EXPECT_EQ(hidden[high] & 0xFC00, 0xD800);
  EXPECT_EQ(HLUtf16Units(text).find(hidden.substr(0, 2)), std::u16string::npos);

  HLTextMask cut(kSeed);
  cut.meetCut(text, 1);
  EXPECT_EQ(HLUtf16Units(cut.replaced(text))[0] & 0xFC00, 0xD800);
}

TEST(TextMask, ReplacesHalvesOfPairs) { EXPECT_EQ(replaced("\xED\xA0\xBD"), "\xEF\xBF\xBD"); }

TEST(TextMask, KeepsNumbersNumbers) {
  EXPECT_EQ(replaced("0"), "0");
  EXPECT_EQ(replaced("1"), "1");
  EXPECT_EQ(replaced("007").substr(0, 2), "00");
  EXPECT_TRUE(replaced("1200").ends_with("00"));
  EXPECT_NE(replaced("120")[0], '0');
  EXPECT_LE(replaced("9223372036854775807"), "9223372036854775807");
}

}  // namespace
