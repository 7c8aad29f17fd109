#include "autoclose/auto_closer.h"

#include <gtest/gtest.h>

#include <sstream>
#include <vector>

#include "base/paths.h"
#include "platform/platform.h"
#include "platform/run_loop.h"
#include "tests/support/flushed_stream.h"
#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using Lines = std::vector<std::string>;

// The flavor is decided once per process. This program decides before its first test, or a test that logs in a scene
// without ProductBundle would move the status log of all others.
class ProductFlavor : public testing::Environment {
 public:
  void SetUp() override {
    const SimulatedDesktop desktop(std::string("{") + ProductBundle + "}");
    EXPECT_TRUE(HLIsProductFlavor());
  }
};
[[maybe_unused]] const testing::Environment* const kFlavor = testing::AddGlobalTestEnvironment(new ProductFlavor);

constexpr const char* kBanner = "Shortcuts, Running your automation";

std::string banner(const std::string& id, const std::string& description, const std::string& actions,
                   const std::string& further = "", const std::string& subrole = "AXNotificationCenterAlert") {
  return R"({"id": ")" + id + R"(", "role": "AXGroup", "subrole": ")" + subrole + R"(", "description": ")" +
         description + R"(", "actions": [)" + actions + "]" + further + "}";
}

// Notifications of a layout change about the elements, half a second apart.
std::string layoutChanges(const std::vector<std::string>& ids) {
  std::string events;
  double at = 0.5;
  for (const std::string& id : ids) {
    events += (events.empty() ? "" : ",") + std::string(R"({"at": )") + std::to_string(at) +
              R"(, "notify": "AXLayoutChanged", "element": ")" + id + "\"}";
    at += 0.5;
  }
  return R"(,"timeline": [)" + events + "]";
}

std::string scene(const std::string& alerts, const std::string& further = "") {
  return NotificationCenterScene(R"({"id": "window", "role": "AXWindow", "children": [)" + alerts + "]}",
                                 further + ", " + ProductBundle);
}

std::vector<std::pair<std::string, std::string>> presses(SimulatedDesktop& desktop) {
  std::vector<std::pair<std::string, std::string>> pairs;
  for (const HLSimulatedAction& action : desktop.simulator().actions()) {
    pairs.emplace_back(action.element.value_or("?"), action.action);
  }
  return pairs;
}
using Presses = std::vector<std::pair<std::string, std::string>>;

// Watches for so many seconds with the built-in rule.
void watch(HLAutoCloser& closer, double seconds) {
  closer.setRules(HLAutoCloseRules(std::nullopt));
  closer.startForCurrentNotificationCenter();
  HLCurrentPlatform().runLoop->runFor(seconds);
}

TEST(AutoCloser, ClosesAutomationBannersOnly) {
  SimulatedDesktop desktop(scene(banner("automation", kBanner, R"("AXPress", "Name:Close\nTarget:0x0")") + "," +
                                     banner("mail", "Mail, hello", R"("AXPress", "Name:Close")"),
                                 layoutChanges({"mail", "automation"})));
  HLAutoCloser closer;
  watch(closer, 2);
  EXPECT_EQ(closer.closed(), 1);
  EXPECT_EQ(closer.pid(), NotificationCenterPid);
  EXPECT_EQ(presses(desktop), (Presses{{"automation", "Name:Close\nTarget:0x0"}}));
  EXPECT_EQ(desktop.statusLog(),
            (Lines{"auto-close watching pid=400 register=0", "auto-close app=Shortcuts error=0 closed=1"}));
}

TEST(AutoCloser, HandlesADescriptionOnce) {
  SimulatedDesktop desktop(
      scene(banner("automation", kBanner, R"("Name:Close")"), layoutChanges({"automation", "automation"})));
  HLAutoCloser closer;
  watch(closer, 2);
  EXPECT_EQ(presses(desktop).size(), 1U);
  EXPECT_EQ(desktop.statusLog().size(), 2U);
}

TEST(AutoCloser, LogsAFailedCloseOnce) {
  SimulatedDesktop desktop(
      scene(banner("automation", kBanner, R"("Name:Close")", R"(,"onAction": {"Name:Close": {"error": -25204}})"),
            layoutChanges({"automation", "automation"})));
  HLAutoCloser closer;
  watch(closer, 2);
  EXPECT_EQ(closer.closed(), 0);
  EXPECT_EQ(desktop.statusLog().back(), "auto-close app=Shortcuts error=-25204 closed=0");
  EXPECT_EQ(presses(desktop).size(), 1U);
}

