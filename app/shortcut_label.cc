#include "app/shortcut_label.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "base/format.h"
#include "platform/application/hot_keys.h"
#include "platform/text.h"

namespace {

struct Key {
  HLKeyCode code;
  std::string_view label;
};

constexpr std::array kNamedKeys = {Key{HLKeyReturn, "↩"}, Key{HLKeyTab, "⇥"}, Key{HLKeySpace, "Space"},
                                   Key{HLKeyDelete, "⌫"}, Key{HLKeyEscape, "⎋"}};
constexpr std::array kFunctionKeys = {Key{122, "F1"}, Key{120, "F2"},  Key{99, "F3"},   Key{118, "F4"},
                                      Key{96, "F5"},  Key{97, "F6"},   Key{98, "F7"},   Key{100, "F8"},
                                      Key{101, "F9"}, Key{109, "F10"}, Key{103, "F11"}, Key{111, "F12"}};

const Key* find(const auto& keys, std::int64_t code) {
  const auto found = std::find_if(keys.begin(), keys.end(), [code](const Key& key) { return key.code == code; });
  return found == keys.end() ? nullptr : &*found;
}

}  // namespace

std::string HLShortcutLabel(std::uint64_t modifiers, const std::optional<std::string>& keyLabel) {
  std::string text;
  if ((modifiers & HLModifierControl) != 0) text += "⌃";
  if ((modifiers & HLModifierOption) != 0) text += "⌥";
  if ((modifiers & HLModifierShift) != 0) text += "⇧";
  if ((modifiers & HLModifierCommand) != 0) text += "⌘";
  return text + keyLabel.value_or("?");
}

std::string HLKeyLabelForEvent(const HLKeyEvent& event) {
  if (const Key* key = find(kNamedKeys, event.code)) return std::string(key->label);
  if (const Key* key = find(kFunctionKeys, event.code)) return std::string(key->label);
  const std::string typed = HLUppercase(event.charactersIgnoringModifiers);
  return typed.empty() ? HLFormat("Key %u", std::uint32_t{event.code}) : typed;
}

bool HLIsFunctionKey(std::int64_t code) { return find(kFunctionKeys, code) != nullptr; }

std::uint32_t HLCarbonModifiers(std::uint64_t modifiers) {
  std::uint32_t carbon = 0;
  if ((modifiers & HLModifierCommand) != 0) carbon |= HLHotKeyCommand;
  if ((modifiers & HLModifierShift) != 0) carbon |= HLHotKeyShift;
  if ((modifiers & HLModifierOption) != 0) carbon |= HLHotKeyOption;
  if ((modifiers & HLModifierControl) != 0) carbon |= HLHotKeyControl;
  return carbon;
}
