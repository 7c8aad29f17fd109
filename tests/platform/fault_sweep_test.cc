// Whatever single call fails, a dismissal ends, and in one of its stated results.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/dismissal/dismiss_run.h"
#include "core/dismissal/result.h"
#include "platform/application/application_platform.h"
#include "platform/application/user_defaults.h"
#include "tests/platform/sim/scene_desktop.h"
#include "tests/support/faults.h"
#include "tests/support/temporary_directory.h"

namespace {

struct Dismissal {
  HLDismissResult result;
  std::int64_t calls = 0;
  double seconds = 0;
  std::vector<std::string> present;
  std::set<std::string> actions;
};

// 64 iterations of two waits, a restart and a wait for its alerts take no longer.
constexpr double kLongestRun = 2 * 64 * 0.4 + 50 * 0.1 + 16 * 0.3;

class FaultSweep : public testing::Test {
 protected:
  Dismissal run(const std::string& scene, std::int64_t failingCall, HLAXError code) const {
    SimulatedDesktop desktop(scene, {{"hushlet-sim"}, {{"HOME", home_.path()}}});
    Faults faults(failingCall, code);
    FaultyPlatform faulty(desktop.simulator().platform(), faults.plan());
    HLInstallPlatform(&faulty.platform());
    Dismissal run;
    run.result = HLDismissNotificationsNow();
    HLInstallPlatform(nullptr);
    run.calls = faults.calls();
    run.seconds = desktop.simulator().elapsed();
    run.present = desktop.present();
    for (const HLSimulatedAction& action : desktop.simulator().actions()) run.actions.insert(action.action);
    return run;
  }

  // Fails each call of the run once.
  void sweep(const std::string& scene) {
    const Dismissal whole = run(scene, 0, 0);
    ASSERT_GT(whole.calls, 50);
    std::set<HLDismissStatus> seen;
    for (std::int64_t call = 1; call <= whole.calls; ++call) {
      SCOPED_TRACE("call " + std::to_string(call));
      const Dismissal faulty = run(scene, call, HLAXErrorCannotComplete);
      ASSERT_GE(faulty.result.status, HLDismissStatusSuccess);
      ASSERT_LE(faulty.result.status, HLDismissStatusFailed);
      ASSERT_GE(faulty.result.dismissed, 0);
      ASSERT_GE(faulty.result.remaining, 0);
      ASSERT_LE(faulty.seconds, kLongestRun);
      for (const std::string& action : faulty.actions) {
        ASSERT_TRUE(whole.actions.contains(action)) << "a failure must not have it press something else: " << action;
      }
      seen.insert(faulty.result.status);
    }
    EXPECT_TRUE(seen.contains(HLDismissStatusAccessDenied)) << "the trust check fails";
    EXPECT_TRUE(seen.contains(HLDismissStatusFailed)) << "the application's element cannot be made";
    EXPECT_TRUE(seen.contains(HLDismissStatusNotificationCenterUnavailable)) << "the applications cannot be listed";
    EXPECT_TRUE(seen.contains(whole.result.status)) << "most failures change nothing in the end";
  }

  TemporaryDirectory home_;
};

const std::string kCloseAction = R"("actions": ["AXPress", "Name:Close\nTarget:0x0"])";

std::string notificationCenter(const std::string& members, const std::string& further = "") {
  return R"({"pid": 402, "bundleIdentifier": "com.apple.notificationcenterui", "windows": [{"role": "AXWindow",
    "title": "Notification Center", "children": [)" +
         members + "]}]" + further + "}";
}

TEST_F(FaultSweep, OverOrdinaryAlerts) {
  sweep(
      R"({"applications": [)" +
      notificationCenter(R"({"repeat": 4, "id": "alert {n}", "role": "AXGroup", "subrole": "AXNotificationCenterAlert",
          "description": "Mail, Letter {n}", "frame": [1080, 40, 344, 80], "closes": "alert {n}", )" +
                         kCloseAction + R"(, "children": [{"role": "AXButton", "title": "Reply"}]})") +
      "]}");
}

TEST_F(FaultSweep, OverTargetsThatNeedResolution) {
  sweep(R"({"applications": [)" +
        notificationCenter(R"({"id": "backup", "role": "AXButton", "description": "Backup finished, press to close",
          "frame": [1080, 40, 344, 100], "actions": ["AXPress"], "closes": "backup", "attributes": {"AXCloseButton":
            {"element": {"role": "AXButton", "frame": [1396, 48, 20, 20], "actions": ["AXPress"], "closes": "backup"}}}},
          {"id": "battery", "role": "AXButton", "description": "Battery is low, press to close", "actions": ["AXPress"],
           "frame": [1080, 148, 344, 100], "closes": "battery", "children": [{"role": "AXButton", "identifier": "xmark",
             "frame": [1396, 156, 20, 20], "actions": ["AXPress"], "closes": "battery"}]})") +
        "]}");
}

