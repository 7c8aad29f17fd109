#include "core/scan/element_access.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "platform/element_facts.h"
#include "platform/run_loop.h"
#include "tests/support/fake_element.h"
#include "tests/support/simulated_desktop.h"

namespace {

constexpr std::string_view kValues = R"({
  "applications": [{"pid": 400, "windows": [{
    "id": "values",
    "title": "Hello",
    "frame": [-1440, 12, 360, 80],
    "actions": ["Name:Close", "AXPress", "AXShowMenu"],
    "attributes": {
      "empty": "",
      "one": 1,
      "minus": -12,
      "large": 9007199254740993,
      "fraction": 2.5,
      "third": 0.1,
      "whole": 3.0,
      "true": true,
      "false": false,
      "null": null,
      "list": ["a", 1],
      "element": {"ref": "values"},
      "point": {"point": [1, 2]},
      "size": {"size": [3, 4]}
    },
    "errors": {"AXDescription": -25204, "AXHelp": -25200}
  }]}]
})";

class ElementAccess : public testing::Test {
 protected:
  [[nodiscard]] std::optional<std::string> text(std::string_view name) { return HLStringAttribute(*element_, name); }

  SimulatedDesktop desktop_{kValues};
  HLElementRef element_ = desktop_.element("values");
};

TEST_F(ElementAccess, ReadsStringsUnchanged) {
  EXPECT_EQ(text("AXTitle"), "Hello");
  EXPECT_EQ(text("empty"), "");
}

TEST_F(ElementAccess, ReadsNumbersAsDecimalText) {
  EXPECT_EQ(text("one"), "1");
  EXPECT_EQ(text("minus"), "-12");
  EXPECT_EQ(text("large"), "9007199254740993");
  EXPECT_EQ(text("fraction"), "2.5");
  EXPECT_EQ(text("third"), "0.1");
  EXPECT_EQ(text("whole"), "3");
}

TEST_F(ElementAccess, ReadsBooleansAsOneOrZero) {
  EXPECT_EQ(text("true"), "1");
  EXPECT_EQ(text("false"), "0");
}

TEST_F(ElementAccess, ReadsNoTextOfOtherTypes) {
  for (const char* name : {"list", "element", "point", "size"}) EXPECT_EQ(text(name), std::nullopt) << name;
}

TEST_F(ElementAccess, ReadsFailingAttributesAsMissing) {
  for (const char* name : {"AXSubrole", "null", "AXDescription", "AXHelp"}) {
    EXPECT_EQ(text(name), std::nullopt) << name;
    EXPECT_FALSE(HLCopyAttribute(*element_, name).has_value()) << name;
  }
}

TEST_F(ElementAccess, KeepsTheTypeOfAttributes) {
  const std::optional<HLValue> list = HLCopyAttribute(*element_, "list");
  ASSERT_TRUE(list && list->as<HLArray>() != nullptr);
  EXPECT_EQ(list->as<HLArray>()->size(), 2U);
  const std::optional<HLValue> reference = HLCopyAttribute(*element_, "element");
  ASSERT_TRUE(reference && reference->as<HLElementRef>() != nullptr);
  EXPECT_EQ(*reference->as<HLElementRef>(), element_);
}

TEST_F(ElementAccess, ActionNamesKeepTheirOrder) {
  EXPECT_EQ(HLActionNames(*element_), (std::vector<std::string>{"Name:Close", "AXPress", "AXShowMenu"}));
}

TEST_F(ElementAccess, RejectsPointsOfOtherTypes) {
  EXPECT_EQ(HLPointAttribute(*element_, "point"), (HLPoint{1, 2}));
  EXPECT_EQ(HLSizeAttribute(*element_, "size"), (HLSize{3, 4}));
  for (const char* name : {"size", "one", "AXTitle", "list", "missing", "AXHelp"}) {
    const HLPoint point = HLPointAttribute(*element_, name);
    EXPECT_TRUE(std::isnan(point.x) && std::isnan(point.y)) << name;
  }
  for (const char* name : {"point", "one", "AXTitle", "list", "missing", "AXHelp"}) {
    const HLSize size = HLSizeAttribute(*element_, name);
    EXPECT_TRUE(std::isnan(size.width) && std::isnan(size.height)) << name;
  }
}

