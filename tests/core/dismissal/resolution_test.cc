#include "core/dismissal/resolution.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/descriptions.h"
#include "tests/support/fake_element.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

HLDismissTarget pressOf(HLElementRef element, HLRect frame, std::string action = "AXPress") {
  return {std::move(element), std::move(action), frame, 70, "as found", "as scored"};
}

constexpr HLRect kGroupFrame = {0, 0, 360, 80};

// A large group with these further keys, and what the searches make of it.
class Group {
 public:
  explicit Group(std::string_view keys)
      : desktop_(NotificationCenterScene(R"({"id": "group", "frame": [0, 0, 360, 80])" + std::string(keys) + "}")) {}

  std::string resolved() { return Describe(HLResolvedTarget(pressOf(desktop_.element("group"), kGroupFrame))); }
  std::string attributeTarget() { return Describe(HLCloseControlAttributeTarget(*desktop_.element("group"))); }
  std::string focused() { return Describe(HLFocusedDismissControlInSubtree(desktop_.element("group"))); }
  HLElementRef element(std::string_view id) { return desktop_.element(id); }

 private:
  SimulatedDesktop desktop_;
};

std::string focusedIn(std::string_view keys) { return Group(keys).focused(); }

// The best control below a group that has neither words nor a frame: no bonus for a place.
std::string focusedAlone(std::string_view member) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"id": "group", "children": [)" + std::string(member) + "]}"));
  return Describe(HLFocusedDismissControlInSubtree(desktop.element("group")));
}

TEST(Resolution, KeepsTargetsWithADismissAction) {
  Group group(R"(, "attributes": {"AXCloseButton": {"element": {"title": "x", "actions": ["AXPress"]}}})");
  for (const char* action : {"Name:Close", "CLOSE", "dismiss", "AXDismiss", "Clear All", "unclear"}) {
    const HLDismissTarget target = pressOf(group.element("group"), kGroupFrame, action);
    const HLDismissTarget same = HLResolvedTarget(target);
    EXPECT_EQ(Describe(same), Describe(target));
    EXPECT_EQ(same.element, target.element);
  }
  for (const char* action : {"AXPress", "xmark", "AXCancel", ""}) {
    EXPECT_EQ(HLResolvedTarget(pressOf(group.element("group"), kGroupFrame, action)).reason,
              "attribute-control:AXCloseButton")
        << action;
  }
}

TEST(Resolution, SearchesOnlyLargeTargets) {
  Group group(R"(, "attributes": {"AXCloseButton": {"element": {"title": "x", "actions": ["AXPress"]}}})");
  const auto isLookedInto = [&group](HLRect frame) {
    return HLResolvedTarget(pressOf(group.element("group"), frame)).reason != "as scored";
  };
  EXPECT_FALSE(isLookedInto({0, 0, 100, 60}));
  EXPECT_FALSE(isLookedInto({0, 0, 120, 80}));
  EXPECT_TRUE(isLookedInto({0, 0, 350, 80}));
  EXPECT_TRUE(isLookedInto({0, 0, 120, 81}));
  EXPECT_TRUE(isLookedInto({0, 0, 120.001, 80}));
  EXPECT_TRUE(isLookedInto({0, 0, 120, 80.001}));
  EXPECT_TRUE(isLookedInto({0, 0, 121, 1}));
  EXPECT_TRUE(isLookedInto({0, 0, 1, 81}));
  EXPECT_FALSE(isLookedInto({}));
}

TEST(Resolution, PrefersTheAttributeControl) {
  EXPECT_EQ(Group(R"(, "attributes": {"AXCancelButton": {"element": {"title": "x", "actions": ["AXPress"]}}},
                  "children": [{"role": "AXButton", "title": "close notification", "frame": [340, 0, 16, 16],
                                "actions": ["Name:Close"]}])")
                .resolved(),
            "AXPress 260 no frame [x] attribute-control:AXCancelButton");
}

TEST(Resolution, FallsBackToTheBestDescendant) {
  EXPECT_EQ(Group(R"(, "children": [{"role": "AXButton", "title": "close", "frame": [330, 8, 20, 20],
                                     "actions": ["AXPress"]}])")
                .resolved(),
            "AXPress 230 (330,8,20,20) [axbutton close] "
            "focused-press-fallback,close-words,button-role,small-frame,top-rightish,near-top");
}