TEST_F(FaultSweep, OverARestartOfNotificationCenter) {
  const std::string alerts = R"("role": "AXGroup", "subrole": "AXNotificationCenterAlert", )" + kCloseAction;
  sweep(R"({"applications": [)" +
        notificationCenter(
            R"({"repeat": 20, "id": "alert {n}", "description": "Chat, Message {n}", "closes": "alert {n}", )" +
                alerts + "}",
            R"(, "relaunch": {"after": 0.5, "application": )" +
                notificationCenter(R"({"id": "late", "description": "Chat, Withheld", "closes": "late", )" + alerts +
                                   "}") +
                "}") +
        "]}");
}

TEST_F(FaultSweep, OverAnAlertThatStays) {
  const std::string scene = R"({"applications": [)" +
                            notificationCenter(R"({"role": "AXGroup", "subrole": "AXNotificationCenterAlert",
                              "description": "Software Update, Updates available", )" +
                                               kCloseAction + "}") +
                            "]}";
  EXPECT_EQ(run(scene, 0, 0).result, (HLDismissResult{HLDismissStatusFailed, 0, 1}));
  sweep(scene);
}

TEST_F(FaultSweep, TreatsAllCodesAlike) {
  const std::string scene = R"({"applications": [)" +
                            notificationCenter(R"({"id": "alert", "subrole": "AXNotificationCenterAlert",
                              "closes": "alert", )" +
                                               kCloseAction + "}") +
                            "]}";
  const std::int64_t calls = run(scene, 0, 0).calls;
  for (std::int64_t call = 1; call <= calls; ++call) {
    const Dismissal one = run(scene, call, HLAXErrorCannotComplete);
    for (HLAXError code : {HLAXErrorInvalidElement, HLAXErrorAPIDisabled, HLAXErrorNoValue, HLAXErrorFailure, 17}) {
      const Dismissal other = run(scene, call, code);
      EXPECT_EQ(other.result, one.result) << call << ", " << code;
      EXPECT_EQ(other.present, one.present) << call << ", " << code;
    }
  }
}

// The wrapper itself

TEST(FaultyAccessibility, FailsOnlyThePlannedCall) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "role": "AXWindow", "actions": ["AXPress"], "onAction": {"AXPress": {
    "effects": [{"remove": "w"}]}}})"));
  Faults faults(3, HLAXErrorCannotComplete);
  FaultyAccessibility accessibility(desktop.accessibility(), faults.plan());
  const HLElementRef root = accessibility.createApplication(400);
  const HLElementRef window = *root->copyAttributeValue("AXWindows").value.as<HLArray>()->at(0).as<HLElementRef>();
  EXPECT_EQ(window->performAction("AXPress"), HLAXErrorCannotComplete);
  desktop.sleep(1);
  EXPECT_EQ(desktop.present().size(), 1U) << "what fails has no effect";
  EXPECT_EQ(window->copyAttributeValue("AXRole").error, HLAXErrorSuccess);
  EXPECT_EQ(window->performAction("AXPress"), HLAXErrorSuccess);
  EXPECT_EQ(faults.calls(), 5);
  EXPECT_EQ(accessibility.createApplication(400), root) << "handles keep their identity";
  EXPECT_TRUE(window->isEqual(*window));
  EXPECT_FALSE(window->isEqual(*root));
}

TEST(FaultyAccessibility, DeliversNotificationsOfWrappedElements) {
  SimulatedDesktop desktop(Scene(R"({"id": "w", "role": "AXWindow"})",
                                 R"(, "timeline": [{"at": 1, "notify": "AXLayoutChanged", "element": "w"}])"));
  Faults none(0, 0);
  FaultyAccessibility accessibility(desktop.accessibility(), none.plan());
  const HLElementRef root = accessibility.createApplication(400);
  const HLElementRef window = *root->copyAttributeValue("AXWindows").value.as<HLArray>()->at(0).as<HLElementRef>();
  std::vector<HLElementRef> notified;
  const auto observer = accessibility.createObserver(
      400, [&notified](const HLElementRef& element, std::string_view) { notified.push_back(element); });
  EXPECT_EQ(observer->addNotification(root, "AXLayoutChanged"), HLAXErrorSuccess);
  observer->attach();
  desktop.runLoop().runFor(2);
  EXPECT_EQ(notified, std::vector<HLElementRef>{window});
}

TEST(FaultyPlatform, PassesArgumentsToThePlan) {
  SimulatedDesktop desktop(Scene(""));
  std::vector<std::string> calls;
  FaultyPlatform faulty(desktop.simulator().platform(), [&calls](std::string_view method, std::string_view argument) {
    calls.push_back(std::string(method) + " " + std::string(argument));
    return method == "HLProcessInfo::environment" ? HLAXErrorFailure : HLAXErrorSuccess;
  });
  const HLPlatform& platform = faulty.platform();
  EXPECT_EQ(platform.process->environment("HOME"), std::nullopt);
  EXPECT_TRUE(platform.runningApplications->find(400));
  const auto* application = std::get<const HLApplicationPlatform*>(platform.applicationPlatform());
  EXPECT_TRUE(application->userDefaults->value("key").isMissing());
  EXPECT_EQ(calls, (std::vector<std::string>{"HLProcessInfo::environment HOME", "HLRunningApplications::find 400",
                                             "HLPlatform::applicationPlatform ", "HLUserDefaults::value key"}));
}

}  // namespace
