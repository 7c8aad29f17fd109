// Recognizes the banners of running automations in every language of the system.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// All texts are lower-cased.
struct HLAutoCloseRule {
  std::set<std::string> applicationNames;  // empty for any application
  std::set<std::string> bodyPhrases;
};

using HLAutoCloseRuleList = std::vector<HLAutoCloseRule>;

// Returns the text of the key in each language of a localization table, and the fallback; only the fallback when the
// table is missing or malformed.
[[nodiscard]] std::set<std::string> HLLocalizedForms(const std::string& path, std::string_view key,
                                                     std::string_view fallback);

// Returns the built-in rule, read from its two localization tables. Any thread.
[[nodiscard]] HLAutoCloseRule HLShortcutsRule();

// Returns the built-in rule, whose tables are read once per process, and the test rule if it is "APPLICATION|PHRASE".
// Any thread.
[[nodiscard]] HLAutoCloseRuleList HLAutoCloseRules(const std::optional<std::string>& testRule);

// Whether the description's application is that of a rule, and the rest of it contains one of that rule's phrases.
// Reads no file.
[[nodiscard]] bool HLAlertDescriptionMatchesAutoClose(std::string_view description, const HLAutoCloseRuleList& rules);
