#include "core/scan/notification_center.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/run_loop.h"
#include "tests/support/descriptions.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using Lines = std::vector<std::string>;

TEST(FindingNotificationCenter, UsesTheFirstListed) {
  SimulatedDesktop desktop(R"({"applications": [
    {"pid": 300, "bundleIdentifier": "com.apple.mail", "name": "Mail"},
    {"pid": 401, "bundleIdentifier": "com.apple.notificationcenterui", "name": "first"},
    {"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui", "name": "second"}]})");
  const auto found = HLNotificationCenterApplication();
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->pid, 401);
  EXPECT_EQ(found->bundleIdentifier, "com.apple.notificationcenterui");
}

TEST(FindingNotificationCenter, ComparesTheExactIdentifier) {
  SimulatedDesktop desktop(R"({"applications": [
    {"pid": 1, "bundleIdentifier": "com.apple.NotificationCenterUI"},
    {"pid": 2, "bundleIdentifier": "com.apple.notificationcenterui.helper"},
    {"pid": 3, "bundleIdentifier": "x.com.apple.notificationcenterui"},
    {"pid": 4, "bundleIdentifier": ""},
    {"pid": 5, "name": "com.apple.notificationcenterui"}]})");
  EXPECT_FALSE(HLNotificationCenterApplication().has_value());
}

TEST(FindingNotificationCenter, ReturnsNulloptWithoutApplications) {
  SimulatedDesktop desktop("{}");
  EXPECT_FALSE(HLNotificationCenterApplication().has_value());
}

TEST(FindingNotificationCenter, CachesNothing) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui",
    "relaunch": {"after": 0.5, "application": {"pid": 500, "bundleIdentifier": "com.apple.notificationcenterui"}}}],
    "timeline": [{"at": 1, "quit": 400}]})");
  EXPECT_EQ(HLNotificationCenterApplication()->pid, 400);
  desktop.platform().runLoop->sleep(1);
  EXPECT_FALSE(HLNotificationCenterApplication().has_value());
  desktop.platform().runLoop->sleep(0.5);
  EXPECT_EQ(HLNotificationCenterApplication()->pid, 500);
}

TEST(NotificationWindows, KeepListElementsInOrder) {
  SimulatedDesktop desktop(NotificationCenterScene(R"("text", {"id": "b"}, 7, {"id": "a"}, [], {"ref": "b"})"));
  EXPECT_EQ(HLNotificationWindows(*desktop.application(NotificationCenterPid)),
            (std::vector<HLElementRef>{desktop.element("b"), desktop.element("a"), desktop.element("b")}));
}

TEST(NotificationWindows, AreEmptyOnAnError) {
  SimulatedDesktop desktop(
      R"({"applications": [{"pid": 1, "windows": null}, {"pid": 2, "windows": [{}], "terminated": true},
    {"pid": 3, "windows": [{}]}]})");
  EXPECT_TRUE(HLNotificationWindows(*desktop.application(1)).empty());
  EXPECT_TRUE(HLNotificationWindows(*desktop.application(2)).empty());
  EXPECT_EQ(HLNotificationWindows(*desktop.application(3)).size(), 1U);
}

TEST(ShownElements, AreLookedForInEveryWindow) {
  SimulatedDesktop desktop(NotificationCenterScene(
      R"({"role": "first"}, {"role": "AXWindow", "children": [{"role": "AXGroup", "children": [{"role": "last"}]}]})"));
  const auto shows = [&desktop](const std::string& role) {
    return HLShowsElement(*desktop.application(NotificationCenterPid),
                          [&role](const HLVisit& visit) { return visit.facts.role == role; });
  };
  EXPECT_TRUE(shows("first"));
  EXPECT_TRUE(shows("last"));
  EXPECT_FALSE(shows("other"));
}

