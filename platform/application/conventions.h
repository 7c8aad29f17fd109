// Texts and behavior of the application that differ between hosts.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// A preference of the host's own, with a check box in the settings window. It is on unless stored otherwise.
struct HLHostChoice {
  std::string key;
  std::string title;
  std::string note;  // its effect, and when a change applies
};

struct HLConventions {
  // Texts of the setup window. "%@" is replaced by the application's name.
  std::string accessExplanation;
  std::string accessSteps;
  std::string accessNote;
  std::string accessButton;

  std::string icon;            // what users call the status item, such as "menu bar icon"
  std::string fallbackHint;    // how to clear notifications without icon and shortcut
  std::string modifierChoice;  // the modifiers of which a shortcut needs one, such as "Command, Option or Control"
  // Formats a shortcut for display.
  std::function<std::string(std::uint64_t modifiers, const std::optional<std::string>& keyLabel)> shortcutText;

  std::optional<HLHostChoice> choice = std::nullopt;

  bool spellsModifiers = false;         // shortcuts are too long to share a row with their buttons
  bool offersAutoClose = true;          // the host has automations whose banners can be closed
  bool offersUserRules = false;         // the preferences may hold rules for banners to close
  bool marksInactiveShortcuts = false;  // windows mark a stored shortcut that is not registered
  bool restoresShortcutNote = false;    // a canceled recording restores the note under the shortcut
  bool logsUnchangedPolls = true;       // the setup window's polls are logged even without a change
  bool explainsFailures = false;  // the status item, or without one the settings window, says why a dismissal failed
  bool iconMayBeMissing = false;  // the first start without an icon opens the settings window
};
