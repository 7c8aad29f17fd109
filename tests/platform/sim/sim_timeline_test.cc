// What happens by itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <vector>

#include "tests/platform/sim/scene_desktop.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string timeline(const std::string& events) { return R"(, "timeline": [)" + events + "]"; }

TEST(Timeline, AddsAtEitherEnd) {
  SimulatedDesktop desktop(Scene(
      R"({"id": "w", "children": [{"title": "a"}]})",
      timeline(
          R"({"at": 1, "add": {"title": "b"}, "to": "w"}, {"at": 1, "add": {"title": "c"}, "to": "w", "first": true},
        {"at": 1, "add": {"title": "d"}, "to": "w", "under": "rows"},
        {"at": 1, "add": {"title": "e", "children": [{"id": "inside"}]}, "to": "w", "under": "visibleChildren"},
        {"at": 1, "add": {"title": "f", "id": "second"}, "to": 400, "under": "windows"},
        {"at": 1, "add": {"title": "g"}, "to": 400, "under": "windows", "first": true},
        {"at": 1, "add": "text", "to": "w"}, {"at": 1, "add": {"ref": "second"}, "to": "w"})")));
  EXPECT_EQ(desktop.error("w", "AXRows"), HLAXErrorNoValue);
  desktop.sleep(1);
  const HLElementRef root = desktop.accessibility().createApplication(400);
  EXPECT_THAT(desktop.titles(desktop.element("w"), "AXChildren"), ElementsAre("c", "a", "b", "f"));
  EXPECT_EQ(desktop.read("w", "AXChildren").value.as<HLArray>()->size(), 5U);
  EXPECT_THAT(desktop.titles(desktop.element("w"), "AXRows"), ElementsAre("d"));
  EXPECT_THAT(desktop.titles(desktop.element("w"), "AXVisibleChildren"), ElementsAre("e"));
  EXPECT_THAT(desktop.titles(root, "AXWindows"), ElementsAre("g", "", "f"));
  EXPECT_THAT(desktop.present(), ElementsAre("w", "inside", "second"));
}

TEST(Timeline, AddsEveryRepetitionOfAMember) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "children": [{"title": "a"}]})",
            timeline(R"({"at": 1, "add": {"repeat": 2, "title": "new {n}"}, "to": "w", "first": true})")));
  desktop.sleep(1);
  EXPECT_THAT(desktop.titles(desktop.element("w"), "AXChildren"), ElementsAre("new 1", "new 2", "a"));
}

TEST(Timeline, UsesTheNewestOfAnId) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "actions": ["AXPress"], "children": [], "onAction": {"AXPress": {"effects": [
    {"add": {"id": "n", "title": "x"}, "to": "w"}]}}})",
            timeline(R"({"at": 3, "remove": "n"})")));
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  desktop.sleep(1);
  const HLElementRef first = desktop.element("n");
  EXPECT_EQ(desktop.press("w"), HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_FALSE(first->isEqual(*desktop.element("n")));
  EXPECT_EQ(first->copyAttributeValue("AXTitle").error, HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_EQ(first->copyAttributeValue("AXTitle").error, HLAXErrorSuccess);
  EXPECT_EQ(desktop.error("n", "AXTitle"), HLAXErrorInvalidElement);
}

TEST(Timeline, ChangesAttributesAndTakesThemAway) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "title": "old", "description": "d", "actions": ["AXPress"], "children": [{"id": "a"}]})",
            timeline(R"({"at": 1, "set": "w", "attribute": "AXTitle", "value": "new"},
        {"at": 1, "set": "w", "attribute": "AXDescription", "value": null},
        {"at": 1, "set": "w", "attribute": "AXValue", "value": {"ref": "a"}},
        {"at": 1, "set": "w", "attribute": "AXPosition", "value": {"point": [1, 2]}},
        {"at": 1, "set": "w", "attribute": "AXMain", "value": {"element": {"id": "made"}}},
        {"at": 1, "set": "w", "attribute": "actions", "value": ["AXRaise", "Close"]},
        {"at": 2, "set": "w", "attribute": "actions", "value": null},
        {"at": 2, "set": "w", "attribute": "AXChildren", "value": null})")));
  desktop.sleep(1);
  EXPECT_EQ(desktop.text("w", "AXTitle"), "new");
  EXPECT_EQ(desktop.error("w", "AXDescription"), HLAXErrorNoValue);
  EXPECT_EQ(*desktop.read("w", "AXValue").value.as<HLElementRef>(), desktop.element("a"));
  EXPECT_EQ(*desktop.read("w", "AXPosition").value.as<HLPoint>(), (HLPoint{1, 2}));
  EXPECT_EQ(*desktop.read("w", "AXMain").value.as<HLElementRef>(), desktop.element("made"));
  EXPECT_THAT(desktop.element("w")->copyActionNames().names, ElementsAre("AXRaise", "Close"));
  EXPECT_EQ(desktop.press("w", "AXPress"), HLAXErrorActionUnsupported);
  desktop.sleep(1);
  EXPECT_THAT(desktop.element("w")->copyActionNames().names, IsEmpty());
  EXPECT_EQ(desktop.error("w", "AXChildren"), HLAXErrorNoValue);
}

