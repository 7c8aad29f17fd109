// Keys by their position.
#include "platform/linux/qt/services/key_codes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/qt/services/key_names.h"

namespace {

TEST(KeyCodes, FollowKeyPositions) {
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_N), 45);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_ENTER), 36);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_TAB), 48);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_SPACE), 49);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_BACKSPACE), 51);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_ESC), 53);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_GRAVE), 50);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_102ND), 10);
}

TEST(KeyCodes, CoverAllFunctionKeys) {
  const std::uint16_t codes[] = {122, 120, 99, 118, 96, 97, 98, 100, 101, 109};
  for (std::uint32_t i = 0; i < 10; ++i) EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_F1 + i), codes[i]) << "F" << i + 1;
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_F11), 103);
  EXPECT_EQ(HLVirtualKeyForKernelKey(KEY_F12), 111);
}

TEST(KeyCodes, MapBackToTheSameKey) {
  int known = 0;
  for (std::uint32_t kernelKey = 0; kernelKey < 0x300; ++kernelKey) {
    const std::optional<std::uint16_t> code = HLVirtualKeyForKernelKey(kernelKey);
    if (!code) continue;
    ++known;
    EXPECT_EQ(HLKernelKeyForVirtualKey(*code), kernelKey);
  }
  EXPECT_GT(known, 100);
}

TEST(KeyCodes, LeaveOutModifierKeys) {
  for (int key : {KEY_LEFTCTRL, KEY_RIGHTCTRL, KEY_LEFTSHIFT, KEY_RIGHTSHIFT, KEY_LEFTALT, KEY_RIGHTALT, KEY_LEFTMETA,
                  KEY_RIGHTMETA, KEY_CAPSLOCK}) {
    EXPECT_FALSE(HLVirtualKeyForKernelKey(static_cast<std::uint32_t>(key))) << key;
  }
  EXPECT_FALSE(HLKernelKeyForVirtualKey(55));
  EXPECT_FALSE(HLKernelKeyForVirtualKey(0xFFFF));
}

// The names of the keys from `first` on, in the order of their positions.
std::string namesFrom(std::uint32_t first, std::uint32_t count) {
  std::string names;
  for (std::uint32_t kernelKey = first; kernelKey < first + count; ++kernelKey) {
    names += HLKeyNameForVirtualKey(HLVirtualKeyForKernelKey(kernelKey).value_or(0xFFFF)).value_or("?");
  }
  return names;
}

TEST(KeyNames, FollowTheAmericanKeyboard) {
  EXPECT_EQ(namesFrom(KEY_1, 10), "1234567890");
  EXPECT_EQ(namesFrom(KEY_Q, 10), "qwertyuiop");
  EXPECT_EQ(namesFrom(KEY_A, 9), "asdfghjkl");
  EXPECT_EQ(namesFrom(KEY_Z, 7), "zxcvbnm");
  EXPECT_EQ(namesFrom(KEY_F1, 10), "F1F2F3F4F5F6F7F8F9F10");
  EXPECT_EQ(namesFrom(KEY_F11, 2), "F11F12");
  EXPECT_EQ(HLKeyNameForVirtualKey(0xFFFF), std::nullopt);
}

}  // namespace
