#include "core/scan/element_facts.h"

#include <array>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "core/scan/element_access.h"
#include "core/scan/records.h"
#include "platform/text.h"

namespace {

// The order in which HLReadElementFacts picks the answers apart.
constexpr std::array<std::string_view, 12> kAttributes = {
    "AXRole",     "AXSubrole", "AXRoleDescription", "AXTitle", "AXDescription",    "AXValue", "AXIdentifier",
    "AXPosition", "AXSize",    "AXChildren",        "AXRows",  "AXVisibleChildren"};
constexpr std::size_t kFirstChildList = 9;

std::string joinedWords(std::initializer_list<std::string_view> texts) {
  std::string joined;
  for (std::string_view text : texts) {
    if (text.empty()) continue;
    if (!joined.empty()) joined += ' ';
    joined += text;
  }
  return HLCompactSnapshot(HLLowercase(joined));
}

}  // namespace

HLElementFacts HLReadElementFacts(const HLElement& element) {
  std::vector<HLAttribute> attributes = element.copyAttributeValues(kAttributes);
  attributes.resize(kAttributes.size());  // what a platform does not return is missing
  const auto text = [&attributes](std::size_t i) { return HLStringFromAttribute(attributes[i]).value_or(""); };
  HLElementFacts facts;
  facts.role = text(0);
  facts.subrole = text(1);
  facts.roleDescription = text(2);
  facts.title = text(3);
  facts.description = text(4);
  facts.value = text(5);
  facts.identifier = text(6);
  facts.frame = HLFrameFromPointAndSize(HLPointFromAttribute(attributes[7]), HLSizeFromAttribute(attributes[8]));
  for (std::size_t i = kFirstChildList; i < kAttributes.size(); ++i) {
    for (HLElementRef& child : HLElementsFromAttribute(attributes[i])) facts.children.push_back(std::move(child));
  }
  facts.actionNames = HLActionNames(element);
  return facts;
}

HLRect HLFrameForElement(const HLElement& element) { return HLReadElementFacts(element).frame; }

std::string HLSearchableContext(const HLElementFacts& facts) {
  return joinedWords({facts.role, facts.subrole, facts.roleDescription, facts.title, facts.description, facts.value,
                      facts.identifier});
}

std::string HLStructuralContext(const HLElementFacts& facts) {
  return joinedWords({facts.role, facts.subrole, facts.roleDescription, facts.identifier});
}
