#include "daemon/test_notifications.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/scenes.h"
#include "tests/support/simulated_desktop.h"

namespace {

using Lines = std::vector<std::string>;

std::string scene(const std::string& services) {
  return std::string("{") + ProductBundle + R"(, "services": {"userNotifications": {)" + services + "}}}";
}

TEST(TestNotifications, AreThreeWithSound) {
  SimulatedDesktop desktop(scene(""));
  EXPECT_EQ(HLSendTestNotifications(), 0);
  const std::vector<HLUserNotification> posted = desktop.simulator().notifications();
  ASSERT_EQ(posted.size(), 3U);
  const std::vector<std::string> bodies = {
      "If you can see this, HL should be able to dismiss it.",
      "menu items renamed to say what they do, and the top action now really works",
      "reply open options show view menu item clear menu - content words must not block dismissal"};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(posted[i].identifier, "hushlet-local-test-" + std::to_string(i + 1));
    EXPECT_EQ(posted[i].title, "Dismiss test " + std::to_string(i + 1));
    EXPECT_EQ(posted[i].body, bodies[i]);
    EXPECT_EQ(posted[i].delay, static_cast<double>(i + 1));
    EXPECT_TRUE(posted[i].sound);
  }
  EXPECT_EQ(desktop.statusLog(), Lines{"sendTestNotificationsLaunch scheduled=3 permissionGranted=true"});
  EXPECT_EQ(desktop.elapsedMicroseconds(), 0);
}

TEST(TestNotifications, PostNothingWhenDenied) {
  SimulatedDesktop desktop(scene(R"("permission": "denied")"));
  EXPECT_EQ(HLSendTestNotifications(), 0);
  EXPECT_TRUE(desktop.simulator().notifications().empty());
  EXPECT_EQ(desktop.statusLog(), Lines{"sendTestNotificationsLaunch scheduled=0 permissionGranted=false error=none"});
}

TEST(TestNotifications, LogTheErrorOfADenial) {
  SimulatedDesktop desktop(scene(R"("permission": "denied", "error": "not allowed here")"));
  EXPECT_EQ(HLSendTestNotifications(), 0);
  EXPECT_EQ(desktop.statusLog(),
            Lines{"sendTestNotificationsLaunch scheduled=0 permissionGranted=false error=not allowed here"});
}

TEST(TestNotifications, WaitFiveSecondsForPermission) {
  SimulatedDesktop desktop(scene(R"("permission": "silent")"));
  EXPECT_EQ(HLSendTestNotifications(), 0);
  EXPECT_EQ(desktop.elapsedMicroseconds(), 5'000'000);
  EXPECT_TRUE(desktop.simulator().notifications().empty());
  EXPECT_EQ(desktop.statusLog(), Lines{"sendTestNotificationsLaunch scheduled=0 permissionGranted=false error=none"});
}

TEST(TestNotifications, LogFailedRequests) {
  SimulatedDesktop desktop(scene(R"("addErrors": {"hushlet-local-test-2": "no room", "hushlet-local-test-3": ""})"));
  EXPECT_EQ(HLSendTestNotifications(), 0);
  EXPECT_EQ(desktop.statusLog(),
            (Lines{"sendTestNotifications add failed identifier=hushlet-local-test-2 error=no room",
                   "sendTestNotifications add failed identifier=hushlet-local-test-3 error=unknown",
                   "sendTestNotificationsLaunch scheduled=3 permissionGranted=true"}));
}

}  // namespace