TEST(Timeline, DoesNothingToWhatHasGone) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w", "children": [{"id": "a"}]})",
            timeline(R"({"at": 1, "remove": "a"}, {"at": 2, "remove": "a"}, {"at": 2, "add": {"id": "b"}, "to": "a"},
        {"at": 2, "set": "a", "attribute": "AXTitle", "value": "x"}, {"at": 2, "quit": 77},
        {"at": 2, "set": "a", "attribute": "actions", "value": []}, {"at": 3, "quit": 400},
        {"at": 4, "quit": 400}, {"at": 4, "add": {"id": "c"}, "to": 400, "under": "windows"})")));
  desktop.sleep(2);
  EXPECT_THAT(desktop.present(), ElementsAre("w"));
  EXPECT_EQ(desktop.simulator().element("b"), nullptr);
  desktop.sleep(2);
  EXPECT_THAT(desktop.present(), IsEmpty());
  EXPECT_EQ(desktop.simulator().element("c"), nullptr);
}

TEST(Timeline, AppliesTimeZeroAtOnce) {
  SimulatedDesktop desktop(Scene(R"({"id": "w"})", timeline(R"({"at": 0, "remove": "w"}, {"at": 0, "trust": false},
    {"at": 0.0000004, "launch": {"pid": 7}})")));
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(false));
  EXPECT_THAT(desktop.present(), IsEmpty());
  EXPECT_TRUE(desktop.applications().find(7).has_value()) << "moments are whole microseconds, nearest";
}

TEST(Timeline, OrdersByTimeThenPosition) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w"})", timeline(R"({"at": 2, "set": "w", "attribute": "AXTitle", "value": "written first"},
                          {"at": 1, "set": "w", "attribute": "AXTitle", "value": "due first"},
                          {"at": 2, "set": "w", "attribute": "AXTitle", "value": "written last"})")));
  desktop.sleep(1);
  EXPECT_EQ(desktop.text("w", "AXTitle"), "due first");
  desktop.sleep(1);
  EXPECT_EQ(desktop.text("w", "AXTitle"), "written last");
}

TEST(Timeline, PrecedesEffects) {
  SimulatedDesktop desktop(Scene(
      R"({"id": "w", "actions": ["A", "B"], "onAction": {
        "A": {"after": 1, "effects": [{"set": "w", "attribute": "AXA", "value": "effect"}]},
        "B": {"seconds": 0.5, "after": 0.5, "effects": [{"set": "w", "attribute": "AXB", "value": "second"},
                                                        {"set": "w", "attribute": "AXA", "value": "second"}]}}})",
      timeline(R"({"at": 1, "set": "w", "attribute": "AXA", "value": "timeline"},
        {"at": 1, "set": "w", "attribute": "AXB", "value": "timeline"})")));
  EXPECT_EQ(desktop.press("w", "A"), HLAXErrorSuccess);
  EXPECT_EQ(desktop.press("w", "B"), HLAXErrorSuccess);
  desktop.sleep(0.5);
  EXPECT_EQ(desktop.text("w", "AXA"), "second") << "effects happen in the order in which they were caused";
  EXPECT_EQ(desktop.text("w", "AXB"), "second");
}

// Applications

