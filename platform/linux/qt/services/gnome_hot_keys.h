// Shortcuts in GNOME's settings, for GNOME on Wayland without a portal that offers hot keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/application/hot_keys.h"
#include "platform/linux/settings/gnome_shortcut.h"

// GNOME runs a command when the keys are pressed, so no handler is called. The settings are changed only when the user
// records or clears a shortcut, and keep it while the program does not run.
class HLGnomeHotKeys : public HLHotKeys {
 public:
  explicit HLGnomeHotKeys(HLGnomeShortcut shortcut) : shortcut_(std::move(shortcut)) {}

  void installHandler(Handler) override {}
  // Returns success if the settings have the combination already, else failed.
  [[nodiscard]] HLHotKeyRegistration registerHotKey(std::uint32_t code, std::uint32_t modifiers,
                                                    const HLHotKeyIdentity& identity) override;
  [[nodiscard]] HLHotKeyStatus userRecorded(std::uint32_t code, std::uint32_t modifiers) override;
  void userCleared() override;
  [[nodiscard]] std::optional<std::string> unsupportedReason() const override;
  [[nodiscard]] std::optional<std::string> storageNote() const override;

 private:
  const HLGnomeShortcut shortcut_;
  std::optional<std::string> stored_;  // the accelerator that the settings had at the latest registration
  bool isActive_ = false;
};
