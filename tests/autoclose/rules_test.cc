#include "autoclose/rules.h"

#include <gtest/gtest.h>

#include "tests/support/simulated_desktop.h"

namespace {

using Forms = std::set<std::string>;

// No table of the system is there, so that the built-in rule is its fallbacks.
class AutoCloseRules : public testing::Test {
 protected:
  [[nodiscard]] static bool matches(std::string_view description, const std::optional<std::string>& testRule = {}) {
    return HLAlertDescriptionMatchesAutoClose(description, HLAutoCloseRules(testRule));
  }

 private:
  SimulatedDesktop desktop_{"{}"};
};

TEST_F(AutoCloseRules, MatchARunningAutomation) {
  EXPECT_TRUE(matches("Shortcuts, Running your automation"));
  EXPECT_TRUE(matches("Shortcuts, Running your automation, When I get home"));
  EXPECT_TRUE(matches("Shortcuts, Now: running your automation."));
}

TEST_F(AutoCloseRules, IgnoreLetterCase) {
  EXPECT_TRUE(matches("SHORTCUTS, RUNNING YOUR AUTOMATION"));
  EXPECT_TRUE(matches("sHortcuts, running Your automation"));
}

TEST_F(AutoCloseRules, RejectOtherApplications) {
  EXPECT_FALSE(matches("Mail, Running your automation"));
  EXPECT_FALSE(matches("Shortcuts Beta, Running your automation"));
  EXPECT_FALSE(matches("My Shortcuts, Running your automation"));
}

TEST_F(AutoCloseRules, RejectOtherBodies) {
  EXPECT_FALSE(matches("Shortcuts, Your automation failed"));
  EXPECT_FALSE(matches("Shortcuts, "));
  EXPECT_FALSE(matches("Shortcuts, Mail, your automation"));
}

TEST_F(AutoCloseRules, SplitAtTheFirstComma) {
  EXPECT_FALSE(matches("Shortcuts"));
  EXPECT_FALSE(matches(""));
  EXPECT_FALSE(matches("Shortcuts,Running your automation"));
  EXPECT_FALSE(matches("Shortcuts,Running, running your automation"));
  EXPECT_FALSE(matches(" Shortcuts, Running your automation"));
  EXPECT_FALSE(matches("Shortcuts , Running your automation"));
  EXPECT_FALSE(matches(", Running your automation"));
  EXPECT_TRUE(matches("Shortcuts, Home, Running your automation"));
}

TEST_F(AutoCloseRules, IncludeATestRule) {
  EXPECT_TRUE(matches("Mail, Your Weekly Report is here", "Mail|weekly report"));
  EXPECT_TRUE(matches("MAIL, weekly report", "mAiL|Weekly REPORT"));
  EXPECT_TRUE(matches("Shortcuts, Running your automation", "Mail|weekly report"));
  EXPECT_FALSE(matches("Mail, Running your automation", "Mail|weekly report"));
  EXPECT_FALSE(matches("Shortcuts, weekly report", "Mail|weekly report"));
  EXPECT_EQ(HLAutoCloseRules("Mail|weekly report").size(), 2U);
}

TEST_F(AutoCloseRules, KeepBlanksOfATestRule) {
  EXPECT_FALSE(matches("Mail, weekly report", "Mail |weekly report"));
  EXPECT_TRUE(matches("Mail , weekly report", "Mail |weekly report"));
  EXPECT_FALSE(matches("Mail, weekly report", "Mail| weekly report"));
}

TEST_F(AutoCloseRules, IgnoreAMalformedTestRule) {
  for (const std::string rule : {"", "Mail", "Mail|", "|report", "|", "Mail|a|b", "Mail|a|", "|Mail|a"}) {
    EXPECT_EQ(HLAutoCloseRules(rule).size(), 1U) << rule;
    EXPECT_TRUE(matches("Shortcuts, Running your automation", rule)) << rule;
  }
  EXPECT_EQ(HLAutoCloseRules(std::nullopt).size(), 1U);
}

TEST_F(AutoCloseRules, UseFallbacksWithoutTables) {
  const HLAutoCloseRuleList rules = HLAutoCloseRules(std::nullopt);
  EXPECT_EQ(rules.at(0).applicationNames, Forms{"shortcuts"});
  EXPECT_EQ(rules.at(0).bodyPhrases, Forms{"running your automation"});
}

TEST(LocalizedForms, IncludeEveryLanguageInLowerCase) {
  const SimulatedDesktop desktop(R"({"propertyLists": {"/table": {
    "en": {"Name": "Shortcuts"}, "de": {"Name": "Kurzbefehle"}, "el": {"Name": "ΣΥΝΤΟΜΕΎΣΕΙΣ"},
    "en_GB": {"Name": "SHORTCUTS"}}}})");
  EXPECT_EQ(HLLocalizedForms("/table", "Name", "Fallback"),
            (Forms{"shortcuts", "kurzbefehle", "συντομεύσεις", "fallback"}));
}

TEST(LocalizedForms, SkipOtherEntries) {
  const SimulatedDesktop desktop(R"({"propertyLists": {"/table": {
    "LocProvenance": "text", "count": 3, "list": ["Name"], "a": {}, "b": {"Other": "x"}, "c": {"Name": ""},
    "d": {"Name": 5}, "e": {"Name": {"nested": "x"}}, "f": {"Name": ["x"]}, "g": {"Name": "Kept"}}}})");
  EXPECT_EQ(HLLocalizedForms("/table", "Name", "F"), (Forms{"f", "kept"}));
}

TEST(LocalizedForms, UseFallbackWithoutATable) {
  const SimulatedDesktop desktop(R"({"propertyLists": {"/list": ["Name"], "/text": "Name"}})");
  EXPECT_EQ(HLLocalizedForms("/missing", "Name", "Shortcuts"), Forms{"shortcuts"});
  EXPECT_EQ(HLLocalizedForms("/list", "Name", "Shortcuts"), Forms{"shortcuts"});
  EXPECT_EQ(HLLocalizedForms("/text", "Name", "Shortcuts"), Forms{"shortcuts"});
}

}  // namespace
