#include "platform/linux/qt/services/key_codes.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>

namespace {

struct Key {
  std::uint16_t virtualKey;
  std::uint16_t kernelKey;
};

// Each code appears once per column.
constexpr Key kKeys[] = {
    {0x00, KEY_A},
    {0x01, KEY_S},
    {0x02, KEY_D},
    {0x03, KEY_F},
    {0x04, KEY_H},
    {0x05, KEY_G},
    {0x06, KEY_Z},
    {0x07, KEY_X},
    {0x08, KEY_C},
    {0x09, KEY_V},
    {0x0A, KEY_102ND},  // beside the left Shift key, on ISO keyboards
    {0x0B, KEY_B},
    {0x0C, KEY_Q},
    {0x0D, KEY_W},
    {0x0E, KEY_E},
    {0x0F, KEY_R},
    {0x10, KEY_Y},
    {0x11, KEY_T},
    {0x12, KEY_1},
    {0x13, KEY_2},
    {0x14, KEY_3},
    {0x15, KEY_4},
    {0x16, KEY_6},
    {0x17, KEY_5},
    {0x18, KEY_EQUAL},
    {0x19, KEY_9},
    {0x1A, KEY_7},
    {0x1B, KEY_MINUS},
    {0x1C, KEY_8},
    {0x1D, KEY_0},
    {0x1E, KEY_RIGHTBRACE},
    {0x1F, KEY_O},
    {0x20, KEY_U},
    {0x21, KEY_LEFTBRACE},
    {0x22, KEY_I},
    {0x23, KEY_P},
    {0x24, KEY_ENTER},
    {0x25, KEY_L},
    {0x26, KEY_J},
    {0x27, KEY_APOSTROPHE},
    {0x28, KEY_K},
    {0x29, KEY_SEMICOLON},
    {0x2A, KEY_BACKSLASH},
    {0x2B, KEY_COMMA},
    {0x2C, KEY_SLASH},
    {0x2D, KEY_N},
    {0x2E, KEY_M},
    {0x2F, KEY_DOT},
    {0x30, KEY_TAB},
    {0x31, KEY_SPACE},
    {0x32, KEY_GRAVE},
    {0x33, KEY_BACKSPACE},
    {0x35, KEY_ESC},
    {0x40, KEY_F17},
    {0x41, KEY_KPDOT},
    {0x43, KEY_KPASTERISK},
    {0x45, KEY_KPPLUS},
    {0x47, KEY_NUMLOCK},  // "clear" on Apple keypads
    {0x48, KEY_VOLUMEUP},
    {0x49, KEY_VOLUMEDOWN},
    {0x4A, KEY_MUTE},
    {0x4B, KEY_KPSLASH},
    {0x4C, KEY_KPENTER},
    {0x4E, KEY_KPMINUS},
    {0x4F, KEY_F18},
    {0x50, KEY_F19},
    {0x51, KEY_KPEQUAL},
    {0x52, KEY_KP0},
    {0x53, KEY_KP1},
    {0x54, KEY_KP2},
    {0x55, KEY_KP3},
    {0x56, KEY_KP4},
    {0x57, KEY_KP5},
    {0x58, KEY_KP6},
    {0x59, KEY_KP7},
    {0x5A, KEY_F20},
    {0x5B, KEY_KP8},
    {0x5C, KEY_KP9},
    {0x5D, KEY_YEN},
    {0x5E, KEY_RO},
    {0x5F, KEY_KPJPCOMMA},
    {0x60, KEY_F5},
    {0x61, KEY_F6},
    {0x62, KEY_F7},
    {0x63, KEY_F3},
    {0x64, KEY_F8},
    {0x65, KEY_F9},
    {0x66, KEY_HANJA},  // left and right of the space bar,
                        // on Korean and Japanese keyboards
    {0x67, KEY_F11},
    {0x68, KEY_HANGEUL},
    {0x69, KEY_F13},
    {0x6A, KEY_F16},
    {0x6B, KEY_F14},
    {0x6D, KEY_F10},
    {0x6E, KEY_COMPOSE},
    {0x6F, KEY_F12},
    {0x71, KEY_F15},
    {0x72, KEY_INSERT},  // "help" on Apple keyboards
    {0x73, KEY_HOME},
    {0x74, KEY_PAGEUP},
    {0x75, KEY_DELETE},
    {0x76, KEY_F4},
    {0x77, KEY_END},
    {0x78, KEY_F2},
    {0x79, KEY_PAGEDOWN},
    {0x7A, KEY_F1},
    {0x7B, KEY_LEFT},
    {0x7C, KEY_RIGHT},
    {0x7D, KEY_DOWN},
    {0x7E, KEY_UP},
};

}  // namespace

std::optional<std::uint16_t> HLVirtualKeyForKernelKey(std::uint32_t kernelKey) {
  const auto* found =
      std::find_if(std::begin(kKeys), std::end(kKeys), [&](const Key& key) { return key.kernelKey == kernelKey; });
  if (found == std::end(kKeys)) return std::nullopt;
  return found->virtualKey;
}

std::optional<std::uint32_t> HLKernelKeyForVirtualKey(std::uint32_t virtualKey) {
  const auto* found =
      std::find_if(std::begin(kKeys), std::end(kKeys), [&](const Key& key) { return key.virtualKey == virtualKey; });
  if (found == std::end(kKeys)) return std::nullopt;
  return found->kernelKey;
}
