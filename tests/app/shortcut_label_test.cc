#include "app/shortcut_label.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::uint64_t kShift = 0x20000;
constexpr std::uint64_t kControl = 0x40000;
constexpr std::uint64_t kOption = 0x80000;
constexpr std::uint64_t kCommand = 0x100000;

TEST(ShortcutLabel, WritesModifiersInOneOrder) {
  EXPECT_EQ(HLShortcutLabel(kControl | kOption | kCommand, "N"), "⌃⌥⌘N");
  EXPECT_EQ(HLShortcutLabel(kCommand | kShift | kOption | kControl, "Space"), "⌃⌥⇧⌘Space");
  EXPECT_EQ(HLShortcutLabel(kShift, "A"), "⇧A");
  EXPECT_EQ(HLShortcutLabel(0, "F5"), "F5");
}

TEST(ShortcutLabel, ReplacesAMissingKey) {
  EXPECT_EQ(HLShortcutLabel(kCommand, std::nullopt), "⌘?");
  EXPECT_EQ(HLShortcutLabel(kCommand, ""), "⌘");
}

TEST(ShortcutLabel, LeavesOutOtherModifiers) { EXPECT_EQ(HLShortcutLabel(0x10000 | 0x800000 | kOption, "N"), "⌥N"); }

TEST(KeyLabel, NamesKeysWithoutVisibleCharacters) {
  const std::vector<std::pair<std::uint16_t, std::string>> labels = {
      {36, "↩"},   {48, "⇥"},   {49, "Space"}, {51, "⌫"},    {53, "⎋"},   {122, "F1"},
      {120, "F2"}, {99, "F3"},  {118, "F4"},   {96, "F5"},   {97, "F6"},  {98, "F7"},
      {100, "F8"}, {101, "F9"}, {109, "F10"},  {103, "F11"}, {111, "F12"}};
  for (const auto& [code, label] : labels) EXPECT_EQ(HLKeyLabelForEvent({code, kCommand, "x"}), label) << code;
}

TEST(KeyLabel, UppercasesTheTypedCharacter) {
  EXPECT_EQ(HLKeyLabelForEvent({45, kShift, "n"}), "N");
  EXPECT_EQ(HLKeyLabelForEvent({39, 0, "ä"}), "Ä");
  EXPECT_EQ(HLKeyLabelForEvent({27, 0, "ß"}), "SS");
  EXPECT_EQ(HLKeyLabelForEvent({18, 0, "1"}), "1");
}

TEST(KeyLabel, FallsBackToTheKeyCode) {
  EXPECT_EQ(HLKeyLabelForEvent({90, 0, ""}), "Key 90");
  EXPECT_EQ(HLKeyLabelForEvent({65535, 0, ""}), "Key 65535");
}

TEST(FunctionKeys, AreF1ToF12) {
  const std::set<std::int64_t> keys = {96, 97, 98, 99, 100, 101, 103, 109, 111, 118, 120, 122};
  for (std::int64_t code = -1; code <= 256; ++code) EXPECT_EQ(HLIsFunctionKey(code), keys.contains(code)) << code;
}

TEST(CarbonModifiers, MatchTheHotKeyService) {
  EXPECT_EQ(HLCarbonModifiers(kCommand), 0x100U);
  EXPECT_EQ(HLCarbonModifiers(kShift), 0x200U);
  EXPECT_EQ(HLCarbonModifiers(kOption), 0x800U);
  EXPECT_EQ(HLCarbonModifiers(kControl), 0x1000U);
  EXPECT_EQ(HLCarbonModifiers(0x1C0000), 0x1900U);
  EXPECT_EQ(HLCarbonModifiers(0x10000 | 0x800000), 0U);
}

}  // namespace