TEST(Timeline, AppendsALaunchedApplication) {
  SimulatedDesktop desktop(
      Scene(R"({"id": "w"})", timeline(R"({"at": 1, "launch": {"pid": 7, "bundleIdentifier": "b", "name": "n",
    "windows": [{"id": "new", "role": "AXWindow"}]}})")));
  EXPECT_FALSE(desktop.applications().find(7).has_value());
  EXPECT_EQ(desktop.accessibility().createApplication(7)->copyAttributeValue("AXWindows").error,
            HLAXErrorInvalidElement);
  desktop.sleep(1);
  const std::vector<HLRunningApplication> list = desktop.applications().list();
  ASSERT_EQ(list.size(), 2U);
  EXPECT_EQ(list[1].pid, 7);
  EXPECT_EQ(list[1].bundleIdentifier, "b");
  EXPECT_EQ(list[1].name, "n");
  EXPECT_FALSE(list[1].terminated);
  EXPECT_EQ(list[0].bundleIdentifier, std::nullopt);
  EXPECT_EQ(list[0].name, std::nullopt);
  EXPECT_EQ(desktop.text("new", "AXRole"), "AXWindow");
  EXPECT_EQ(desktop.elements(desktop.accessibility().createApplication(7), "AXWindows").at(0), desktop.element("new"));
}

TEST(Timeline, InvalidatesElementsOnQuit) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "children": [{"id": "a"}]})", timeline(R"({"at": 1, "quit": 400})")));
  const HLElementRef root = desktop.accessibility().createApplication(400);
  desktop.sleep(1);
  EXPECT_THAT(desktop.applications().list(), IsEmpty());
  EXPECT_EQ(root->copyAttributeValue("AXWindows").error, HLAXErrorInvalidElement);
  EXPECT_EQ(desktop.error("w", "AXChildren"), HLAXErrorInvalidElement);
  EXPECT_EQ(desktop.error("a", "AXRole"), HLAXErrorInvalidElement);
}

TEST(Application, LingersUntilItsRelaunch) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4, "name": "old", "lingers": 2, "relaunch": {"after": 1,
    "application": {"pid": 5, "name": "new", "relaunch": {"application": {"pid": 6}}}}}, {"pid": 9}]})");
  const auto pids = [&desktop] {
    std::vector<std::string> found;
    for (const HLRunningApplication& running : desktop.applications().list()) {
      found.push_back(std::to_string(running.pid) + (running.terminated ? " dead" : ""));
    }
    return found;
  };
  EXPECT_EQ(desktop.applications().sendSignal(4, SIGTERM), HLSignalOutcome::sent);
  EXPECT_THAT(pids(), ElementsAre("4 dead", "9")) << "a signal kills at once";
  desktop.sleep(0.999999);
  EXPECT_THAT(pids(), ElementsAre("4 dead", "9"));
  desktop.sleep(0.000001);
  EXPECT_THAT(pids(), ElementsAre("4 dead", "9", "5"));
  desktop.sleep(1);
  EXPECT_THAT(pids(), ElementsAre("9", "5"));
  EXPECT_EQ(desktop.applications().sendSignal(5, SIGTERM), HLSignalOutcome::sent);
  EXPECT_THAT(pids(), ElementsAre("9"));
  desktop.sleep(1e-6);
  EXPECT_THAT(pids(), ElementsAre("9", "6"));
}

TEST(Application, IsFoundAfterReusingItsPid) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4, "name": "old", "lingers": 5, "windows": [{"title": "old"}],
    "relaunch": {"after": 1, "application": {"pid": 4, "name": "new", "windows": [{"title": "new"}]}}}]})");
  EXPECT_EQ(desktop.applications().sendSignal(4, SIGTERM), HLSignalOutcome::sent);
  EXPECT_TRUE(desktop.applications().find(4)->terminated);
  desktop.sleep(1);
  EXPECT_EQ(desktop.applications().list().size(), 2U);
  EXPECT_EQ(desktop.applications().find(4)->name, "new");
  EXPECT_THAT(desktop.titles(desktop.accessibility().createApplication(4), "AXWindows"), ElementsAre("new"));
  EXPECT_EQ(desktop.applications().sendSignal(4, SIGTERM), HLSignalOutcome::sent);
  ASSERT_EQ(desktop.applications().list().size(), 1U);
  EXPECT_EQ(desktop.applications().find(4)->name, "old");
}