TEST(Resolution, ElseTheTargetItself) {
  EXPECT_EQ(Group(R"(, "children": [{"title": "hello"}])").resolved(), "AXPress 70 (0,0,360,80) [as found] as scored");
}

TEST(Resolution, KeepsATargetWithoutAnElement) {
  EXPECT_EQ(Describe(HLResolvedTarget(pressOf(nullptr, kGroupFrame))), "AXPress 70 (0,0,360,80) [as found] as scored");
}

TEST(Resolution, KeepsAVanishedElement) {
  EXPECT_EQ(Describe(HLResolvedTarget(pressOf(std::make_shared<FakeElement>(), kGroupFrame))),
            "AXPress 70 (0,0,360,80) [as found] as scored");
}

TEST(ClearAction, ContainsClearInAnyCase) {
  for (const char* action : {"clear", "Name:Clear All", "CLEAR", "unclear"}) {
    EXPECT_TRUE(HLTargetUsesClearAction(pressOf(nullptr, {}, action))) << action;
  }
  for (const char* action : {"", "Name:Close", "AXDismiss", "AXPress", "cle ar", "Clean up"}) {
    EXPECT_FALSE(HLTargetUsesClearAction(pressOf(nullptr, {}, action))) << action;
  }
  HLDismissTarget snapshot = pressOf(nullptr, {}, "Name:Close");
  snapshot.snapshot = snapshot.reason = "clear";
  EXPECT_FALSE(HLTargetUsesClearAction(snapshot));
}

TEST(AttributeControl, PrefersTheCloseButton) {
  Group group(R"(, "attributes": {
      "AXDefaultButton": {"element": {"title": "default", "actions": ["Name:Close"]}},
      "AXCancelButton": {"element": {"title": "cancel", "actions": ["Name:Close"]}},
      "AXCloseButton": {"element": {"id": "x", "title": "Close It", "frame": [1, 2, 3, 4], "actions": ["AXPress"]}}})");
  EXPECT_EQ(group.attributeTarget(), "AXPress 260 (1,2,3,4) [close it] attribute-control:AXCloseButton");
  EXPECT_EQ(HLCloseControlAttributeTarget(*group.element("group"))->element, group.element("x"));
}

TEST(AttributeControl, IgnoresOtherAttributes) {
  EXPECT_EQ(Group(R"(, "attributes": {
      "AXDefaultButton": {"element": {"title": "default", "actions": ["Name:Close"]}},
      "AXMinimizeButton": {"element": {"actions": ["AXPress"]}}})")
                .attributeTarget(),
            "nothing");
}

TEST(AttributeControl, PrefersADismissAction) {
  EXPECT_EQ(Group(R"(, "attributes": {"AXCloseButton": {"element": {"title": "x",
      "actions": ["AXPress", "Name:Dismiss", "Name:Close"]}}})")
                .attributeTarget(),
            "Name:Dismiss 260 no frame [x] attribute-control:AXCloseButton");
}

TEST(AttributeControl, UsesItsAttributeNameWithoutText) {
  EXPECT_EQ(Group(R"(, "attributes": {"AXCloseButton": {"element": {"actions": ["AXPress"]}}})").attributeTarget(),
            "AXPress 260 no frame [axclosebutton] attribute-control:AXCloseButton");
  EXPECT_EQ(Group(R"(, "attributes": {"AXCancelButton": {"element": {"actions": ["AXPress"]}}})").attributeTarget(),
            "AXPress 260 no frame [axcancelbutton] attribute-control:AXCancelButton");
}

TEST(AttributeControl, SkipsUnpressableButtons) {
  for (const char* skipped :
       {R"({"element": {"title": "x"}})", R"({"element": {"title": "x", "actions": ["AXShowMenu"]}})",
        R"({"element": {"actions": ["axpress"]}})", R"("AXPress")", "7", "null",
        R"([{"element": {"actions": ["AXPress"]}}])",
        R"({"element": {"actions": ["AXPress"], "errors": {"actions": -25204}}})"}) {
    EXPECT_EQ(Group(R"(, "attributes": {"AXCloseButton": )" + std::string(skipped) +
                    R"(, "AXCancelButton": {"element": {"title": "cancel", "actions": ["AXPress"]}}})")
                  .attributeTarget(),
              "AXPress 260 no frame [cancel] attribute-control:AXCancelButton")
        << skipped;
    EXPECT_EQ(Group(R"(, "attributes": {"AXCancelButton": )" + std::string(skipped) + "}").attributeTarget(), "nothing")
        << skipped;
  }
}

