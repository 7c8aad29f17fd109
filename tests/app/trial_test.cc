// The trial notification, on desktops that show, hide or keep it.
#include "app/trial.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/scan/notification_center.h"
#include "core/scan/tree_walk.h"
#include "tests/app/spied_application.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kTitle = "Hushlet trial 42";

// A host whose server is played by the scene.
class SceneTrials : public HLTrials {
 public:
  std::optional<std::string> name = "Bannerd 1.2";
  std::optional<bool> doNotDisturb;
  bool accepts = true;
  std::optional<std::string> obstacle;
  Calls calls;

  std::optional<std::string> serverName() override { return name; }
  std::optional<std::string> unclosableReason() override { return obstacle; }
  std::optional<bool> isDoNotDisturbOn() override { return doNotDisturb; }
  std::unique_ptr<HLTrialNotification> post(const std::string& title, const std::string&) override {
    calls.push_back("post " + title);
    return accepts ? std::make_unique<Posted>(calls) : nullptr;
  }

 private:
  class Posted : public HLTrialNotification {
   public:
    explicit Posted(Calls& calls) : calls_(calls) {}
    void withdraw() override { calls_.emplace_back("withdraw"); }

   private:
    Calls& calls_;
  };
};

std::string banner(const std::string& id, const std::string& title, const std::string& rest) {
  return R"({"id": ")" + id + R"(", "role": "AXGroup", "subrole": "AXNotificationCenterAlert",
    "description": "Hushlet, )" +
         title + R"(, Body")" + rest + "}";
}

std::string closable(const std::string& id, const std::string& title) {
  return banner(id, title, R"(, "actions": ["Name:Close"], "closes": ")" + id + '"');
}

