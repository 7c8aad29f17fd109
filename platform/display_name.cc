#include "platform/display_name.h"

std::string HLDisplayName(HLProcessInfo& process) {
  const HLDictionary information = process.informationDictionary();
  const HLValue* value = HLDictionaryValue(information, "CFBundleDisplayName");
  const std::string* name = value == nullptr ? nullptr : value->as<std::string>();
  return name == nullptr || name->empty() ? "Hushlet" : *name;
}