TEST(AttributeControl, KeepsItsWholeSnapshot) {
  const std::string title(300, 'a');
  EXPECT_EQ(
      Group(R"(, "attributes": {"AXCloseButton": {"element": {"title": ")" + title + R"(", "actions": ["AXPress"]}}})")
          .attributeTarget(),
      "AXPress 260 no frame [" + title + "] attribute-control:AXCloseButton");
}

TEST(FocusedControl, ScoresEachTest) {
  struct Case {
    const char* member;
    const char* expected;
  };
  const Case cases[] = {
      {R"({"title": "hello", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 140 (0,0,20,20) [hello] focused-press-fallback,small-frame"},
      {R"({"title": "hello", "frame": [0, 0, 20, 20], "actions": ["AXPress", "Name:Close"]})",
       "Name:Close 200 (0,0,20,20) [hello] focused-explicit-action,small-frame"},
      {R"({"title": "close", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 170 (0,0,20,20) [close] focused-press-fallback,close-words,small-frame"},
      {R"({"role": "AXButton", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 160 (0,0,20,20) [axbutton] focused-press-fallback,button-role,small-frame"},
      {R"({"role": "axbutton", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 140 (0,0,20,20) [axbutton] focused-press-fallback,small-frame"},
      {R"({"role": "AXGroup", "roleDescription": "AXButton", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 140 (0,0,20,20) [axgroup axbutton] focused-press-fallback,small-frame"},
      {R"({"title": "stacked", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 155 (0,0,20,20) [stacked] focused-press-fallback,small-frame,notification-context"},
      {R"({"title": "dismiss", "frame": [0, 0, 100, 30], "actions": ["Name:Close"]})",
       "Name:Close 210 (0,0,100,30) [dismiss] focused-explicit-action,close-words"},
      {R"({"title": "dismiss", "actions": ["Name:Close"]})",
       "Name:Close 210 no frame [dismiss] focused-explicit-action,close-words"},
      {R"({"role": "AXButton", "title": "clear notification", "frame": [0, 0, 20, 20], "actions": ["Name:Close"]})",
       "Name:Close 265 (0,0,20,20) [axbutton clear notification] "
       "focused-explicit-action,close-words,button-role,small-frame,notification-context"},
      {R"({"title": "hello", "frame": [0, 0, 100, 30], "actions": ["Name:Close"]})", "nothing"},
      {R"({"title": "hello", "actions": ["Name:Close"]})", "nothing"},
      {R"({"title": "close", "frame": [0, 0, 100, 30], "actions": ["AXPress"]})", "nothing"},
      {R"({"title": "close", "actions": ["AXPress"]})", "nothing"},
      {R"({"title": "close", "frame": [0, 0, 20, 20]})", "nothing"},
      {R"({"title": "close", "frame": [0, 0, 20, 20], "actions": ["AXShowMenu", "axpress"]})", "nothing"},
      {R"({"title": "reply options later", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})",
       "AXPress 140 (0,0,20,20) [reply options later] focused-press-fallback,small-frame"},
  };
  for (const Case& each : cases) EXPECT_EQ(focusedAlone(each.member), each.expected) << each.member;
}

TEST(FocusedControl, CountsEveryCloseWord) {
  for (const std::string word : {"close", "dismiss", "clear", "xmark"}) {
    EXPECT_EQ(focusedAlone(R"({"title": "a)" + word + R"(b", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})"),
              "AXPress 170 (0,0,20,20) [a" + word + "b] focused-press-fallback,close-words,small-frame");
  }
}

