#include <gtest/gtest.h>

#include "autoclose/rules.h"
#include "tests/support/simulated_desktop.h"

namespace {

constexpr std::string_view kNames = "/System/Applications/Shortcuts.app/Contents/Resources/InfoPlist.loctable";
constexpr std::string_view kPhrases =
    "/System/Library/PrivateFrameworks/VoiceShortcuts.framework/Versions/A/Resources/Localizable.loctable";

// Tables of so many languages: "Name 7" and "Phrase 7" in the language "l7".
std::string sceneWithLanguages(int count) {
  std::string names;
  std::string phrases;
  for (int i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    const std::string language = (i == 0 ? "\"l" : ",\"l") + number + "\":";
    names += language + R"({"CFBundleDisplayName": "Name )" + number + R"("})";
    phrases += language + R"({"Running your automation": "Phrase )" + number + R"("})";
  }
  return R"({"propertyLists": {")" + std::string(kNames) + "\": {" + names + "}, \"" + std::string(kPhrases) + "\": {" +
         phrases + "}}}";
}

TEST(BuiltInRule, ReadsEveryLanguage) {
  const SimulatedDesktop desktop(sceneWithLanguages(45));
  const HLAutoCloseRuleList rules = {HLShortcutsRule()};
  EXPECT_EQ(rules[0].applicationNames.size(), 46U);
  EXPECT_EQ(rules[0].bodyPhrases.size(), 46U);
  EXPECT_TRUE(HLAlertDescriptionMatchesAutoClose("Name 0, Phrase 0", rules));
  EXPECT_TRUE(HLAlertDescriptionMatchesAutoClose("NAME 44, it says phrase 7 here", rules));
  EXPECT_TRUE(HLAlertDescriptionMatchesAutoClose("Shortcuts, Running your automation", rules));
  EXPECT_FALSE(HLAlertDescriptionMatchesAutoClose("Name 45, Phrase 0", rules));
}

// No test of this program lets HLAutoCloseRules() find tables first, so the rule that the process keeps has none.
TEST(BuiltInRule, IsReadOncePerProcess) {
  {
    const SimulatedDesktop withoutTables("{}");
    EXPECT_EQ(HLAutoCloseRules(std::nullopt)[0].applicationNames, std::set<std::string>{"shortcuts"});
  }
  const SimulatedDesktop desktop(sceneWithLanguages(45));
  const HLAutoCloseRuleList rules = HLAutoCloseRules(std::nullopt);
  ASSERT_EQ(rules.size(), 1U);
  EXPECT_EQ(rules[0].applicationNames, std::set<std::string>{"shortcuts"});
  EXPECT_EQ(rules[0].bodyPhrases, std::set<std::string>{"running your automation"});
}

}  // namespace