TEST_F(ElementAccess, KeepsNegativeFrames) { EXPECT_EQ(HLFrameForElement(*element_), (HLRect{-1440, 12, 360, 80})); }

TEST(ElementAnswers, YieldNoActionsOnError) {
  FakeElement element;
  element.actions = {HLAXErrorCannotComplete, {"AXPress"}};
  EXPECT_TRUE(HLActionNames(element).empty());
}

TEST(ElementAnswers, YieldNoValueOnError) {
  FakeElement element;
  element.attributes["AXTitle"] = {HLAXErrorFailure, std::string("left over")};
  element.attributes["AXPosition"] = {HLAXErrorFailure, HLPoint{1, 2}};
  element.attributes["AXSize"] = {HLAXErrorFailure, HLSize{1, 2}};
  element.attributes["AXChildren"] = {HLAXErrorFailure, HLArray{std::make_shared<FakeElement>()}};
  EXPECT_FALSE(HLCopyAttribute(element, "AXTitle").has_value());
  EXPECT_FALSE(HLStringAttribute(element, "AXTitle").has_value());
  EXPECT_TRUE(std::isnan(HLPointAttribute(element, "AXPosition").x));
  EXPECT_TRUE(std::isnan(HLSizeAttribute(element, "AXSize").width));
  EXPECT_TRUE(HLElementsFromAttribute(element.copyAttributeValue("AXChildren")).empty());
}

TEST(ElementAnswers, TreatEmptySuccessAsMissing) {
  FakeElement element;
  element.attributes["AXTitle"] = {HLAXErrorSuccess, {}};
  EXPECT_FALSE(HLCopyAttribute(element, "AXTitle").has_value());
  EXPECT_FALSE(HLStringAttribute(element, "AXTitle").has_value());
  EXPECT_TRUE(std::isnan(HLPointAttribute(element, "AXTitle").y));
}

TEST(ElementAnswers, KeepListElementsInOrder) {
  const auto first = std::make_shared<FakeElement>();
  const auto second = std::make_shared<FakeElement>();
  const HLAttribute mixed = {
      HLAXErrorSuccess, HLArray{std::string("text"), HLElementRef(second), std::int64_t{1}, HLElementRef(), HLValue{},
                                HLElementRef(first), HLArray{HLElementRef(first)}, HLElementRef(second)}};
  EXPECT_EQ(HLElementsFromAttribute(mixed), (std::vector<HLElementRef>{second, first, second}));
  EXPECT_TRUE(HLElementsFromAttribute({HLAXErrorSuccess, HLElementRef(first)}).empty());
}

TEST(ElementFrame, NeedsPositionAndPositiveSize) {
  const double unknown = std::nan("");
  const HLPoint origin{0, 0};
  EXPECT_EQ(HLFrameFromPointAndSize(origin, {1, 25}), (HLRect{0, 0, 1, 25}));
  EXPECT_EQ(HLFrameFromPointAndSize(origin, {25, 1}), (HLRect{0, 0, 25, 1}));
  EXPECT_EQ(HLFrameFromPointAndSize(origin, {0.25, 0.25}), (HLRect{0, 0, 0.25, 0.25}));
  EXPECT_EQ(HLFrameFromPointAndSize({-1440, 12}, {360, 80}), (HLRect{-1440, 12, 360, 80}));
  for (const HLSize& size :
       {HLSize{0, 25}, HLSize{25, 0}, HLSize{-1, 25}, HLSize{25, -1}, HLSize{unknown, 25}, HLSize{25, unknown}}) {
    EXPECT_TRUE(HLFrameFromPointAndSize(origin, size).isNull()) << size.width << " by " << size.height;
  }
  EXPECT_TRUE(HLFrameFromPointAndSize({unknown, 0}, {25, 25}).isNull());
  EXPECT_TRUE(HLFrameFromPointAndSize({0, unknown}, {25, 25}).isNull());
}