TEST(FocusedControl, IgnoresCloseWordsOfAncestors) {
  EXPECT_EQ(focusedAlone(R"({"title": "close", "children": [
                {"title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]}]})"),
            "AXPress 140 (0,0,20,20) [x] focused-press-fallback,small-frame");
}

TEST(FocusedControl, TreatsEightyPointsAsSmall) {
  const auto found = [](const std::string& size) {
    return focusedAlone(R"({"title": "x", "frame": [0, 0, )" + size + R"(], "actions": ["AXPress"]})");
  };
  EXPECT_EQ(found("80, 80"), "AXPress 140 (0,0,80,80) [x] focused-press-fallback,small-frame");
  EXPECT_EQ(found("80.001, 80"), "nothing");
  EXPECT_EQ(found("80, 80.001"), "nothing");
}

TEST(FocusedControl, AcceptsNotificationWordsOfAncestors) {
  EXPECT_EQ(focusedIn(R"(, "title": "From", "children": [{"title": "iPhone", "children": [
                {"title": "x", "frame": [0, 70, 20, 10], "actions": ["AXPress"]}]}])"),
            "AXPress 155 (0,70,20,10) [x] focused-press-fallback,small-frame,notification-context");
}

TEST(FocusedControl, ScoresARightEdgeWithin40) {
  const auto found = [](const std::string& x) {
    return focusedIn(R"(, "children": [{"title": "x", "frame": [)" + x + R"(, 70, 20, 10], "actions": ["AXPress"]}])");
  };
  EXPECT_EQ(found("300"), "AXPress 170 (300,70,20,10) [x] focused-press-fallback,small-frame,top-rightish");
  EXPECT_EQ(found("299.999"), "AXPress 140 (299.999,70,20,10) [x] focused-press-fallback,small-frame");
  EXPECT_EQ(found("380"), "AXPress 170 (380,70,20,10) [x] focused-press-fallback,small-frame,top-rightish");
  EXPECT_EQ(found("380.001"), "AXPress 140 (380.001,70,20,10) [x] focused-press-fallback,small-frame");
}

TEST(FocusedControl, ScoresATopEdgeWithin36) {
  const auto found = [](const std::string& y) {
    return focusedIn(R"(, "children": [{"title": "x", "frame": [0, )" + y + R"(, 20, 10], "actions": ["AXPress"]}])");
  };
  EXPECT_EQ(found("36"), "AXPress 150 (0,36,20,10) [x] focused-press-fallback,small-frame,near-top");
  EXPECT_EQ(found("36.001"), "AXPress 140 (0,36.001,20,10) [x] focused-press-fallback,small-frame");
  EXPECT_EQ(found("-36"), "AXPress 150 (0,-36,20,10) [x] focused-press-fallback,small-frame,near-top");
  EXPECT_EQ(found("-36.001"), "AXPress 140 (0,-36.001,20,10) [x] focused-press-fallback,small-frame");
}

TEST(FocusedControl, ScoresThePlaceInItsGroup) {
  SimulatedDesktop desktop(NotificationCenterScene(R"({"id": "group", "frame": [-1440, 500, 360, 80], "children": [
      {"title": "x", "frame": [-1110, 508, 20, 20], "actions": ["AXPress"]}]})"));
  EXPECT_EQ(Describe(HLFocusedDismissControlInSubtree(desktop.element("group"))),
            "AXPress 180 (-1110,508,20,20) [x] focused-press-fallback,small-frame,top-rightish,near-top");
}

TEST(FocusedControl, ScoresNoPlaceWithoutAFrame) {
  EXPECT_EQ(focusedIn(R"(, "children": [{"title": "dismiss", "actions": ["Name:Close"]}])"),
            "Name:Close 210 no frame [dismiss] focused-explicit-action,close-words");
}

TEST(FocusedControl, ScoresThePlaceOfLargerControls) {
  EXPECT_EQ(
      focusedIn(R"(, "children": [{"title": "dismiss", "frame": [250, 10, 100, 30], "actions": ["Name:Close"]}])"),
      "Name:Close 250 (250,10,100,30) [dismiss] focused-explicit-action,close-words,top-rightish,near-top");
}

TEST(FocusedControl, ScoresAtMost305) {
  EXPECT_EQ(focusedIn(R"(, "title": "notification", "children": [
                {"role": "AXButton", "title": "close", "frame": [330, 8, 20, 20], "actions": ["Name:Close"]}])"),
            "Name:Close 305 (330,8,20,20) [axbutton close] focused-explicit-action,close-words,button-role,small-frame,"
            "notification-context,top-rightish,near-top");
}

