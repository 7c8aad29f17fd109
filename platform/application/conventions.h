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
  std::string note;  // what it does, and when a change counts
};

struct HLConventions {
  // The setup window's way to the permission. "%@" stands for the application's name.
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

  bool spellsModifiers = false;       // shortcuts are too long to share a row with their buttons
  bool offersAutoClose = true;        // the host has automations whose banners can be closed
  bool offersUserRules = false;       // the preferences may hold rules for banners to close
  bool restoresShortcutNote = false;  // when a recording is canceled
  bool logsUnchangedPolls = true;     // of the setup window
  bool explainsFailures = false;      // of dismissals: by the status item, or without one by the settings window
  bool iconMayBeMissing = false;      // then the first start without an icon opens the settings window
};
