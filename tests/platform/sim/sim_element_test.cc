// What elements of a scene answer.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/platform/sim/scene_desktop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SimulatedElement, MapsShortKeysToAttributes) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "role": "r", "subrole": "s", "roleDescription": "rd", "title": "t",
    "description": "d", "identifier": "i", "value": "v", "frame": [-1440, 12.5, 360, 80]})"));
  EXPECT_EQ(desktop.text("w", "AXRole"), "r");
  EXPECT_EQ(desktop.text("w", "AXSubrole"), "s");
  EXPECT_EQ(desktop.text("w", "AXRoleDescription"), "rd");
  EXPECT_EQ(desktop.text("w", "AXTitle"), "t");
  EXPECT_EQ(desktop.text("w", "AXDescription"), "d");
  EXPECT_EQ(desktop.text("w", "AXIdentifier"), "i");
  EXPECT_EQ(desktop.text("w", "AXValue"), "v");
  EXPECT_EQ(*desktop.read("w", "AXPosition").value.as<HLPoint>(), (HLPoint{-1440, 12.5}));
  EXPECT_EQ(*desktop.read("w", "AXSize").value.as<HLSize>(), (HLSize{360, 80}));
}

TEST(SimulatedElement, HasOnlyGivenAttributes) {
  SimulatedDesktop desktop(Scene(R"({"id": "w"})"));
  for (const char* name : {"AXRole", "AXValue", "AXPosition", "AXSize", "AXChildren", "AXRows", "AXVisibleChildren"}) {
    EXPECT_EQ(desktop.error("w", name), HLAXErrorNoValue) << name;
    EXPECT_TRUE(desktop.read("w", name).value.isMissing()) << name;
  }
  EXPECT_EQ(desktop.element("w")->copyActionNames().error, HLAXErrorSuccess);
  EXPECT_THAT(desktop.element("w")->copyActionNames().names, IsEmpty());
}

TEST(SimulatedElement, KeepsTheKindOfANumber) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "whole", "value": 12}, {"id": "real", "value": 12.0}, {"id": "true", "value": true},
    {"id": "huge", "value": 18446744073709551615})"));
  EXPECT_EQ(*desktop.read("whole", "AXValue").value.as<std::int64_t>(), 12);
  EXPECT_EQ(*desktop.read("real", "AXValue").value.as<double>(), 12.0);
  EXPECT_EQ(*desktop.read("true", "AXValue").value.as<bool>(), true);
  EXPECT_EQ(*desktop.read("huge", "AXValue").value.as<double>(), 18446744073709551615.0);
}

TEST(SimulatedElement, ListsMembersInOrder) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [{"id": "a"}, "text", 7, {"ref": "a"}, null, [1], true],
    "rows": [{"id": "b"}], "visibleChildren": []})"));
  const HLArray children = *desktop.read("w", "AXChildren").value.as<HLArray>();
  ASSERT_EQ(children.size(), 7U);
  EXPECT_EQ(*children[0].as<HLElementRef>(), desktop.element("a"));
  EXPECT_EQ(*children[1].as<std::string>(), "text");
  EXPECT_EQ(*children[2].as<std::int64_t>(), 7);
  EXPECT_EQ(*children[3].as<HLElementRef>(), desktop.element("a"));
  EXPECT_TRUE(children[4].isMissing());
  EXPECT_EQ(children[5].as<HLArray>()->size(), 1U);
  EXPECT_EQ(*children[6].as<bool>(), true);
  EXPECT_EQ(desktop.elements(desktop.element("w"), "AXRows").at(0), desktop.element("b"));
  EXPECT_TRUE(desktop.read("w", "AXVisibleChildren").value.as<HLArray>()->empty());
}