TEST(CurrentTargets, FollowWindowsBreadthFirst) {
  SimulatedDesktop desktop(NotificationCenterScene(R"(
    {"title": "one", "children": [
      {"children": [{"title": "deep", "actions": ["Name:Close"]}]},
      {"title": "near", "actions": ["Name:Close"], "frame": [0, 0, 10, 10]}]},
    {"title": "two", "actions": ["Clear"], "frame": [0, 0, 500, 500], "children": [
      {"title": "below", "actions": ["Name:Close"]}]})"));
  EXPECT_EQ(Describe(HLCurrentTargets(*desktop.application(NotificationCenterPid))),
            (Lines{"Name:Close 128 (0,0,10,10) [near] explicit-action,small-frame",
                   "Name:Close 120 no frame [deep] explicit-action", "Clear 120 (0,0,500,500) [two] explicit-action",
                   "Name:Close 120 no frame [below] explicit-action"}));
  EXPECT_EQ(desktop.diagnostics(),
            (Lines{"scan root=window-0 visited=4 candidates=2", "scan root=window-1 visited=2 candidates=2"}));
}

TEST(CurrentTargets, ListDuplicateKeysOnce) {
  SimulatedDesktop desktop(NotificationCenterScene(R"(
    {"children": [{"id": "first", "title": "same", "actions": ["Name:Close"]},
                  {"title": "other", "actions": ["Name:Close"]}]},
    {"children": [{"id": "second", "title": "same", "actions": ["Name:Close"]}]})"));
  const auto targets = HLCurrentTargets(*desktop.application(NotificationCenterPid));
  EXPECT_EQ(Describe(targets), (Lines{"Name:Close 120 no frame [same] explicit-action",
                                      "Name:Close 120 no frame [other] explicit-action"}));
  ASSERT_FALSE(targets.empty());
  EXPECT_EQ(targets[0].element, desktop.element("first"));
  EXPECT_EQ(desktop.diagnostics(),
            (Lines{"scan root=window-0 visited=3 candidates=2", "scan root=window-1 visited=2 candidates=1"}));
}

TEST(CurrentTargets, IndexElementsOnly) {
  SimulatedDesktop desktop(NotificationCenterScene(R"("text", {}, 3, {})"));
  EXPECT_TRUE(HLCurrentTargets(*desktop.application(NotificationCenterPid)).empty());
  EXPECT_EQ(desktop.diagnostics(),
            (Lines{"scan root=window-0 visited=1 candidates=0", "scan root=window-1 visited=1 candidates=0"}));
}

TEST(CurrentTargets, LogNothingWithoutWindows) {
  SimulatedDesktop desktop(NotificationCenterScene(""));
  EXPECT_TRUE(HLCurrentTargets(*desktop.application(NotificationCenterPid)).empty());
  EXPECT_EQ(desktop.diagnostics(), Lines{});
}

TEST(CurrentTargets, AreEmptyWithoutTrust) {
  SimulatedDesktop desktop(
      NotificationCenterScene(R"({"title": "close", "actions": ["Name:Close"]})", R"(, "trusted": false)"));
  EXPECT_TRUE(HLCurrentTargets(*desktop.application(NotificationCenterPid)).empty());
  EXPECT_EQ(desktop.diagnostics(), Lines{});
}

TEST(CurrentTargets, LimitEachWindowSeparately) {
  SimulatedDesktop desktop(NotificationCenterScene(R"(
    {"children": [{"repeat": 1500}]}, {"children": [{"repeat": 1500}, {"title": "late", "actions": ["Name:Close"]}]},
    {"title": "third", "actions": ["Name:Close"]})"));
  EXPECT_EQ(Describe(HLCurrentTargets(*desktop.application(NotificationCenterPid))),
            Lines{"Name:Close 120 no frame [third] explicit-action"});
  EXPECT_EQ(desktop.diagnostics(),
            (Lines{"scan root=window-0 visited=1400 candidates=0", "scan root=window-1 visited=1400 candidates=0",
                   "scan root=window-2 visited=1 candidates=1"}));
}

}  // namespace