TEST(FocusedControl, Scores200ForAnyBanner) {
  const char* expected =
      "Name:Close 200 (0,0,340,70) [axmenuitem axnotificationcenteralert reply] focused-notification-subrole";
  EXPECT_EQ(focusedIn(R"(, "children": [{"role": "AXMenuItem", "subrole": "AXNotificationCenterAlert", "title": "reply",
                "frame": [0, 0, 340, 70], "actions": ["AXPress", "Name:Close"]}])"),
            expected);
  EXPECT_EQ(focusedAlone(R"({"subrole": "axNOTIFICATIONcenterBanner", "actions": ["Name:Close"]})"),
            "Name:Close 200 no frame [axnotificationcenterbanner] focused-notification-subrole");
}

TEST(FocusedControl, ScoresPlainBannersLikeOthers) {
  EXPECT_EQ(
      focusedAlone(R"({"subrole": "AXNotificationCenterAlert", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})"),
      "AXPress 155 (0,0,20,20) [axnotificationcenteralert] "
      "focused-press-fallback,small-frame,notification-context");
}

TEST(FocusedControl, AppliesTheBannerRuleFirst) {
  EXPECT_EQ(focusedAlone(R"({"role": "AXButton", "subrole": "AXNotificationCenterAlert", "title": "close",
                "frame": [0, 0, 20, 20], "actions": ["Name:Close"]})"),
            "Name:Close 200 (0,0,20,20) [axbutton axnotificationcenteralert close] focused-notification-subrole");
}

TEST(FocusedControl, SearchesBelowBanners) {
  EXPECT_EQ(focusedIn(R"(, "subrole": "AXNotificationCenterAlert", "actions": ["Name:Close"], "children": [
                {"role": "AXButton", "title": "close", "frame": [330, 8, 20, 20], "actions": ["AXPress"]}])"),
            "AXPress 245 (330,8,20,20) [axbutton close] focused-press-fallback,close-words,button-role,small-frame,"
            "notification-context,top-rightish,near-top");
}

TEST(FocusedControl, SearchesBelowMenuParts) {
  for (const char* menu :
       {R"("role": "AXMenuButton")", R"("role": "somemenu")", R"("subrole": "AXMENU")",
        R"("roleDescription": "Menu Item")", R"("identifier": "menubar")", R"("roleDescription": "menu  bar")"}) {
    const std::string part =
        "{" + std::string(menu) + R"(, "frame": [0, 0, 20, 20], "actions": ["AXPress", "Name:Close"])";
    EXPECT_EQ(focusedAlone(part + "}"), "nothing") << menu;
    EXPECT_EQ(
        focusedAlone(part + R"(, "children": [{"title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]}]})"),
        "AXPress 140 (0,0,20,20) [x] focused-press-fallback,small-frame")
        << menu;
  }
  EXPECT_NE(focusedAlone(R"({"title": "menu item", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})"), "nothing");
}

TEST(FocusedControl, SearchesBelowOtherElements) {
  EXPECT_EQ(focusedAlone(R"({"frame": [0, 0, 300, 300], "actions": ["AXPress"], "rows": [
                {"children": [], "visibleChildren": [
                  {"title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]}]}]})"),
            "AXPress 140 (0,0,20,20) [x] focused-press-fallback,small-frame");
}

TEST(FocusedControl, IsFoundBelowAWeakerCandidate) {
  EXPECT_EQ(focusedAlone(R"({"title": "a", "frame": [0, 0, 20, 20], "actions": ["AXPress"], "children": [
                {"title": "close", "frame": [0, 0, 20, 20], "actions": ["AXPress"]}]})"),
            "AXPress 170 (0,0,20,20) [close] focused-press-fallback,close-words,small-frame");
}

TEST(FocusedControl, MayBeTheRoot) {
  EXPECT_EQ(focusedIn(R"(, "title": "close me", "actions": ["Name:Close"])"),
            "Name:Close 250 (0,0,360,80) [close me] focused-explicit-action,close-words,top-rightish,near-top");
  EXPECT_EQ(focusedIn(R"(, "title": "close me", "actions": ["AXPress"])"), "nothing");
}

TEST(FocusedControl, KeepsTheFirstOfEqualScores) {
  Group group(R"(, "children": [
      {"children": [{"id": "deep", "title": "a", "frame": [0, 70, 20, 10], "actions": ["AXPress"]}]},
      {"id": "early", "title": "b", "frame": [0, 70, 20, 10], "actions": ["AXPress"]},
      {"id": "late", "title": "c", "frame": [0, 70, 20, 10], "actions": ["AXPress"]}])");
  const auto found = HLFocusedDismissControlInSubtree(group.element("group"));
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->element, group.element("early"));
}