TEST(ElementFrame, IsReadFromPositionAndSize) {
  FakeElement element;
  EXPECT_TRUE(HLFrameForElement(element).isNull());
  element.attributes["AXPosition"] = {HLAXErrorSuccess, HLPoint{5, 6}};
  EXPECT_TRUE(HLFrameForElement(element).isNull());
  element.attributes["AXSize"] = {HLAXErrorSuccess, HLPoint{7, 8}};
  EXPECT_TRUE(HLFrameForElement(element).isNull()) << "a point is no size";
  element.attributes["AXSize"] = {HLAXErrorSuccess, HLSize{7, 8}};
  EXPECT_EQ(HLFrameForElement(element), (HLRect{5, 6, 7, 8}));
  element.attributes["AXPosition"] = {HLAXErrorSuccess, HLSize{5, 6}};
  EXPECT_TRUE(HLFrameForElement(element).isNull()) << "a size is no point";
}

TEST(BannerSubrole, IgnoresLetterCase) {
  for (const char* subrole : {"AXNotificationCenterAlert", "AXNotificationCenterBanner", "axnotificationcenter",
                              "AXNOTIFICATIONCENTERALERT", "prefix AXNotificationCenterAlertStack"}) {
    EXPECT_TRUE(HLIsNotificationBannerSubrole(subrole)) << subrole;
  }
  for (const char* subrole : {"", "AXNotification", "NotificationCenterAlert", "AXNotification Center", "AXCloseButton",
                              "AXNotificationCente"}) {
    EXPECT_FALSE(HLIsNotificationBannerSubrole(subrole)) << subrole;
  }
}

TEST(Trust, IsAskedAfreshEachTime) {
  SimulatedDesktop desktop(R"({"trusted": true, "timeline": [{"at": 1, "trust": false}, {"at": 2, "trust": true}]})");
  EXPECT_TRUE(HLIsAccessibilityTrusted(false));
  desktop.platform().runLoop->sleep(1);
  EXPECT_FALSE(HLIsAccessibilityTrusted(false));
  desktop.platform().runLoop->sleep(1);
  EXPECT_TRUE(HLIsAccessibilityTrusted(false));
}

TEST(Trust, AsksOnlyWithAPrompt) {
  SimulatedDesktop desktop(R"({"trusted": false, "services": {"grantOnPrompt": true}})");
  EXPECT_FALSE(HLIsAccessibilityTrusted(false));
  desktop.platform().runLoop->runFor(0.1);
  EXPECT_FALSE(HLIsAccessibilityTrusted(false));
  EXPECT_FALSE(HLIsAccessibilityTrusted(true));
  desktop.platform().runLoop->runFor(0.1);
  EXPECT_TRUE(HLIsAccessibilityTrusted(false));
}

TEST(Trust, HidesEverythingWhenMissing) {
  SimulatedDesktop desktop(R"({"trusted": false, "applications": [{"pid": 400, "windows": [
    {"id": "window", "title": "Hello", "frame": [0, 0, 10, 10], "actions": ["AXPress"]}]}]})");
  const HLElementRef window = desktop.element("window");
  EXPECT_EQ(HLStringAttribute(*window, "AXTitle"), std::nullopt);
  EXPECT_TRUE(HLActionNames(*window).empty());
  EXPECT_TRUE(HLFrameForElement(*window).isNull());
}

TEST(Trust, HidesDestroyedElements) {
  SimulatedDesktop desktop(R"({"applications": [{"pid": 400, "windows": [
    {"id": "window", "title": "Hello", "frame": [0, 0, 10, 10], "actions": ["AXPress"]}]}],
    "timeline": [{"at": 1, "remove": "window"}]})");
  const HLElementRef window = desktop.element("window");
  EXPECT_EQ(HLStringAttribute(*window, "AXTitle"), "Hello");
  desktop.platform().runLoop->sleep(1);
  EXPECT_EQ(HLStringAttribute(*window, "AXTitle"), std::nullopt);
  EXPECT_TRUE(HLActionNames(*window).empty());
  EXPECT_TRUE(HLFrameForElement(*window).isNull());
}

}  // namespace
