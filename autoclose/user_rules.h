// The user's own auto-close rules, on hosts that offer them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "autoclose/rules.h"
#include "platform/value.h"

// The preference: a list of texts "APPLICATION|PHRASE", or one such text.
inline constexpr std::string_view HLUserRulesKey = "HLAutoCloseRules";

struct HLUserRules {
  HLAutoCloseRuleList rules;
  std::vector<std::string> mistakes;  // a sentence for each rule that is ignored
};

// Parses the value of the preference. The application "*" matches any. Trims white space around both parts.
// Pure; thread-safe.
[[nodiscard]] HLUserRules HLReadUserRules(const HLValue& stored);
