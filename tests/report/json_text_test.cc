#include "report/json_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "platform/json.h"

namespace {

TEST(JsonText, EscapesControlCharacters) {
  EXPECT_EQ(HLJsonText(std::string("a\"\\\n\x1b\x7f\u009b\u202e")),
            "\"a\\\"\\\\\\u000A\\u001B\\u007F\\u009B\\u202E\"\n");
}

TEST(JsonText, WritesShortListsInOneLine) {
  EXPECT_EQ(HLJsonText(HLDictionary{{"list", HLArray{1, 2.5, true, HLValue()}}, {"none", HLArray()}}),
            R"({"list": [1, 2.5, true, null], "none": []})"
            "\n");
}

TEST(JsonText, IndentsLongValues) {
  const std::string text(110, 'x');
  EXPECT_EQ(HLJsonText(HLDictionary{{"key", HLArray{text, HLArray()}}, {"other", HLDictionary()}}),
            "{\n  \"key\": [\n    \"" + text + "\",\n    []\n  ],\n  \"other\": {}\n}\n");
}

TEST(JsonText, WritesRealsThatReadTheSame) {
  for (double real : {0.1, 1e300, -0.0, 4.0, 1.0 / 3}) {
    const auto read = HLReadJson(HLJsonText(real));
    ASSERT_TRUE(read && read->as<double>() != nullptr) << real;
    EXPECT_EQ(*read->as<double>(), real);
  }
  EXPECT_EQ(HLJsonText(std::numeric_limits<double>::infinity()), "null\n");
}

TEST(JsonText, ReplacesIllFormedText) { EXPECT_EQ(HLJsonText(std::string("\xff")), "\"\uFFFD\"\n"); }

}  // namespace
