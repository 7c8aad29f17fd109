// The texts of the application on a Linux desktop.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "platform/application/events.h"
#include "platform/linux/linux_conventions.h"

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(LinuxConventions, GuideToButtonInThreeSteps) {
  const HLConventions conventions = HLLinuxConventions();
  EXPECT_EQ(std::count(conventions.accessSteps.begin(), conventions.accessSteps.end(), '\n'), 2);
  EXPECT_THAT(conventions.accessSteps, HasSubstr("1. Click " + conventions.accessButton + "."));
  EXPECT_THAT(conventions.accessSteps, HasSubstr("\n3. Come back here. This window updates by itself."));
  for (const std::string& text : {conventions.accessExplanation, conventions.accessNote}) {
    EXPECT_THAT(text, HasSubstr("%@"));
  }
  for (const std::string& text : {conventions.accessExplanation, conventions.accessSteps, conventions.accessNote}) {
    EXPECT_EQ(text.find('%'), text.find("%@"));
  }
}

TEST(LinuxConventions, AvoidTheWordsOfMacOS) {
  const HLConventions conventions = HLLinuxConventions();
  for (const std::string& text :
       {conventions.accessExplanation, conventions.accessSteps, conventions.accessNote, conventions.accessButton,
        conventions.icon, conventions.fallbackHint, conventions.modifierChoice}) {
    for (const char* word : {"Mac", "menu bar", "Command", "Option", "Settings"}) {
      EXPECT_THAT(text, Not(HasSubstr(word)));
    }
    EXPECT_NE(text, "");
  }
}

TEST(LinuxConventions, TellOfTheWatchBeforeAccess) {
  const HLConventions conventions = HLLinuxConventions();
  EXPECT_THAT(
      conventions.accessExplanation,
      HasSubstr("watches which notifications are posted while it runs, and remembers the open ones in memory. It "
                "never stores, logs or sends them. The settings switch that off."));
  ASSERT_TRUE(conventions.choice);
  EXPECT_EQ(conventions.choice->key, "HLWatchNotifications");
}

TEST(LinuxConventions, WriteShortcutsInWords) {
  const auto text = HLLinuxConventions().shortcutText;
  EXPECT_EQ(text(HLModifierControl | HLModifierOption | HLModifierCommand, "N"), "Ctrl+Alt+Super+N");
  EXPECT_EQ(text(HLModifierShift | HLModifierControl, "K"), "Ctrl+Shift+K");
  EXPECT_EQ(text(HLModifierShift | HLModifierOption | HLModifierCommand | HLModifierControl, "Space"),
            "Ctrl+Alt+Shift+Super+Space");
  EXPECT_EQ(text(0, "F5"), "F5");
  EXPECT_EQ(text(HLModifierCapsLock, std::nullopt), "?");
}

TEST(LinuxConventions, WriteKeySymbolsInWords) {
  const auto text = HLLinuxConventions().shortcutText;
  EXPECT_EQ(text(HLModifierControl, "↩"), "Ctrl+Enter");
  EXPECT_EQ(text(HLModifierControl, "⇥"), "Ctrl+Tab");
  EXPECT_EQ(text(HLModifierControl, "⌫"), "Ctrl+Backspace");
  EXPECT_EQ(text(HLModifierControl, "⎋"), "Ctrl+Esc");
}

}  // namespace