TEST(Application, MayIgnoreOnlyTermination) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4, "ignoresTerminate": true}, {"pid": 5}]})");
  EXPECT_EQ(desktop.applications().sendSignal(4, SIGTERM), HLSignalOutcome::sent);
  EXPECT_EQ(desktop.applications().sendSignal(5, 0), HLSignalOutcome::sent);
  EXPECT_EQ(desktop.applications().list().size(), 2U);
  EXPECT_EQ(desktop.applications().sendSignal(4, SIGKILL), HLSignalOutcome::sent);
  EXPECT_EQ(desktop.applications().sendSignal(5, SIGKILL), HLSignalOutcome::sent);
  EXPECT_THAT(desktop.applications().list(), IsEmpty());
  EXPECT_EQ(desktop.applications().sendSignal(77, SIGTERM), HLSignalOutcome::sent);
  EXPECT_EQ(desktop.applications().sendSignal(77, SIGKILL), HLSignalOutcome::sent);
}

TEST(Application, DiesOnlyOnce) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4, "terminated": true, "windows": [{"id": "w"}],
    "relaunch": {"application": {"pid": 5}}}]})");
  EXPECT_TRUE(desktop.applications().find(4)->terminated);
  EXPECT_EQ(desktop.error("w", "AXRole"), HLAXErrorInvalidElement);
  EXPECT_EQ(desktop.accessibility().createApplication(4)->copyAttributeValue("AXWindows").error,
            HLAXErrorInvalidElement);
  EXPECT_EQ(desktop.applications().sendSignal(4, SIGKILL), HLSignalOutcome::sent);
  desktop.sleep(10);
  EXPECT_FALSE(desktop.applications().find(5).has_value());
}

TEST(Application, MayFailToListWindows) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 4}, {"pid": 5, "windows": []}, {"pid": 6, "windows": null}]})");
  const auto windows = [&desktop](std::int32_t pid) {
    return desktop.accessibility().createApplication(pid)->copyAttributeValue("AXWindows");
  };
  EXPECT_TRUE(windows(4).value.as<HLArray>()->empty());
  EXPECT_TRUE(windows(5).value.as<HLArray>()->empty());
  EXPECT_EQ(windows(6).error, HLAXErrorNoValue);
}

TEST(Application, MayLackRootAndObserver) {
  SimulatedDesktop desktop(
      R"({"applications": [{"pid": 4, "elementFails": true}, {"pid": 5, "observerFails": true}]})");
  const HLObserverCallback nothing = [](const HLElementRef&, std::string_view) {};
  EXPECT_EQ(desktop.accessibility().createApplication(4), nullptr);
  EXPECT_NE(desktop.accessibility().createApplication(5), nullptr);
  EXPECT_NE(desktop.accessibility().createObserver(4, nothing), nullptr);
  EXPECT_EQ(desktop.accessibility().createObserver(5, nothing), nullptr);
}

// Trust

TEST(Trust, IsAskedForAfreshEachTime) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "role": "r"})", R"(, "trusted": false,
    "timeline": [{"at": 1, "trust": true}, {"at": 2, "trust": false}])"));
  const HLElementRef root = desktop.accessibility().createApplication(400);
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(false));
  EXPECT_EQ(root->copyAttributeValue("AXWindows").error, HLAXErrorAPIDisabled);
  desktop.sleep(1);
  EXPECT_TRUE(desktop.accessibility().isProcessTrusted(false));
  EXPECT_EQ(root->copyAttributeValue("AXWindows").error, HLAXErrorSuccess);
  desktop.sleep(1);
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(false));
}

TEST(Trust, FollowsAPromptWhenIdle) {
  SimulatedDesktop desktop(R"({"trusted": false, "services": {"grantOnPrompt": true}})");
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(false));
  desktop.runLoop().runFor(1);
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(true)) << "the call does not wait for the answer";
  desktop.sleep(1);
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(false)) << "a sleep runs no run loop";
  desktop.runLoop().runFor(0.1);
  EXPECT_TRUE(desktop.accessibility().isProcessTrusted(false));
}

TEST(Trust, IgnoresAPromptByDefault) {
  SimulatedDesktop desktop(R"({"trusted": false})");
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(true));
  desktop.runLoop().runFor(1);
  EXPECT_FALSE(desktop.accessibility().isProcessTrusted(false));
}

}  // namespace
