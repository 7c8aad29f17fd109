#include "platform/linux/qt/services/gnome_hot_keys.h"

#include "platform/linux/qt/services/key_names.h"

namespace {

// Returns, for example, "<Control><Alt><Super>n"; nullopt for a key without a name.
std::optional<std::string> accelerator(std::uint32_t code, std::uint32_t modifiers) {
  const std::optional<std::string> key = HLKeyNameForVirtualKey(code);
  if (!key) return std::nullopt;
  std::string text;
  if ((modifiers & HLHotKeyControl) != 0) text += "<Control>";
  if ((modifiers & HLHotKeyOption) != 0) text += "<Alt>";
  if ((modifiers & HLHotKeyShift) != 0) text += "<Shift>";
  if ((modifiers & HLHotKeyCommand) != 0) text += "<Super>";
  return text + *key;
}

}  // namespace

HLHotKeyRegistration HLGnomeHotKeys::registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity&) {
  const std::optional<std::string> wanted = accelerator(code, modifiers);
  stored_ = shortcut_.accelerator();
  isActive_ = wanted && stored_ && HLAreSameAccelerators(*stored_, *wanted);
  if (!isActive_) return {HLHotKeyStatus::failed, nullptr};
  return {HLHotKeyStatus::success, std::make_unique<HLHotKey>()};
}

HLHotKeyStatus HLGnomeHotKeys::userRecorded(std::uint32_t code, std::uint32_t modifiers) {
  const std::optional<std::string> wanted = accelerator(code, modifiers);
  if (!wanted) return HLHotKeyStatus::failed;
  if (shortcut_.otherOwner(*wanted)) return HLHotKeyStatus::taken;
  return shortcut_.set(*wanted) ? HLHotKeyStatus::success : HLHotKeyStatus::failed;
}

std::optional<std::string> HLGnomeHotKeys::unsupportedReason() const {
  if (isActive_) return std::nullopt;
  if (stored_) return "GNOME's keyboard settings have " + *stored_ + " instead. Record a shortcut to replace it.";
  return "Not active yet. Record a shortcut: GNOME's settings then hold it, and run the command hushlet --dismiss-now.";
}

void HLGnomeHotKeys::userCleared() {
  shortcut_.remove();
  stored_ = std::nullopt;
  isActive_ = false;
}

std::optional<std::string> HLGnomeHotKeys::storageNote() const {
  if (!isActive_) return std::nullopt;
  return "A custom shortcut in GNOME's keyboard settings. Works while Hushlet does not run, too.";
}