TEST(SimulatedElement, TakesFurtherAttributesInAnyShape) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [{"id": "a"}], "attributes": {
    "AXParent": {"ref": "a"}, "AXCloseButton": {"element": {"id": "close", "role": "AXButton"}},
    "AXActivationPoint": {"point": [3, 4.5]}, "AXGap": {"size": [5, 6]}, "AXInfo": {"point": 1, "more": [true]},
    "AXNested": [[{"ref": "a"}, {"element": {"id": "inner"}}], {"point": [1, 2]}], "AXNothing": null,
    "AXCount": 3}})"));
  EXPECT_EQ(*desktop.read("w", "AXParent").value.as<HLElementRef>(), desktop.element("a"));
  EXPECT_EQ(*desktop.read("w", "AXCloseButton").value.as<HLElementRef>(), desktop.element("close"));
  EXPECT_EQ(desktop.text("close", "AXRole"), "AXButton");
  EXPECT_EQ(*desktop.read("w", "AXActivationPoint").value.as<HLPoint>(), (HLPoint{3, 4.5}));
  EXPECT_EQ(*desktop.read("w", "AXGap").value.as<HLSize>(), (HLSize{5, 6}));
  EXPECT_EQ(HLDictionaryValue(*desktop.read("w", "AXInfo").value.as<HLDictionary>(), "more")->as<HLArray>()->size(),
            1U);
  const HLArray nested = *desktop.read("w", "AXNested").value.as<HLArray>();
  EXPECT_EQ(*nested[0].as<HLArray>()->at(0).as<HLElementRef>(), desktop.element("a"));
  EXPECT_EQ(*nested[0].as<HLArray>()->at(1).as<HLElementRef>(), desktop.element("inner"));
  EXPECT_NE(nested[1].as<HLDictionary>(), nullptr) << "points count only as a whole attribute";
  EXPECT_EQ(desktop.error("w", "AXNothing"), HLAXErrorSuccess);
  EXPECT_TRUE(desktop.read("w", "AXNothing").value.isMissing());
  EXPECT_EQ(*desktop.read("w", "AXCount").value.as<std::int64_t>(), 3);
}

TEST(SimulatedElement, PrefersAttributesToShortKeys) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "title": "short", "children": [{"id": "a"}], "frame": [1, 2, 3, 4],
    "attributes": {"AXTitle": 5, "AXChildren": "none", "AXSize": {"point": [1, 2]}}})"));
  EXPECT_EQ(*desktop.read("w", "AXTitle").value.as<std::int64_t>(), 5);
  EXPECT_EQ(desktop.text("w", "AXChildren"), "none");
  EXPECT_NE(desktop.read("w", "AXSize").value.as<HLPoint>(), nullptr);
  EXPECT_NE(desktop.read("w", "AXPosition").value.as<HLPoint>(), nullptr);
}

TEST(SimulatedElement, IsUnlistedWhenOnlyAnAttribute) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "children": [], "attributes": {"AXCloseButton": {"element": {"id": "close"}}}})"));
  EXPECT_THAT(desktop.elements(desktop.element("w"), "AXChildren"), IsEmpty());
}

TEST(SimulatedElement, KeepsTheOrderOfItsActions) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["Name:Close\nTarget:0x0", "AXPress", "AXPress"]})"));
  EXPECT_THAT(desktop.element("w")->copyActionNames().names,
              ElementsAre("Name:Close\nTarget:0x0", "AXPress", "AXPress"));
}

// Failing

TEST(SimulatedElement, ReturnsGivenErrors) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "role": "r", "title": "t", "actions": ["AXPress"],
    "errors": {"AXRole": -25204, "actions": -25200}})"));
  EXPECT_EQ(desktop.error("w", "AXRole"), HLAXErrorCannotComplete);
  EXPECT_TRUE(desktop.read("w", "AXRole").value.isMissing());
  EXPECT_EQ(desktop.text("w", "AXTitle"), "t");
  EXPECT_EQ(desktop.element("w")->copyActionNames().error, HLAXErrorFailure);
  EXPECT_THAT(desktop.element("w")->copyActionNames().names, IsEmpty());
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess) << "what cannot be read can still be pressed";
}

