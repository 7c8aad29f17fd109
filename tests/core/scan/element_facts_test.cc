#include "core/scan/element_facts.h"

#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/element_access.h"
#include "tests/support/fake_element.h"
#include "tests/support/simulated_desktop.h"

namespace {

HLElementFacts factsOfSevenTexts() {
  HLElementFacts facts;
  facts.role = "AXButton";
  facts.subrole = "AXCloseButton";
  facts.roleDescription = "Close  Button";
  facts.title = "A\nTitle";
  facts.description = " Some Description ";
  facts.value = "42";
  facts.identifier = "Identifier.One";
  return facts;
}

TEST(SearchableContext, JoinsTheSevenTextsInTheirOrder) {
  EXPECT_EQ(HLSearchableContext(factsOfSevenTexts()),
            "axbutton axclosebutton close button a title some description 42 identifier.one");
}

TEST(SearchableContext, LeavesOutWhatIsEmptyOrBlank) {
  HLElementFacts facts;
  EXPECT_EQ(HLSearchableContext(facts), "");
  facts.role = "AXButton";
  facts.subrole = " \n\t";
  facts.description = "close";
  EXPECT_EQ(HLSearchableContext(facts), "axbutton close");
  facts.role = "";
  EXPECT_EQ(HLSearchableContext(facts), "close");
}

TEST(SearchableContext, LowerCasesAllOfUnicode) {
  HLElementFacts facts;
  facts.title = "SCHLIESSEN ÄÖÜ ПРИВЕТ";
  EXPECT_EQ(HLSearchableContext(facts), "schliessen äöü привет");
}

TEST(StructuralContext, JoinsRoleSubroleRoleDescriptionAndIdentifierOnly) {
  EXPECT_EQ(HLStructuralContext(factsOfSevenTexts()), "axbutton axclosebutton close button identifier.one");
  HLElementFacts facts;
  facts.title = "title";
  facts.description = "description";
  facts.value = "value";
  EXPECT_EQ(HLStructuralContext(facts), "");
  facts.identifier = "ID  1";
  EXPECT_EQ(HLStructuralContext(facts), "id 1");
}

constexpr std::string_view kElements = R"({
  "applications": [{"pid": 400, "windows": [
    {"id": "full", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "roleDescription": "group",
     "title": "T", "description": "Mail, hello", "identifier": "ID", "value": true, "frame": [1.5, -2, 360, 80],
     "actions": ["AXPress", "Name:Close"],
     "children": [{"id": "child"}, "text", {"ref": "row"}],
     "rows": [{"id": "row"}, {"ref": "child"}],
     "visibleChildren": [7, {"ref": "row"}, {"ref": "row"}]},
    {"id": "broken", "role": "AXButton", "title": "T", "frame": [1, 2, 3, 4], "children": [{"id": "lost"}],
     "actions": ["AXPress"],
     "errors": {"AXTitle": -25200, "AXSize": -25204, "AXChildren": -25204, "actions": -25204}},
    {"id": "odd", "attributes": {"AXRole": 7, "AXTitle": [1], "AXValue": 2.25, "AXPosition": {"size": [1, 2]},
     "AXSize": {"size": [0, 25]}, "AXChildren": "none", "AXRows": {"ref": "full"}}},
    {"id": "bare"}
  ]}]
})";

class ElementFacts : public testing::Test {
 protected:
  SimulatedDesktop desktop_{kElements};
};

TEST_F(ElementFacts, HoldWhatTheElementSays) {
  const HLElementFacts facts = HLReadElementFacts(*desktop_.element("full"));
  EXPECT_EQ(facts.role, "AXGroup");
  EXPECT_EQ(facts.subrole, "AXNotificationCenterAlert");
  EXPECT_EQ(facts.roleDescription, "group");
  EXPECT_EQ(facts.title, "T");
  EXPECT_EQ(facts.description, "Mail, hello");
  EXPECT_EQ(facts.value, "1");
  EXPECT_EQ(facts.identifier, "ID");
  EXPECT_EQ(facts.actionNames, (std::vector<std::string>{"AXPress", "Name:Close"}));
  EXPECT_EQ(facts.frame, (HLRect{1.5, -2, 360, 80}));
}

