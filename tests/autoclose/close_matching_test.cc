#include "autoclose/close_matching.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using Ids = std::vector<std::string>;

std::string alert(const std::string& id, const std::string& description, const std::string& further = "") {
  return R"({"id": ")" + id + R"(", "role": "AXGroup", "subrole": "AXNotificationCenterAlert", "description": ")" +
         description + R"(", "frame": [0, 0, 344, 80], "actions": ["AXPress", "Name:Close"])" + further + "}";
}

std::string window(const std::vector<std::string>& alerts) {
  std::string children;
  for (const std::string& each : alerts) children += (children.empty() ? "" : ",") + each;
  return R"({"id": "window", "role": "AXWindow", "children": [)" + children + "]}";
}

struct Outcome {
  int code;
  std::string printed;
};

Outcome closeMatching(const std::string& text) {
  std::ostringstream out;
  const int code = HLCloseMatchingAlerts(text, out);
  return {code, out.str()};
}

Ids closedElements(SimulatedDesktop& desktop) {
  Ids ids;
  for (const HLSimulatedAction& action : desktop.simulator().actions()) {
    EXPECT_EQ(action.action, "Name:Close");
    ids.push_back(action.element.value_or("?"));
  }
  return ids;
}

TEST(CloseMatching, ClosesMatchesInAnyCase) {
  SimulatedDesktop desktop(NotificationCenterScene(window({alert("mail", "Mail, WEEKLY Report", R"(,"closes": "mail")"),
                                                           alert("chat", "Chat, hello", R"(,"closes": "chat")"),
                                                           alert("news", "weekly report", R"(,"closes": "news")")})));
  const Outcome run = closeMatching("Weekly report");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.printed, "closed_matching=2\n");
  EXPECT_EQ(closedElements(desktop), (Ids{"mail", "news"}));
  EXPECT_EQ(desktop.simulator().presentElements(), (Ids{"window", "chat"}));
  EXPECT_EQ(desktop.elapsedMicroseconds(), 400'000);
}

TEST(CloseMatching, FoldsUnicodeCase) {
  const SimulatedDesktop desktop(
      NotificationCenterScene(window({alert("a", "Haus, STRASSE gesperrt", R"(,"closes": "a")")})));
  EXPECT_EQ(closeMatching("straße").printed, "closed_matching=1\n");
}

TEST(CloseMatching, StopsAfterAnEmptyPass) {
  const SimulatedDesktop desktop(NotificationCenterScene(window({alert("chat", "Chat, hello")})));
  const Outcome run = closeMatching("mail");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.printed, "closed_matching=0\n");
  EXPECT_EQ(desktop.elapsedMicroseconds(), 0);
}

TEST(CloseMatching, NeverMakesMoreThanFivePasses) {
  SimulatedDesktop desktop(NotificationCenterScene(window({alert("stubborn", "Mail, hello")})));
  EXPECT_EQ(closeMatching("mail").printed, "closed_matching=5\n");
  EXPECT_EQ(closedElements(desktop), Ids(5, "stubborn"));
  EXPECT_EQ(desktop.elapsedMicroseconds(), 5 * 400'000);
}

TEST(CloseMatching, CountsAcceptedPressesOnly) {
  const SimulatedDesktop desktop(
      NotificationCenterScene(window({alert("a", "Mail, one", R"(,"onAction": {"Name:Close": {"error": -25204}})")})));
  const Outcome run = closeMatching("mail");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.printed, "closed_matching=0\n");
}

TEST(CloseMatching, NeedsTextAndNotificationCenter) {
  {
    const SimulatedDesktop desktop(NotificationCenterScene(window({alert("a", "Mail, one")})));
    const Outcome run = closeMatching("");
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.printed, "");
  }
  const SimulatedDesktop desktop("{}");
  const Outcome run = closeMatching("mail");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.printed, "");
}

TEST(CloseMatching, MatchesNothingWithoutTrust) {
  const SimulatedDesktop desktop(NotificationCenterScene(window({alert("a", "Mail, one")}), R"(,"trusted": false)"));
  const Outcome run = closeMatching("mail");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.printed, "closed_matching=0\n");
}

}  // namespace
