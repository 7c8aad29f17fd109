// A custom shortcut in GNOME's settings, which runs a command.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Accelerators are written as GTK writes them: "<Control><Alt><Super>n". Calls run `gsettings` and block for it.
class HLGnomeShortcut {
 public:
  // `identifier` is the program's; each program has one shortcut.
  HLGnomeShortcut(const std::string& identifier, std::string name, std::string command);

  // Whether this is a GNOME session whose settings take custom shortcuts.
  [[nodiscard]] static bool isOffered();

  // Returns the accelerator that is set for the program, or nullopt without one.
  [[nodiscard]] std::optional<std::string> accelerator() const;

  // Returns what else has the accelerator: the key of a setting, or the name of a custom shortcut; nullopt if it is
  // free.
  [[nodiscard]] std::optional<std::string> otherOwner(const std::string& accelerator) const;

  // Sets the accelerator, which acts at once. Returns false if the settings do not take it.
  [[nodiscard]] bool set(const std::string& accelerator) const;
  void remove() const;

 private:
  [[nodiscard]] static std::vector<std::string> paths();
  [[nodiscard]] static bool setPaths(const std::vector<std::string>& paths);

  const std::string path_;
  const std::string name_;
  const std::string command_;
};

// Returns the texts in a list as `gsettings get` prints it.
[[nodiscard]] std::vector<std::string> HLTextsOfSetting(std::string_view printed);

// Whether both accelerators mean the same keys.
[[nodiscard]] bool HLAreSameAccelerators(std::string_view some, std::string_view other);