TEST(FocusedControl, TakesTheBestAnywhere) {
  EXPECT_EQ(focusedAlone(R"({"children": [
                {"title": "first", "frame": [0, 0, 20, 20], "actions": ["AXPress"]},
                {"title": "best", "frame": [0, 0, 20, 20], "actions": ["Name:Close"]},
                {"title": "last close", "frame": [0, 0, 20, 20], "actions": ["AXPress"]}]})"),
            "Name:Close 200 (0,0,20,20) [best] focused-explicit-action,small-frame");
}

TEST(FocusedControl, IsAmongTheFirst120Elements) {
  const std::string control = R"({"title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})";
  const std::string found = "AXPress 140 (0,0,20,20) [x] focused-press-fallback,small-frame";
  EXPECT_EQ(focusedAlone(R"({"repeat": 118}, )" + control), found);
  EXPECT_EQ(focusedAlone(R"({"repeat": 119}, )" + control), "nothing");
}

TEST(FocusedControl, CountsARepeatedHandleOnce) {
  const std::string control = R"({"title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})";
  EXPECT_EQ(focusedAlone(R"({"id": "one", "children": [{"ref": "group"}]}, {"ref": "one"}, {"ref": "one"},
                {"repeat": 117, "children": [{"ref": "one"}]}, )" +
                         control),
            "AXPress 140 (0,0,20,20) [x] focused-press-fallback,small-frame");
}

TEST(FocusedControl, CountsEachFreshHandle) {
  EXPECT_EQ(focusedAlone(R"({"id": "cycle", "freshHandles": true, "children": [{"ref": "cycle"}]})"), "nothing");
  EXPECT_EQ(focusedAlone(R"({"id": "one", "freshHandles": true}, {"ref": "one"}, {"repeat": 117},
                {"title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})"),
            "nothing");
}

// The walk starts from a root whose context is its own words already, so these stand twice in the context of all below.
TEST(FocusedControl, UsesContextAsTextlessSnapshot) {
  EXPECT_EQ(focusedIn(R"(, "title": "Hello", "children": [{"frame": [0, 70, 20, 10], "actions": ["AXPress"]}])"),
            "AXPress 140 (0,70,20,10) [hello hello] focused-press-fallback,small-frame");
  EXPECT_EQ(focusedIn(R"(, "title": "iPhone from", "children": [{"frame": [0, 70, 20, 10], "actions": ["AXPress"]}])"),
            "AXPress 155 (0,70,20,10) [iphone from iphone from] "
            "focused-press-fallback,small-frame,notification-context");
  EXPECT_EQ(focusedIn(R"(, "subrole": "AXNotificationCenterAlert", "children": [
                {"children": [{"frame": [0, 70, 20, 10], "actions": ["AXPress"]}]}])"),
            "AXPress 155 (0,70,20,10) [axnotificationcenteralert axnotificationcenteralert] "
            "focused-press-fallback,small-frame,notification-context");
}

TEST(FocusedControl, KeepsItsWholeSnapshot) {
  const std::string title(300, 'a');
  EXPECT_EQ(focusedAlone(R"({"title": ")" + title + R"(", "frame": [0, 0, 20, 20], "actions": ["AXPress"]})"),
            "AXPress 140 (0,0,20,20) [" + title + "] focused-press-fallback,small-frame");
}

TEST(FocusedControl, HoldsTheHandleOfTheControl) {
  Group group(R"(, "children": [{"id": "x", "title": "x", "frame": [0, 0, 20, 20], "actions": ["AXPress"]}])");
  const auto found = HLFocusedDismissControlInSubtree(group.element("group"));
  ASSERT_TRUE(found.has_value());
  EXPECT_EQ(found->element, group.element("x"));
}

}  // namespace
