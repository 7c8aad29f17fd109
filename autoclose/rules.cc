#include "autoclose/rules.h"

#include <algorithm>

#include "core/scan/alert_description.h"
#include "platform/platform.h"
#include "platform/property_lists.h"
#include "platform/text.h"

namespace {

std::optional<HLAutoCloseRule> parsedRule(std::string_view text) {
  const std::size_t bar = text.find('|');
  if (bar == std::string_view::npos) return std::nullopt;
  const std::string_view application = text.substr(0, bar);
  const std::string_view phrase = text.substr(bar + 1);
  if (application.empty() || phrase.empty() || phrase.find('|') != std::string_view::npos) return std::nullopt;
  return HLAutoCloseRule{{HLLowercase(application)}, {HLLowercase(phrase)}};
}

}  // namespace

std::set<std::string> HLLocalizedForms(const std::string& path, std::string_view key, std::string_view fallback) {
  std::set<std::string> forms = {HLLowercase(fallback)};
  const std::optional<HLDictionary> table = HLCurrentPlatform().propertyLists->readDictionary(path);
  if (!table) return forms;
  for (const HLDictionaryEntry& language : *table) {
    const HLDictionary* texts = language.value.as<HLDictionary>();
    const HLValue* value = texts != nullptr ? HLDictionaryValue(*texts, key) : nullptr;
    const std::string* text = value != nullptr ? value->as<std::string>() : nullptr;
    if (text != nullptr && !text->empty()) forms.insert(HLLowercase(*text));
  }
  return forms;
}

HLAutoCloseRule HLShortcutsRule() {
  return {HLLocalizedForms("/System/Applications/Shortcuts.app/Contents/Resources/InfoPlist.loctable",
                           "CFBundleDisplayName", "Shortcuts"),
          HLLocalizedForms(
              "/System/Library/PrivateFrameworks/VoiceShortcuts.framework/Versions/A/Resources/Localizable.loctable",
              "Running your automation", "Running your automation")};
}

HLAutoCloseRuleList HLAutoCloseRules(const std::optional<std::string>& testRule) {
  static const HLAutoCloseRule builtIn = HLShortcutsRule();
  HLAutoCloseRuleList rules = {builtIn};
  if (const auto rule = testRule ? parsedRule(*testRule) : std::nullopt) rules.push_back(*rule);
  return rules;
}

bool HLAlertDescriptionMatchesAutoClose(std::string_view description, const HLAutoCloseRuleList& rules) {
  const HLAlertDescription parts = HLSplitAlertDescription(description);
  if (!parts.rest) return false;
  const std::string application = HLLowercase(parts.application);
  const std::string body = HLLowercase(*parts.rest);
  return std::any_of(rules.begin(), rules.end(), [&application, &body](const HLAutoCloseRule& rule) {
    return (rule.applicationNames.empty() || rule.applicationNames.count(application) > 0) &&
           std::any_of(rule.bodyPhrases.begin(), rule.bodyPhrases.end(),
                       [&body](const std::string& phrase) { return body.find(phrase) != std::string::npos; });
  });
}
