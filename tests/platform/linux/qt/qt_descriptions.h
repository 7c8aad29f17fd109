// Windows as the application describes them.
#pragma once

#include <functional>
#include <string>

#include "platform/application/windows.h"

struct WindowActions {
  std::function<void()> primary = [] {};
  std::function<void()> record = [] {};
  std::function<void(bool)> check = [](bool) {};
  std::function<void()> willClose = [] {};
};

inline HLWindowDescription SetupWindow(WindowActions actions = {}) {
  HLWindowDescription window;
  window.title = "Set Up Hushlet";
  window.width = 460;
  window.height = 360;
  window.sideMargin = 24;
  window.verticalMargin = 22;
  window.stack = {
      {HLLabel{"heading", "Allow Accessibility", 20, HLFontWeight::semibold}, 6},
      {HLLabel{"explanation",
               "Hushlet clears notification banners by pressing their close buttons for you. Your desktop calls this "
               "assistive technologies. It only looks at the notification service, and nothing leaves your computer."},
       12, true},
      {HLLabel{"steps",
               "1. Click Switch On Accessibility.\n2. Turn on assistive technologies.\n3. Come back here. This "
               "window updates by itself."},
       12, true},
      {HLLabel{"note",
               "Already on, but it still asks? Log out and in again, so that the programs that were started before "
               "take notice of it, and then open this window once more.",
               12, HLFontWeight::regular, HLTextColor::secondary},
       18, true},
      {HLLabel{"status", "Waiting for Accessibility access…", 13, HLFontWeight::medium, HLTextColor::secondary}, 12,
       true},
      {HLButton{"primary", "Switch On Accessibility", "\r", actions.primary}},
  };
  window.willClose = actions.willClose;
  return window;
}

inline HLWindowDescription SettingsWindow(WindowActions actions = {}) {
  HLWindowDescription window;
  window.title = "Hushlet Settings";
  window.width = 420;
  window.height = 280;
  window.sideMargin = 24;
  window.verticalMargin = 22;
  window.stack = {
      {HLLabel{"", "Shortcut", 13, HLFontWeight::semibold}, 8},
      {HLLabel{"shortcut", "Ctrl+Alt+Shift+Super+Backspace", 15, HLFontWeight::medium}, 8, true},
      {HLRow{{HLButton{"record", "Record Shortcut", "", actions.record}, HLButton{"", "Clear", "", [] {}}}, 10}, 8},
      {HLLabel{"note", "Works from any app. Needs at least one of Super, Alt or Ctrl, or an F key.", 12,
               HLFontWeight::regular, HLTextColor::secondary},
       18, true},
      {HLLabel{"", "Accessibility", 13, HLFontWeight::semibold}, 8},
      {HLRow{{HLLabel{"access", "Not allowed yet", 13, HLFontWeight::regular, HLTextColor::orange},
              HLButton{"setup", "Set Up Accessibility", "", [] {}}},
             10},
       18},
      {HLCheckBox{"openAtLogin", "Open at Login", actions.check}},
  };
  window.willClose = actions.willClose;
  return window;
}