TEST(AutoCloser, IgnoresEveryOtherSubrole) {
  SimulatedDesktop desktop(scene(banner("stack", kBanner, R"("Name:Close")", "", "AXNotificationCenterAlertStack") +
                                     "," +
                                     banner("banner", kBanner, R"("Name:Close")", "", "AXNotificationCenterBanner") +
                                     "," + banner("lower", kBanner, R"("Name:Close")", "", "axnotificationcenteralert"),
                                 layoutChanges({"stack", "banner", "lower"})));
  HLAutoCloser closer;
  watch(closer, 3);
  EXPECT_EQ(presses(desktop), Presses{});
  EXPECT_TRUE(closer.handled().empty());
}

TEST(AutoCloser, TakesTheFirstCloseAction) {
  const std::string other = "Shortcuts, Running your automation, again";
  const std::string third = "Shortcuts, Running your automation, late";
  SimulatedDesktop desktop(scene(banner("a", kBanner, R"("AXPress", "AXClose", "Name:Close")") + "," +
                                     banner("b", other, R"("Name:Close Tab", "AXClose")") + "," +
                                     banner("c", third, R"("xName:Close", "AXCloseAll", "name:close", "AXPress")"),
                                 layoutChanges({"a", "b", "c", "c"})));
  HLAutoCloser closer;
  watch(closer, 3);
  EXPECT_EQ(presses(desktop), (Presses{{"a", "AXClose"}, {"b", "Name:Close Tab"}}));
  EXPECT_EQ(closer.handled().count(third), 1U);
  EXPECT_EQ(desktop.statusLog().size(), 3U);
}

TEST(AutoCloser, ForgetsAfter200Descriptions) {
  std::string alerts;
  std::vector<std::string> events;
  for (int i = 1; i <= 202; ++i) {
    const std::string id = "a" + std::to_string(i);
    alerts += (i == 1 ? "" : ",") + banner(id, std::string(kBanner) + " " + std::to_string(i), R"("Name:Close")");
    events.push_back(id);
    if (i == 200) events.emplace_back("a1");  // still handled: nothing is forgotten yet
  }
  events.emplace_back("a1");
  SimulatedDesktop desktop(scene(alerts, layoutChanges(events)));
  HLAutoCloser closer;
  watch(closer, 200);
  EXPECT_EQ(closer.closed(), 203);  // each once, and the first one again
  EXPECT_EQ(closer.handled().size(), 2U);
  EXPECT_EQ(presses(desktop).back().first, "a1");
}

TEST(AutoCloser, RepeatsAfterAConfiguredDelay) {
  // Layout changes at 0.5, 1, ... 2.5 seconds.
  SimulatedDesktop desktop(scene(banner("a", kBanner, R"("Name:Close")"), layoutChanges({"a", "a", "a", "a", "a"})));
  HLAutoCloser closer;
  closer.setRepeatAfter(1.2);
  watch(closer, 10);
  EXPECT_EQ(closer.closed(), 2);
  EXPECT_EQ(closer.handled().size(), 1U);
}

TEST(AutoCloser, RestartsTheDelayAfterForgetting) {
  const auto event = [](double at, const std::string& id) {
    return R"({"at": )" + std::to_string(at) + R"(, "notify": "AXLayoutChanged", "element": ")" + id + "\"}";
  };
  std::string alerts = banner("a", kBanner, R"("Name:Close")");
  std::string events = event(1, "a");
  for (int i = 1; i <= 200; ++i) {
    const std::string id = "other" + std::to_string(i);
    alerts += "," + banner(id, std::string(kBanner) + " " + id, R"("Name:Close")");
    events += "," + event(2, id);
  }
  // Closed at 1, forgotten at 2, closed again at 3 for ten seconds.
  for (const double at : {3.0, 12.0}) events += "," + event(at, "a");
  SimulatedDesktop desktop(scene(alerts, R"(,"timeline": [)" + events + "]"));
  HLAutoCloser closer;
  closer.setRepeatAfter(10);
  watch(closer, 20);
  EXPECT_EQ(closer.closed(), 202);
}

TEST(AutoCloser, IgnoresOtherAccessibilityEvents) {
  SimulatedDesktop desktop(scene(banner("a", kBanner, R"("Name:Close")"),
                                 R"(,"timeline": [{"at": 0.5, "notify": "AXCreated", "element": "a"}])"));
  HLAutoCloser closer;
  watch(closer, 1);
  EXPECT_EQ(presses(desktop), Presses{});
}

TEST(AutoCloser, MatchesNothingWithoutRules) {
  SimulatedDesktop desktop(scene(banner("a", kBanner, R"("Name:Close")"), layoutChanges({"a"})));
  HLAutoCloser closer;
  closer.startForCurrentNotificationCenter();
  HLCurrentPlatform().runLoop->runFor(2);
  EXPECT_EQ(presses(desktop), Presses{});
}

