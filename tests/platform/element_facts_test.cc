#include "platform/element_facts.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/scan/element_access.h"
#include "tests/support/fake_element.h"
#include "tests/support/simulated_desktop.h"

namespace {

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

TEST_F(ElementFacts, HoldTheAttributesOfTheElement) {
  const HLElementFacts facts = desktop_.element("full")->copyFacts();
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

TEST_F(ElementFacts, KeepRepeatedChildren) {
  const HLElementRef child = desktop_.element("child");
  const HLElementRef row = desktop_.element("row");
  EXPECT_EQ(desktop_.element("full")->copyFacts().children,
            (std::vector<HLElementRef>{child, row, row, child, row, row}));
}

TEST_F(ElementFacts, SkipFailingAttributesOnly) {
  const HLElementFacts facts = desktop_.element("broken")->copyFacts();
  EXPECT_EQ(facts.role, "AXButton");
  EXPECT_EQ(facts.title, "");
  EXPECT_TRUE(facts.frame.isNull());
  EXPECT_TRUE(facts.children.empty());
  EXPECT_TRUE(facts.actionNames.empty());
}

TEST_F(ElementFacts, MatchReadsByName) {
  for (const char* id : {"full", "broken", "odd", "bare"}) {
    const HLElementRef element = desktop_.element(id);
    const HLElementFacts facts = element->copyFacts();
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

TEST_F(ElementFacts, LeaveUnansweredAttributesMissing) {
  FakeElement terse;
  terse.attributes["AXTitle"] = {HLAXErrorSuccess, "T"};
  terse.attributes["AXPosition"] = {HLAXErrorSuccess, HLPoint{1, 2}};
  const HLElementFacts facts = terse.copyFacts();
  for (const HLTextAttribute& attribute : HLTextAttributes) {
    EXPECT_EQ(facts.*attribute.text, attribute.name == "AXTitle" ? "T" : "") << attribute.name;
  }
  EXPECT_TRUE(facts.frame.isNull());
  EXPECT_TRUE(facts.children.empty());
}

TEST_F(ElementFacts, AreMissingOnDestroyedElements) {
  FakeElement gone;
  gone.actions = {HLAXErrorInvalidElement, {"AXPress"}};
  const HLElementFacts facts = gone.copyFacts();
  for (const HLTextAttribute& attribute : HLTextAttributes) EXPECT_EQ(facts.*attribute.text, "") << attribute.name;
  EXPECT_TRUE(facts.actionNames.empty());
  EXPECT_TRUE(facts.frame.isNull());
  EXPECT_TRUE(facts.children.empty());
}

}  // namespace