TEST(SimulatedElement, ChecksErrorsInOrder) {
  const std::string scene = Scene(R"({"id": "w", "role": "r", "actions": ["AXPress"],
    "onAction": {"AXPress": {"error": -1}}, "errors": {"AXRole": -25204, "AXTitle": -25204, "actions": -25204}})",
                                  R"(, "timeline": [{"at": 1, "remove": "w"}, {"at": 2, "trust": false}])");
  SimulatedDesktop desktop(scene);
  EXPECT_EQ(desktop.error("w", "AXRole"), -25204);
  EXPECT_EQ(desktop.error("w", "AXTitle"), -25212);
  EXPECT_EQ(desktop.element("w")->copyActionNames().error, -25204);
  EXPECT_EQ(desktop.press("w", "AXPress"), -1);
  EXPECT_EQ(desktop.press("w", "AXOther"), -25206);
  desktop.sleep(1);
  EXPECT_EQ(desktop.error("w", "AXRole"), -25202);
  EXPECT_EQ(desktop.error("w", "AXTitle"), -25202);
  EXPECT_EQ(desktop.element("w")->copyActionNames().error, -25202);
  EXPECT_EQ(desktop.press("w", "AXPress"), -25202);
  EXPECT_EQ(desktop.press("w", "AXOther"), -25202);
  desktop.sleep(1);
  EXPECT_EQ(desktop.error("w", "AXRole"), -25211);
  EXPECT_EQ(desktop.error("w", "AXTitle"), -25211);
  EXPECT_EQ(desktop.element("w")->copyActionNames().error, -25211);
  EXPECT_EQ(desktop.press("w", "AXPress"), -25211);
}

TEST(SimulatedElement, ReactsToUnlistedActions) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "onAction": {"AXPress": {"effects": [{"remove": "w"}]}}})"));
  EXPECT_EQ(desktop.press("w"), HLAXErrorActionUnsupported);
  desktop.sleep(1);
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
}

// Handles

TEST(SimulatedElement, KeepsOneHandle) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [{"id": "a"}], "rows": [{"ref": "a"}],
    "attributes": {"AXMain": {"ref": "a"}}})"));
  const HLElementRef w = desktop.element("w");
  const HLElementRef a = desktop.elements(w, "AXChildren").at(0);
  EXPECT_EQ(desktop.elements(w, "AXChildren").at(0), a);
  EXPECT_EQ(desktop.elements(w, "AXRows").at(0), a);
  EXPECT_EQ(*desktop.read("w", "AXMain").value.as<HLElementRef>(), a);
  EXPECT_EQ(desktop.element("a"), a);
  EXPECT_EQ(desktop.accessibility().createApplication(400), desktop.accessibility().createApplication(400));
}

TEST(SimulatedElement, MakesEqualFreshHandles) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "children": [{"id": "a", "freshHandles": true}, {"ref": "a"}, {"id": "b"}],
    "attributes": {"AXMain": {"ref": "a"}}})"));
  const std::vector<HLElementRef> children = desktop.elements(desktop.element("w"), "AXChildren");
  EXPECT_NE(children[0], children[1]);
  EXPECT_TRUE(children[0]->isEqual(*children[1]));
  EXPECT_EQ(children[0]->hash(), children[1]->hash());
  EXPECT_NE(desktop.elements(desktop.element("w"), "AXChildren").at(0), children[0]);
  EXPECT_NE(*desktop.read("w", "AXMain").value.as<HLElementRef>(), children[0]);
  EXPECT_TRUE(children[0]->isEqual(**desktop.read("w", "AXMain").value.as<HLElementRef>()));
  EXPECT_FALSE(children[0]->isEqual(*children[2]));
  EXPECT_EQ(desktop.elements(desktop.element("w"), "AXChildren").at(2), children[2]);
}

// Repetition

