// JSON as every host must read it. Left out is what hosts may differ in: single values as a document, a byte order mark
// and other encodings, keys that come twice, commas at the end, zeros before a number, whether 1.0 and 1e3 are
// integers, numbers beyond a double's range, negative zero, and halves of pairs written as escapes.
#include "platform/json.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

// A value as text, with the type that it has.
std::string described(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return *truth ? "true" : "false";
  if (const std::int64_t* integer = value.as<std::int64_t>()) return "i" + std::to_string(*integer);
  if (value.as<double>() != nullptr) return "d" + *HLNumberText(value);
  if (const std::string* text = value.as<std::string>()) return "'" + *text + "'";
  std::string inner;
  if (const HLArray* array = value.as<HLArray>()) {
    for (const HLValue& member : *array) inner += (inner.empty() ? "" : " ") + described(member);
    return "[" + inner + "]";
  }
  if (const HLDictionary* dictionary = value.as<HLDictionary>()) {
    for (const HLDictionaryEntry& entry : *dictionary) {
      inner += (inner.empty() ? "" : " ") + entry.key + ":" + described(entry.value);
    }
    return "{" + inner + "}";
  }
  return "missing";
}

std::string reading(const std::string& text) {
  const std::optional<HLValue> value = HLReadJson(text);
  return value ? described(*value) : "nothing";
}

TEST(Json, ReadsEveryType) {
  EXPECT_EQ(reading("{}"), "{}");
  EXPECT_EQ(reading(" [ ] \n"), "[]");
  EXPECT_EQ(reading(R"([true, false, null, "a", 1, -2, 2.5])"), "[true false missing 'a' i1 i-2 d2.5]");
  EXPECT_EQ(reading(R"({"a": {"b": [1, {"c": null}]}})"), "{a:{b:[i1 {c:missing}]}}");
  EXPECT_EQ(reading("{\"\": \"\"}"), "{:''}");
  EXPECT_EQ(reading("[\t1\r\n,\n2 ]"), "[i1 i2]");
}

TEST(Json, DistinguishesBooleansFromNumbers) { EXPECT_EQ(reading("[true, 1, false, 0]"), "[true i1 false i0]"); }

TEST(Json, ReadsLargerIntegersAsReals) {
  EXPECT_EQ(reading("[0, 1700000000]"), "[i0 i1700000000]");
  EXPECT_EQ(reading("[9223372036854775807, -9223372036854775808]"), "[i9223372036854775807 i-9223372036854775808]");
  EXPECT_EQ(reading("[9223372036854775808]"), "[d9.223372036854776e+18]");
  EXPECT_EQ(reading("[18446744073709551615]"), "[d1.844674407370955e+19]");
  EXPECT_EQ(reading("[100000000000000000000]"), "[d1e+20]");
  EXPECT_EQ(reading("[-9223372036854775809]"), "[d-9.223372036854776e+18]");
  EXPECT_EQ(reading("[12.9, -0.25, 1.5e2, 25E-2]"), "[d12.9 d-0.25 d150 d0.25]");
}

TEST(Json, UnescapesTexts) {
  EXPECT_EQ(reading(R"(["\"\\\/\b\f\n\r\t"])"), "['\"\\/\b\f\n\r\t']");
  EXPECT_EQ(reading(R"(["\u00e4 \u20AC \ud83d\ude00 ä"])"), "['ä € 😀 ä']");
  EXPECT_EQ(reading(R"({"\u0061": "[{\"}]"})"), "{a:'[{\"}]'}");
}

TEST(Json, RejectsOtherText) {
  for (const char* text :
       {"",      " ",          "nonsense",  "{",           "}",     "[",     "]",      "[1",     "{\"a\":1",
        "[1 2]", "{\"a\" 1}",  "{\"a\"}",   "{a:1}",       "{1:2}", "['a']", "[1] 2",  "[1][2]", "{}x",
        "[\"a]", "[\"a\nb\"]", "[\"\\x\"]", "[\"\\u12\"]", "[+1]",  "[1.]",  "[.5]",   "[1e]",   "[--1]",
        "[tru]", "[True]",     "[nul]",     "[}",          "{]",    "[,1]",  "[1,,2]", "{,}",    "[0x10]"}) {
    EXPECT_EQ(reading(text), "nothing") << text;
  }
}

TEST(Json, RejectsInvalidUtf8) {
  EXPECT_EQ(reading("[\"\xFF\"]"), "nothing");
  EXPECT_EQ(reading("[\"\xC3\"]"), "nothing");
  EXPECT_EQ(reading("[\"\xE2\x82\"]"), "nothing");
  EXPECT_EQ(reading("[\"\xC0\xAF\"]"), "nothing");
  EXPECT_EQ(reading("{\"\x80\": 1}"), "nothing");
  EXPECT_EQ(reading("\xFF[]"), "nothing");
}

TEST(Json, RejectsDeepNesting) {
  const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
  EXPECT_EQ(reading(nested(100)), nested(100));
  EXPECT_EQ(reading(nested(1'000'000)), "nothing");
  EXPECT_EQ(reading(std::string(1'000'000, '[')), "nothing");
  std::string objects;
  for (int i = 0; i < 100'000; ++i) objects += "{\"a\":";
  EXPECT_EQ(reading(objects), "nothing");
}

TEST(Json, BracketsInTextsNestNothing) {
  const std::string text(10'000, '[');
  EXPECT_EQ(reading("[\"" + text + "\"]"), "['" + text + "']");
  EXPECT_EQ(reading("[\"\\\"" + text + "\"]"), "['\"" + text + "']");
}

}  // namespace
