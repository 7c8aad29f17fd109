#include "base/terminal.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

TEST(VisibleText, SpellsOutControlCharacters) {
  EXPECT_EQ(HLVisibleText(std::string("\0\x1F \x7E\x7F", 5)), "\\u0000\\u001F ~\\u007F");
  EXPECT_EQ(HLVisibleText("\u0080\u009F\u00A0"), "\\u0080\\u009F\u00A0");
  EXPECT_EQ(HLVisibleText("\x1B]0;title\a"), "\\u001B]0;title\\u0007");
}

TEST(VisibleText, SpellsOutWhatChangesDirections) {
  EXPECT_EQ(HLVisibleText("\u202Eabc\u2066\u200F\u2028"), "\\u202Eabc\\u2066\\u200F\\u2028");
}

TEST(VisibleText, KeepsOtherTexts) {
  for (const char* text : {"", "größe 日本 😀", "\\u001B", "\xED\xA0\xBD"}) EXPECT_EQ(HLVisibleText(text), text);
}

TEST(Columns, CountWideCharactersTwice) {
  EXPECT_EQ(HLColumns("größe"), 5U);
  EXPECT_EQ(HLColumns("日本 😀"), 7U);
}

TEST(Columns, LimitACutText) {
  EXPECT_EQ(HLCutToColumns("abcd", 4), "abcd");
  EXPECT_EQ(HLCutToColumns("abcde", 4), "abc…");
  EXPECT_EQ(HLCutToColumns("日本語", 4), "日…");
  EXPECT_EQ(HLCutToColumns("日本語", 1), "…");
}

TEST(Terminal, IsOnlyAMarkedStream) {
  std::ostringstream one;
  std::ostringstream other;
  HLMarkAsTerminal(one);
  EXPECT_TRUE(HLIsTerminal(one));
  EXPECT_FALSE(HLIsTerminal(other));
}

}  // namespace