TEST_F(ElementFacts, ListChildrenThenRowsThenVisibleChildrenWithRepetitions) {
  const HLElementRef child = desktop_.element("child");
  const HLElementRef row = desktop_.element("row");
  EXPECT_EQ(HLReadElementFacts(*desktop_.element("full")).children,
            (std::vector<HLElementRef>{child, row, row, child, row, row}));
}

TEST_F(ElementFacts, AFailingAttributeIsMissingAndTheOthersAreRead) {
  const HLElementFacts facts = HLReadElementFacts(*desktop_.element("broken"));
  EXPECT_EQ(facts.role, "AXButton");
  EXPECT_EQ(facts.title, "");
  EXPECT_TRUE(facts.frame.isNull());
  EXPECT_TRUE(facts.children.empty());
  EXPECT_TRUE(facts.actionNames.empty());
}

TEST_F(ElementFacts, OneBatchTellsTheSameAsSingleReads) {
  for (const char* id : {"full", "broken", "odd", "bare"}) {
    const HLElementRef element = desktop_.element(id);
    const HLElementFacts facts = HLReadElementFacts(*element);
    const auto text = [&element](std::string_view name) { return HLStringAttribute(*element, name).value_or(""); };
    EXPECT_EQ(facts.role, text("AXRole")) << id;
    EXPECT_EQ(facts.subrole, text("AXSubrole")) << id;
    EXPECT_EQ(facts.roleDescription, text("AXRoleDescription")) << id;
    EXPECT_EQ(facts.title, text("AXTitle")) << id;
    EXPECT_EQ(facts.description, text("AXDescription")) << id;
    EXPECT_EQ(facts.value, text("AXValue")) << id;
    EXPECT_EQ(facts.identifier, text("AXIdentifier")) << id;
    EXPECT_EQ(facts.actionNames, HLActionNames(*element)) << id;
    const HLPoint position = HLPointAttribute(*element, "AXPosition");
    EXPECT_EQ(facts.frame, HLFrameFromPointAndSize(position, HLSizeAttribute(*element, "AXSize"))) << id;
    std::vector<HLElementRef> children;
    for (const char* list : {"AXChildren", "AXRows", "AXVisibleChildren"}) {
      for (const HLElementRef& member : HLElementsFromAttribute(element->copyAttributeValue(list))) {
        children.push_back(member);
      }
    }
    EXPECT_EQ(facts.children, children) << id;
  }
}

// Returns fewer attributes than it is asked for.
class ShortElement : public FakeElement {
 public:
  [[nodiscard]] std::vector<HLAttribute> copyAttributeValues(std::span<const std::string_view> names) const override {
    return FakeElement::copyAttributeValues(names.first(3));
  }
};

TEST_F(ElementFacts, TreatAttributesThatAreNotReturnedAsMissing) {
  ShortElement element;
  for (const char* name : {"AXRole", "AXTitle", "AXIdentifier"}) {
    element.attributes[name] = {HLAXErrorSuccess, std::string(name)};
  }
  element.attributes["AXChildren"] = {HLAXErrorSuccess, HLArray{std::make_shared<FakeElement>()}};
  const HLElementFacts facts = HLReadElementFacts(element);
  EXPECT_EQ(HLSearchableContext(facts), "axrole");
  EXPECT_TRUE(facts.frame.isNull());
  EXPECT_TRUE(facts.children.empty());
}

TEST_F(ElementFacts, AnElementThatCannotBeReadHasNone) {
  FakeElement gone;
  gone.actions.error = HLAXErrorInvalidElement;
  const HLElementFacts facts = HLReadElementFacts(gone);
  EXPECT_EQ(HLSearchableContext(facts), "");
  EXPECT_TRUE(facts.actionNames.empty());
  EXPECT_TRUE(facts.frame.isNull());
  EXPECT_TRUE(facts.children.empty());
}

}  // namespace
