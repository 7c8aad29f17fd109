// What is known about servers by name.
#include "platform/linux/notifications/notification_server.h"

#include <gtest/gtest.h>

namespace {

TEST(NotificationServer, IsKnownByNameAndVendor) {
  EXPECT_EQ(HLTraitsOfServer({"Notification Daemon", "MATE", "1.26.0"}).trust, HLClosingTrust::truthful);
  EXPECT_EQ(HLTraitsOfServer({"Notification Daemon", "GNOME", "3.20.0"}).trust, HLClosingTrust::untruthful);
  EXPECT_EQ(HLTraitsOfServer({"Notification Daemon", "Other", "1"}).trust, HLClosingTrust::unknown);
}

TEST(NotificationServer, ClosesAtTheShellsName) {
  EXPECT_EQ(HLTraitsOfServer({"gnome-shell", "GNOME", "43.9"}).closingName, "org.gnome.Shell");
  EXPECT_EQ(HLTraitsOfServer({"Plasma", "KDE", "5.27.5"}).closingName, "");
}

TEST(NotificationServer, ShowsNewestOrOldestOfEquals) {
  EXPECT_EQ(HLTraitsOfServer({"gnome-shell", "GNOME", "43.9"}).shownOfEqual, HLShownOfEqual::newest);
  EXPECT_EQ(HLTraitsOfServer({"cinnamon", "GNOME", "5.6.8"}).shownOfEqual, HLShownOfEqual::newest);
  EXPECT_EQ(HLTraitsOfServer({"Xfce Notify Daemon", "Xfce", "0.7.3"}).shownOfEqual, HLShownOfEqual::oldest);
  EXPECT_EQ(HLTraitsOfServer({"Plasma", "KDE", "5.27.5"}).shownOfEqual, HLShownOfEqual::unknown);
  EXPECT_EQ(HLTraitsOfServer({"Unheard of", "", ""}).shownOfEqual, HLShownOfEqual::unknown);
}

TEST(NotificationServer, HasAQueueOnlyIfKnown) {
  EXPECT_GT(HLTraitsOfServer({"cinnamon", "GNOME", "5.6.8"}).queueTime.count(), 300);
  EXPECT_EQ(HLTraitsOfServer({"gnome-shell", "GNOME", "43.9"}).queueTime.count(), 0) << "its queue does not go on";
  EXPECT_EQ(HLTraitsOfServer({"Unheard of", "", ""}).queueTime.count(), 0);
}

TEST(NotificationServer, ShowsATreeUnlessKnownOtherwise) {
  EXPECT_EQ(HLTraitsOfServer({"Unheard of", "", ""}).screen, HLScreenSource::tree);
  EXPECT_EQ(HLTraitsOfServer({"dunst", "knopwob", "1.9.0"}).screen, HLScreenSource::counts);
  EXPECT_EQ(HLTraitsOfServer({"mako", "emersion", "0.0.0"}).screen, HLScreenSource::list);
  EXPECT_EQ(HLTraitsOfServer({"SwayNotificationCenter", "ErikReider", "0.7.3"}).screen, HLScreenSource::configuration);
}

}  // namespace
