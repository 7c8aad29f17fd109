#include "autoclose/user_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

HLUserRules read(const std::vector<std::string>& texts) {
  HLArray list;
  for (const std::string& text : texts) list.emplace_back(text);
  return HLReadUserRules(list);
}

bool matches(const std::string& rule, std::string_view description) {
  return HLAlertDescriptionMatchesAutoClose(description, read({rule}).rules);
}

TEST(UserRules, MatchApplicationAndPhrase) {
  EXPECT_TRUE(matches("Backup|has finished", "Backup, Monday, The backup has finished."));
  EXPECT_TRUE(matches("BACKUP|Has Finished", "Backup, Monday, the backup has finished"));
  EXPECT_FALSE(matches("Backup|has finished", "Backup, Monday, The backup has failed."));
  EXPECT_FALSE(matches("Backup|has finished", "Mail, Monday, The backup has finished."));
  EXPECT_FALSE(matches("Backup|has finished", ", Monday, The backup has finished."));
}

TEST(UserRules, MatchAnyApplicationWithAStar) {
  EXPECT_TRUE(matches("*|has finished", ", Monday, The backup has finished."));
  EXPECT_TRUE(matches("*|has finished", "Mail, Monday, The backup has finished."));
  EXPECT_FALSE(matches("*|has finished", "Mail, Monday, The backup has failed."));
  EXPECT_FALSE(matches("*|has finished", "has finished"));
}

TEST(UserRules, IgnoreWhiteSpaceAroundTheParts) {
  EXPECT_TRUE(matches(" Backup |\thas finished ", "Backup, The backup has finished"));
}

TEST(UserRules, ReportEachMistake) {
  const HLUserRules rules = read({"Backup|done", "no bar", "|done", "Backup| ", "a|b|c", "", "*|x"});
  EXPECT_THAT(rules.rules, SizeIs(2));
  EXPECT_THAT(rules.mistakes, ElementsAre("Rule 2 is ignored: \"no bar\" is not \"APPLICATION|PHRASE\".",
                                          "Rule 3 is ignored: \"|done\" is not \"APPLICATION|PHRASE\".",
                                          "Rule 4 is ignored: \"Backup| \" is not \"APPLICATION|PHRASE\".",
                                          "Rule 5 is ignored: \"a|b|c\" is not \"APPLICATION|PHRASE\".",
                                          "Rule 6 is ignored: \"\" is not \"APPLICATION|PHRASE\"."));
}

TEST(UserRules, AcceptAListOrOneText) {
  EXPECT_THAT(HLReadUserRules(std::string("Backup|done")).rules, SizeIs(1));
  EXPECT_THAT(HLReadUserRules(HLValue()).rules, IsEmpty());
  EXPECT_THAT(HLReadUserRules(HLValue()).mistakes, IsEmpty());
  EXPECT_THAT(HLReadUserRules(HLArray()).mistakes, IsEmpty());
  EXPECT_THAT(HLReadUserRules(std::int64_t{7}).mistakes,
              ElementsAre("Rule 1 is ignored: \"no text\" is not \"APPLICATION|PHRASE\"."));
}

}  // namespace