TEST(SimulatedElement, CanBeRepeated) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [{"title": "first"},
    {"repeat": 3, "id": "row {n}", "title": "{n} of {n}", "attributes": {"AX{n}": ["{n}"]}, "errors": {"AXBad{n}": -1},
     "actions": ["Press {n}"], "onAction": {"Press {n}": {"effects": [{"remove": "row {n}"}]}},
     "children": [{"id": "cell {n}"}]}, {"title": "{n}"}]})"));
  EXPECT_THAT(desktop.titles(desktop.element("w"), "AXChildren"),
              ElementsAre("first", "1 of 1", "2 of 2", "3 of 3", "{n}"));
  EXPECT_THAT(desktop.present(), ElementsAre("w", "row 1", "cell 1", "row 2", "cell 2", "row 3", "cell 3"));
  EXPECT_EQ(*desktop.read("row 2", "AX2").value.as<HLArray>()->at(0).as<std::string>(), "2");
  EXPECT_EQ(desktop.press("row 2", "Press 2"), HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_THAT(desktop.titles(desktop.element("w"), "AXChildren"), ElementsAre("first", "1 of 1", "3 of 3", "{n}"));
}

TEST(SimulatedElement, AcceptsZeroRepetitions) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [{"repeat": 0, "id": "{n}"}]})"));
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
}

// Going

TEST(SimulatedElement, RemovesItsDescendants) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [
      {"id": "gone", "children": [{"id": "child", "rows": [{"id": "deep"}]}, {"ref": "other"}], "rows": [{"id": "row"}],
       "visibleChildren": [{"id": "visible"}]}, {"id": "other"}, {"ref": "gone"}, {"ref": "deep"}],
      "rows": [{"ref": "child"}], "attributes": {"AXMain": {"ref": "gone"}, "AXAll": [[{"ref": "row"}, 1]]}})",
                                 R"(, "timeline": [{"at": 1, "remove": "gone"}])"));
  desktop.sleep(1);
  EXPECT_THAT(desktop.present(), ElementsAre("w", "other"));
  for (const char* id : {"gone", "child", "deep", "row", "visible"}) {
    EXPECT_EQ(desktop.error(id, "AXRole"), HLAXErrorInvalidElement) << id;
  }
  EXPECT_EQ(desktop.error("other", "AXRole"), HLAXErrorNoValue);
  EXPECT_THAT(desktop.elements(desktop.element("w"), "AXChildren"), ElementsAre(desktop.element("other")));
  EXPECT_TRUE(desktop.read("w", "AXRows").value.as<HLArray>()->empty());
  EXPECT_EQ(desktop.read("w", "AXAll").value.as<HLArray>()->at(0).as<HLArray>()->size(), 1U);
  EXPECT_EQ(*desktop.read("w", "AXMain").value.as<HLElementRef>(), desktop.element("gone"))
      << "an attribute still gives the invalid handle";
}

TEST(SimulatedElement, IsHiddenUntilAdded) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "children": [{"ref": "late"}], "attributes": {"AXMain": {"ref": "late"}}})",
            R"(, "timeline": [{"at": 1, "add": {"id": "late"}, "to": "w", "under": "rows"}])"));
  EXPECT_EQ(desktop.simulator().element("late"), nullptr);
  EXPECT_THAT(desktop.elements(desktop.element("w"), "AXChildren"), IsEmpty());
  EXPECT_EQ(desktop.error("w", "AXMain"), HLAXErrorNoValue);
  desktop.sleep(1);
  EXPECT_THAT(desktop.elements(desktop.element("w"), "AXChildren"), ElementsAre(desktop.element("late")));
  EXPECT_EQ(*desktop.read("w", "AXMain").value.as<HLElementRef>(), desktop.element("late"));
}

TEST(SimulatedElement, IsPresentInTreeOrder) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 1, "windows": [{"id": "w1", "visibleChildren": [{"id": "v"}],
    "rows": [{"id": "r"}], "children": [{"id": "c", "children": [{"id": "cc"}]}, {"ref": "w2"}],
    "attributes": {"AXCloseButton": {"element": {"id": "x"}}}}, {"title": "no id"}]},
    {"pid": 2, "terminated": true, "windows": [{"id": "dead"}]}, {"pid": 3, "windows": [{"id": "w2"}]}]})");
  EXPECT_THAT(desktop.present(), ElementsAre("w1", "c", "cc", "r", "v", "x", "w2"));
}

}  // namespace
