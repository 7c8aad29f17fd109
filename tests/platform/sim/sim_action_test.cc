// What performing an action does, and when.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/platform/sim/scene_desktop.h"

namespace {

using testing::ElementsAre;

TEST(SimulatedAction, SucceedsWithoutAReaction) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["AXPress"]})"));
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  EXPECT_EQ(desktop.simulator().elapsed(), 0);
  desktop.sleep(10);
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
}

TEST(SimulatedAction, AppliesEffectsAfterItsSeconds) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["AXPress"], "title": "before", "onAction": {"AXPress":
    {"error": -25204, "seconds": 0.5, "after": 0.25, "effects": [
      {"set": "w", "attribute": "AXTitle", "value": "after"}, {"set": "w", "attribute": "AXValue", "value": 1}]}}})"));
  EXPECT_EQ(desktop.press("w"), -25204);
  EXPECT_EQ(desktop.simulator().elapsed(), 0.5);
  desktop.sleep(0.249999);
  EXPECT_EQ(desktop.text("w", "AXTitle"), "before");
  desktop.sleep(0.000001);
  EXPECT_EQ(desktop.text("w", "AXTitle"), "after") << "effects happen although the action failed";
  EXPECT_EQ(desktop.error("w", "AXValue"), HLAXErrorSuccess);
}

TEST(SimulatedAction, DelaysEffectsUntilTheThreadWaits) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {"AXPress": {"effects": [{"remove": "w"}]}}})"));
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
  desktop.sleep(1e-6);
  EXPECT_TRUE(desktop.present().empty());
}

TEST(SimulatedAction, DecidesItsAnswerAtTheStart) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {"AXPress": {"seconds": 1,
    "effects": [{"set": "other", "attribute": "AXTitle", "value": "done"}]}}}, {"id": "other"})",
                                 R"(, "timeline": [{"at": 0.5, "remove": "w"}])"));
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  EXPECT_EQ(desktop.simulator().elapsed(), 1);
  EXPECT_EQ(desktop.text("other", "AXTitle"), "done");
}

TEST(SimulatedAction, FailsAtOnceWithoutEffects) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "actions": ["AXPress"], "onAction": {
    "AXPress": {"seconds": 1, "effects": [{"remove": "w"}]}}})",
                                 R"(, "trusted": false)"));
  EXPECT_EQ(desktop.press("w"), HLAXErrorAPIDisabled);
  EXPECT_EQ(desktop.simulator().elapsed(), 0);
  desktop.sleep(5);
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
}

// The short form

TEST(SimulatedAction, ClosesAfter50Milliseconds) {
  for (const char* action : {"Name:Close\nTarget:0x0", "CLOSE ALL", "Name:Clear All", "please dismiss"}) {
    SimulatedDesktop desktop(
        Scene(R"({"id": "w", "children": [{"id": "x", "actions": ["AXPress", "Name:Close\nTarget:0x0",
      "CLOSE ALL", "Name:Clear All", "please dismiss"], "closes": "alert"}, {"id": "alert"}]})"));
    EXPECT_EQ(desktop.press("x", action), HLAXErrorSuccess) << action;
    EXPECT_EQ(desktop.simulator().elapsed(), 0);
    desktop.sleep(0.049999);
    EXPECT_THAT(desktop.present(), ElementsAre("w", "x", "alert")) << action;
    desktop.sleep(0.000001);
    EXPECT_THAT(desktop.present(), ElementsAre("w", "x")) << action;
  }
}

TEST(SimulatedAction, ClosesByPressWithoutCloseAction) {
  SimulatedDesktop desktop(Scene(R"({"id": "plain", "actions": ["AXPress", "AXRaise"], "closes": "plain"},
    {"id": "named", "actions": ["AXPress", "Clear"], "closes": "named"}, {"id": "none", "closes": "none"})"));
  EXPECT_EQ(desktop.press("named"), HLAXErrorSuccess);
  EXPECT_EQ(desktop.press("plain", "AXRaise"), HLAXErrorSuccess);
  EXPECT_EQ(desktop.press("none"), HLAXErrorActionUnsupported);
  desktop.sleep(1);
  EXPECT_THAT(desktop.present(), ElementsAre("plain", "named", "none"));
  EXPECT_EQ(desktop.press("plain"), HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_THAT(desktop.present(), ElementsAre("named", "none"));
}

TEST(SimulatedAction, KeepsTheElementWithAReaction) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "actions": ["Close", "Clear"], "closes": "w", "onAction": {"Close": {}}})"));
  EXPECT_EQ(desktop.press("w", "Close"), HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
  EXPECT_EQ(desktop.press("w", "Clear"), HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_TRUE(desktop.present().empty());
}

// What is noted

TEST(SimulatedAction, IsNotedAsItBegan) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "actions": ["AXPress", "Slow"], "onAction": {"Slow": {"error": 7, "seconds": 0.5}}},
    {"title": "no id"})",
            R"(, "timeline": [{"at": 2, "trust": false}])"));
  const HLElementRef root = desktop.accessibility().createApplication(400);
  desktop.sleep(0.25);
  EXPECT_EQ(desktop.press("w", "Slow"), 7);
  EXPECT_EQ(desktop.press("w", "AXRaise"), HLAXErrorActionUnsupported);
  EXPECT_EQ(desktop.elements(root, "AXWindows").at(1)->performAction("AXPress"), HLAXErrorActionUnsupported);
  EXPECT_EQ(root->performAction("AXPress"), HLAXErrorActionUnsupported);
  desktop.sleep(1.5);
  EXPECT_EQ(desktop.press("w"), HLAXErrorAPIDisabled);
  std::vector<std::string> noted;
  for (const HLSimulatedAction& action : desktop.simulator().actions()) {
    noted.push_back(std::to_string(action.at) + " " + action.element.value_or("null") + " " + action.action + " " +
                    std::to_string(action.code));
  }
  EXPECT_THAT(noted, ElementsAre("0.250000 w Slow 7", "0.750000 w AXRaise -25206", "0.750000 null AXPress -25206",
                                 "0.750000 null AXPress -25206", "2.250000 w AXPress -25211"));
}

}  // namespace
