#include "platform/accessibility.h"

HLElementFacts HLElement::copyFacts() const {
  HLElementFacts facts = HLFactsFromAttributes([this](std::string_view name) { return copyAttributeValue(name); });
  facts.actionNames = HLNamesFromActionList(copyActionNames());
  return facts;
}