TEST(AutoCloser, WatchesOnceWhenStartedTwice) {
  SimulatedDesktop desktop(
      scene(banner("a", kBanner, R"("Name:Close")", R"(,"onAction": {"Name:Close": {"error": -25204}})"),
            layoutChanges({"a"})));
  HLAutoCloser closer;
  closer.startForCurrentNotificationCenter();
  watch(closer, 2);
  EXPECT_EQ(presses(desktop).size(), 1U);
  EXPECT_EQ(desktop.statusLog(),
            (Lines{"auto-close watching pid=400 register=0", "auto-close watching pid=400 register=0",
                   "auto-close app=Shortcuts error=-25204 closed=0"}));
}

TEST(AutoCloser, KeepsItsCountWhenStopped) {
  SimulatedDesktop desktop(
      scene(banner("a", kBanner, R"("Name:Close")") + "," + banner("b", std::string(kBanner) + " b", R"("Name:Close")"),
            layoutChanges({"a", "b"})));
  HLAutoCloser closer;
  watch(closer, 0.7);
  closer.stop();
  closer.stop();
  EXPECT_EQ(closer.pid(), 0);
  EXPECT_EQ(closer.closed(), 1);
  EXPECT_EQ(closer.handled().size(), 1U);
  HLCurrentPlatform().runLoop->runFor(2);
  EXPECT_EQ(presses(desktop).size(), 1U);
}

TEST(AutoCloser, LogsWhyItCouldNotStart) {
  {
    SimulatedDesktop desktop(std::string("{") + ProductBundle + "}");
    HLAutoCloser closer;
    closer.startForCurrentNotificationCenter();
    EXPECT_EQ(closer.pid(), 0);
    EXPECT_EQ(desktop.statusLog(), Lines{"auto-close start failed nc=missing"});
  }
  SimulatedDesktop desktop(
      R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui", "observerFails": true}], )" +
      std::string(ProductBundle) + "}");
  HLAutoCloser closer;
  closer.startForCurrentNotificationCenter();
  EXPECT_EQ(closer.pid(), 0);
  EXPECT_EQ(desktop.statusLog(), Lines{"auto-close start failed nc=present"});
}

TEST(AutoCloser, LogsARefusedRegistration) {
  SimulatedDesktop desktop(
      R"({"applications": [{"pid": 400, "bundleIdentifier": "com.apple.notificationcenterui",
          "registerErrors": {"AXLayoutChanged": -25207}}], )" +
      std::string(ProductBundle) + "}");
  HLAutoCloser closer;
  closer.startForCurrentNotificationCenter();
  EXPECT_EQ(closer.pid(), 400);
  EXPECT_EQ(desktop.statusLog(), Lines{"auto-close watching pid=400 register=-25207"});
}

TEST(AutoCloseProbe, PrintsHowManyItClosed) {
  const SimulatedDesktop desktop(
      scene(banner("a", kBanner, R"("Name:Close")") + "," + banner("b", "Mail, Weekly Report", R"("Name:Close")"),
            layoutChanges({"a", "b"})),
      {{"hushlet-sim"}, {{"HL_AUTO_CLOSE_TEST_RULE", "Mail|weekly report"}}});
  std::ostringstream out;
  EXPECT_EQ(HLRunAutoCloseProbe(2.5, out), 0);
  EXPECT_EQ(out.str(), "watching\nclosed=2\n");
  EXPECT_EQ(desktop.elapsedMicroseconds(), 2'500'000);
}

TEST(AutoCloseProbe, FlushesBeforeItWatches) {
  SimulatedDesktop desktop(scene(""));
  FlushedStream out;
  std::string flushed;
  desktop.runLoop().postToMainQueueAfter(0.5, [&] { flushed = out.flushed(); });
  EXPECT_EQ(HLRunAutoCloseProbe(1, out), 0);
  EXPECT_EQ(flushed, "watching\n");
}

TEST(AutoCloseProbe, UsesTheBuiltInRuleAlone) {
  const SimulatedDesktop desktop(
      scene(banner("a", kBanner, R"("Name:Close")") + "," + banner("b", "Mail, Weekly Report", R"("Name:Close")"),
            layoutChanges({"a", "b"})));
  std::ostringstream out;
  EXPECT_EQ(HLRunAutoCloseProbe(2.5, out), 0);
  EXPECT_EQ(out.str(), "watching\nclosed=1\n");
}

TEST(AutoCloseProbe, PrintsNothingWithoutNotificationCenter) {
  const SimulatedDesktop desktop(std::string("{") + ProductBundle + "}");
  std::ostringstream out;
  EXPECT_EQ(HLRunAutoCloseProbe(2.5, out), 1);
  EXPECT_EQ(out.str(), "");
}

}  // namespace