// A scene in which the banner appears after 0.3 s, among those that are there before.
std::string sceneWith(const std::string& trial, const std::string& others = "") {
  std::string scene = R"("trusted": true, "applications": [{"pid": 400,
    "bundleIdentifier": "com.apple.notificationcenterui", "windows": [{"id": "w", "role": "AXWindow", "children": [)" +
                      others + "]}]}]";
  if (!trial.empty()) scene += R"(, "timeline": [{"at": 0.3, "to": "w", "add": )" + trial + "}]";
  return scene;
}

// What is left on screen.
std::vector<std::string> descriptions() {
  std::vector<std::string> found;
  const auto element = HLCurrentPlatform().accessibility->createApplication(400);
  for (const HLElementRef& window : HLNotificationWindows(*element)) {
    HLWalkTree({window, HLContext()}, 100, [&found](const HLVisit& visit) {
      if (!visit.facts.description.empty()) found.push_back(visit.facts.description);
      return HLDescent::enter;
    });
  }
  return found;
}

TEST(Trial, WorksWhereTheBannerGoes) {
  Application application(sceneWith(closable("mine", kTitle)));
  SceneTrials trials;
  const HLTrialReport report = HLRunTrial(trials, kTitle);
  EXPECT_EQ(report.text, "Works here");
  EXPECT_EQ(report.color, HLTextColor::green);
  EXPECT_THAT(trials.calls, ElementsAre(std::string("post ") + kTitle));
}

TEST(Trial, LeavesAllOthersAlone) {
  std::string others;
  std::vector<std::string> left;
  for (int i = 0; i < 30; ++i) {
    const std::string number = std::to_string(i);
    others += (i == 0 ? "" : ", ") + closable("other" + number, "Hushlet trial 4" + number + "x");
    left.push_back("Hushlet, Hushlet trial 4" + number + "x, Body");
  }
  Application application(sceneWith(closable("mine", "Hushlet trial 4242"), others));
  SceneTrials trials;
  EXPECT_EQ(HLRunTrial(trials, "Hushlet trial 4242").color, HLTextColor::green);
  EXPECT_EQ(descriptions(), left);
}

TEST(Trial, NamesAServerWithoutCloseButtons) {
  Application application(sceneWith(banner("mine", kTitle, "")));
  SceneTrials trials;
  const HLTrialReport report = HLRunTrial(trials, kTitle);
  EXPECT_EQ(report.text,
            "Your notification server Bannerd 1.2 cannot be cleared, because its banners have no close button that can "
            "be pressed.");
  EXPECT_EQ(report.color, HLTextColor::orange);
  EXPECT_EQ(trials.calls.back(), "withdraw");
}

TEST(Trial, NamesAServerWhoseBannersStay) {
  Application application(sceneWith(banner("mine", kTitle, R"(, "actions": ["Name:Close"])")));
  SceneTrials trials;
  trials.name = std::nullopt;
  EXPECT_EQ(HLRunTrial(trials, kTitle).text,
            "Your notification server cannot be cleared, because its banners stay when they are closed.");
  EXPECT_EQ(trials.calls.back(), "withdraw");
}

TEST(Trial, NamesAnUnreadableServer) {
  Application application(R"("trusted": true)");
  SceneTrials trials;
  EXPECT_THAT(HLRunTrial(trials, kTitle).text, HasSubstr("because it does not offer its windows"));
}

TEST(Trial, ReportsAMissingBanner) {
  Application application(sceneWith(""));
  SceneTrials trials;
  EXPECT_THAT(HLRunTrial(trials, kTitle).text,
              HasSubstr("Bannerd 1.2 showed no banner that can be read. Do not disturb"));
  EXPECT_EQ(trials.calls.back(), "withdraw");
}

TEST(Trial, ReportsThatOthersLeaveNoRoom) {
  Application application(sceneWith("", closable("other", "Other")));
  SceneTrials trials;
  EXPECT_EQ(HLRunTrial(trials, kTitle).text, "Other banners leave no room, clear them first: not tried");
  EXPECT_EQ(trials.calls.back(), "withdraw");
  EXPECT_EQ(descriptions().size(), 1U);
}

TEST(Trial, NamesAnUnclearableServer) {
  Application application(sceneWith(""));
  SceneTrials trials;
  trials.obstacle = "its bubbles go by themselves";
  EXPECT_EQ(HLRunTrial(trials, kTitle).text,
            "Your notification server Bannerd 1.2 cannot be cleared, because its bubbles go by themselves.");
}

TEST(Trial, ReportsABannerThatExpired) {
  Application application(R"("trusted": true, "applications": [{"pid": 400,
    "bundleIdentifier": "com.apple.notificationcenterui", "windows": [{"id": "w", "role": "AXWindow", "children": [)" +
                          banner("mine", kTitle, "") + R"(]}]}], "timeline": [{"at": 0.3, "remove": "mine"}])");
  SceneTrials trials;
  EXPECT_THAT(HLRunTrial(trials, kTitle).text, HasSubstr("was gone before it could be cleared"));
}

TEST(Trial, PostsNothingDuringDoNotDisturb) {
  Application application(sceneWith(closable("mine", kTitle)));
  SceneTrials trials;
  trials.doNotDisturb = true;
  const HLTrialReport report = HLRunTrial(trials, kTitle);
  EXPECT_EQ(report.text, "Do not disturb is on: not tried");
  EXPECT_EQ(report.color, HLTextColor::secondary);
  EXPECT_THAT(trials.calls, IsEmpty());
  trials.doNotDisturb = false;
  EXPECT_EQ(HLRunTrial(trials, kTitle).color, HLTextColor::green);
}

TEST(Trial, PostsNothingWithoutAccess) {
  Application application(R"("trusted": false, "services": {"grantOnPrompt": true})");
  SceneTrials trials;
  EXPECT_EQ(HLRunTrial(trials, kTitle).text, "Accessibility is off: not tried");
  EXPECT_THAT(trials.calls, IsEmpty());
  application.desktop.runLoop().runFor(1);
  EXPECT_FALSE(application.desktop.accessibility().isProcessTrusted(false)) << "the user is not asked";
}

TEST(Trial, ReportsARefusingServer) {
  Application application(sceneWith(""));
  SceneTrials trials;
  trials.accepts = false;
  EXPECT_EQ(HLRunTrial(trials, kTitle).text, "Your desktop accepts no notifications: not tried");
}

// The button

std::optional<HLButton> trialButton(const HLWindowDescription& window) {
  for (const HLButton& button : ControlsOf<HLButton>(window)) {
    if (button.name == "trialButton") return button;
  }
  return std::nullopt;
}

TEST(TrialButton, AppearsInBothWindowsIfOffered) {
  for (const bool offered : {false, true}) {
    Application application;
    SceneTrials trials;
    if (offered) application.host.platform.trials = &trials;
    application.delegate->showSetupWindow();
    application.delegate->showSettingsWindow();
    ASSERT_EQ(application.host.windows.made.size(), 2U);
    for (const HLWindowDescription& window : application.host.windows.made) {
      EXPECT_EQ(trialButton(window).has_value(), offered) << window.title;
    }
  }
}

TEST(TrialButton, ReportsInWindowAndLog) {
  Application application(sceneWith(closable("mine", "Hushlet trial")));
  SceneTrials trials;
  trials.doNotDisturb = true;
  application.host.platform.trials = &trials;
  application.delegate->showSettingsWindow();
  application.host.calls.clear();
  trialButton(application.host.windows.made.at(0))->action();
  trialButton(application.host.windows.made.at(0))->action();
  EXPECT_THAT(application.host.calls, ElementsAre("label trialLabel")) << "the window does not wait for the answer";
  application.desktop.platform().runLoop->runFor(1);
  EXPECT_THAT(application.messages("trial"),
              ElementsAre("trial", "trial outcome=" + application.host.windows.labels["trialLabel"]));
  application.delegate->tryIt();
  EXPECT_EQ(application.messages("trial").size(), 3U) << "it can be tried again";
  application.desktop.platform().runLoop->runFor(1);
}

TEST(TrialButton, GivesEachTrialAnotherTitle) {
  Application application(sceneWith(""));
  SceneTrials trials;
  trials.accepts = false;
  application.host.platform.trials = &trials;
  for (int i = 0; i < 2; ++i) {
    application.delegate->tryIt();
    application.desktop.platform().runLoop->runFor(1);
  }
  ASSERT_EQ(trials.calls.size(), 2U);
  EXPECT_THAT(trials.calls[0], testing::MatchesRegex("post Hushlet trial [0-9]+"));
  EXPECT_NE(trials.calls[0], trials.calls[1]);
}

}  // namespace
