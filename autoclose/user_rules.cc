#include "autoclose/user_rules.h"

#include <optional>

#include "base/format.h"
#include "platform/text.h"

namespace {

std::optional<HLAutoCloseRule> parsedRule(const HLValue& value) {
  const std::string* text = value.as<std::string>();
  const std::size_t bar = text != nullptr ? text->find('|') : std::string::npos;
  if (bar == std::string::npos || text->find('|', bar + 1) != std::string::npos) return std::nullopt;
  const std::string_view application = HLTrim(std::string_view(*text).substr(0, bar));
  const std::string_view phrase = HLTrim(std::string_view(*text).substr(bar + 1));
  if (application.empty() || phrase.empty()) return std::nullopt;
  HLAutoCloseRule rule{{}, {HLLowercase(phrase)}};
  if (application != "*") rule.applicationNames.insert(HLLowercase(application));
  return rule;
}

std::string mistake(std::size_t number, const HLValue& value) {
  const std::string* text = value.as<std::string>();
  const std::string shown = text != nullptr ? *text : std::string("no text");
  return HLFormat("Rule %ld is ignored: \"%@\" is not \"APPLICATION|PHRASE\".", static_cast<std::int64_t>(number),
                  shown);
}

}  // namespace

HLUserRules HLReadUserRules(const HLValue& stored) {
  HLUserRules read;
  if (stored.isMissing()) return read;
  const HLArray* list = stored.as<HLArray>();
  const HLArray values = list != nullptr ? *list : HLArray{stored};
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (std::optional<HLAutoCloseRule> rule = parsedRule(values[i])) {
      read.rules.push_back(std::move(*rule));
    } else {
      read.mistakes.push_back(mistake(i + 1, values[i]));
    }
  }
  return read;
}
