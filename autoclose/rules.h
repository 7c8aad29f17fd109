// Which banners say that an automation is running, in every language the system speaks.
#pragma once

#include <iosfwd>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// All texts are lower-cased.
struct HLAutoCloseRule {
  std::set<std::string> applicationNames;
  std::set<std::string> bodyPhrases;
};

using HLAutoCloseRuleList = std::vector<HLAutoCloseRule>;

// The text under the key in each language of a localization table, and the fallback. A table that is missing or
// malformed leaves the fallback alone.
[[nodiscard]] std::set<std::string> HLLocalizedForms(const std::string& path, std::string_view key,
                                                     std::string_view fallback);

// The built-in rule, whose tables are read once per process, and the test rule if it is "APPLICATION|PHRASE". Any
// thread.
[[nodiscard]] HLAutoCloseRuleList HLAutoCloseRules(const std::optional<std::string>& testRule);

// Whether the description's part before the first ", " is the name of a rule's application, and the rest holds one of
// that rule's phrases. Touches no file.
[[nodiscard]] bool HLAlertDescriptionMatchesAutoClose(std::string_view description, const HLAutoCloseRuleList& rules);
