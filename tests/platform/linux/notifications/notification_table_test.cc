// What the table of open notifications makes of the events of a session bus.
#include "platform/linux/notifications/notification_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

HLPostedNotification titled(const std::string& summary) {
  HLPostedNotification posted;
  posted.application = "mail";
  posted.summary = summary;
  return posted;
}

// A table, a server ":1.9", and an application ":1.1" whose calls have serials of their own.
class NotificationTable : public testing::Test {
 protected:
  NotificationTable() { table_.setServer(":1.9"); }

  HLCallIdentity call(const std::string& summary) {
    const HLCallIdentity identity{":1.1", ++serial_};
    table_.notifyCalled(identity, titled(summary));
    return identity;
  }
  void post(const std::string& summary, std::uint32_t number) { table_.answered(call(summary), number, {}); }
  HLCallIdentity askToClose(std::uint32_t number) {
    const HLCallIdentity identity{":1.5", ++serial_};
    table_.closeCalled(identity, number);
    return identity;
  }

  [[nodiscard]] std::vector<std::string> open() const {
    std::vector<std::string> open;
    for (const HLOpenNotificationRef& notification : table_.open()) {
      const HLNotificationName& name = notification->name;
      open.push_back((name.number != 0 ? std::to_string(name.number) : name.application + "/" + name.identifier) + " " +
                     notification->posted.summary);
    }
    return open;
  }

  HLNotificationTable table_;
  std::uint64_t serial_ = 0;
};

TEST_F(NotificationTable, CountsNotificationsOnceAnswered) {
  const HLCallIdentity first = call("first");
  EXPECT_THAT(open(), IsEmpty());
  table_.answered(first, 7, {});
  post("second", 8);
  EXPECT_THAT(open(), ElementsAre("7 first", "8 second"));
}

TEST_F(NotificationTable, MatchesRepliesByCallerAndSerial) {
  const HLCallIdentity first = call("first");
  table_.answered({":1.2", first.serial}, 66, {});
  table_.answered({":1.1", first.serial + 1}, 67, {});
  EXPECT_THAT(open(), IsEmpty());
  const HLCallIdentity second = call("second");
  table_.answered(second, 2, {});
  table_.answered(first, 1, {});
  EXPECT_THAT(open(), ElementsAre("2 second", "1 first"));
  table_.answered(first, 3, {});  // a second reply to the same call
  EXPECT_THAT(open(), SizeIs(2));
}

TEST_F(NotificationTable, DropsRefusedCalls) {
  const HLCallIdentity refused = call("refused");
  table_.refused(refused);
  table_.answered(refused, 4, {});
  EXPECT_THAT(open(), IsEmpty());
  EXPECT_EQ(table_.waitingCount(), 0U);
  EXPECT_EQ(table_.byteCount(), 0U);
}

TEST_F(NotificationTable, IgnoresServersWithoutNumbers) {
  post("numberless", 0);
  EXPECT_THAT(open(), IsEmpty());
  EXPECT_EQ(table_.byteCount(), 0U);
}

TEST_F(NotificationTable, ForgetsClosedNumbers) {
  post("first", 1);
  post("second", 2);
  table_.closed(1);
  table_.closed(1);
  table_.closed(99);
  EXPECT_THAT(open(), ElementsAre("2 second"));
}

TEST_F(NotificationTable, ReplacesAsTheNewest) {
  post("first", 1);
  post("second", 2);
  post("first, replaced", 1);
  EXPECT_THAT(open(), ElementsAre("2 second", "1 first, replaced"));
}

TEST_F(NotificationTable, TakesClosedNumbersAgain) {
  post("first", 1);
  table_.closed(1);
  post("again", 1);
  EXPECT_THAT(open(), ElementsAre("1 again"));
}

TEST_F(NotificationTable, IsEmptiedByAnotherServer) {
  post("old", 1);
  const HLCallIdentity unanswered = call("unanswered");
  table_.setServer(":1.9");
  EXPECT_THAT(open(), SizeIs(1));
  table_.setServer("");
  table_.setServer(":1.20");
  EXPECT_THAT(open(), IsEmpty());
  EXPECT_EQ(table_.byteCount(), 0U);
  table_.answered(unanswered, 2, {});
  EXPECT_THAT(open(), IsEmpty());
  post("new", 1);
  EXPECT_THAT(open(), ElementsAre("1 new"));
}

TEST_F(NotificationTable, KeepsCallsThatStartTheServer) {
  table_.setServer("");
  const HLCallIdentity first = call("starts the server");
  table_.setServer(":1.20");
  table_.answered(first, 1, {});
  EXPECT_THAT(open(), ElementsAre("1 starts the server"));
}

TEST_F(NotificationTable, ForgetsUnansweredCallsWithTheBus) {
  table_.setServer("");
  const HLCallIdentity unanswered = call("never answered");
  table_.setServer("");  // as when the bus ends
  EXPECT_EQ(table_.byteCount(), 0U);
  table_.setServer(":1.9");
  table_.answered(unanswered, 1, {});  // the next bus gives the same names and serials again
  EXPECT_THAT(open(), IsEmpty());
}

TEST_F(NotificationTable, ClosesOnReplyToCloseNotification) {
  post("first", 1);
  post("second", 2);
  const HLCallIdentity close = askToClose(1);
  EXPECT_THAT(open(), SizeIs(2));
  table_.answered(close, 0, {});
  EXPECT_THAT(open(), ElementsAre("2 second"));
  table_.refused(askToClose(2));
  EXPECT_THAT(open(), ElementsAre("2 second"));
}

TEST_F(NotificationTable, KeepsConfirmedClosesOfItsServer) {
  post("by signal", 1);
  post("by reply", 2);
  table_.closed(1);
  const HLCallIdentity close = askToClose(2);
  table_.closed(2);  // servers report the closing before they reply
  const auto now = std::chrono::steady_clock::time_point(std::chrono::seconds(5));
  table_.answered(close, 0, now);
  ASSERT_THAT(table_.confirmedClosed(), SizeIs(1));
  EXPECT_EQ(table_.confirmedClosed().front().notification->posted.summary, "by reply");
  EXPECT_EQ(table_.confirmedClosed().front().time, now);
  table_.setServer(":1.20");
  EXPECT_THAT(table_.confirmedClosed(), IsEmpty());
}

TEST_F(NotificationTable, BoundsConfirmedCloses) {
  for (std::uint32_t i = 1; i <= HLNotificationTable::kMostConfirmed + 1; ++i) {
    post("n", i);
    table_.answered(askToClose(i), 0, {});
  }
  ASSERT_THAT(table_.confirmedClosed(), SizeIs(HLNotificationTable::kMostConfirmed));
  EXPECT_EQ(table_.confirmedClosed().front().notification->name.number, 2U);
}

TEST_F(NotificationTable, SparesNumbersReusedWhileClosing) {
  post("first", 1);
  const HLCallIdentity close = askToClose(1);
  table_.closed(1);
  post("reused", 1);
  table_.answered(close, 0, {});
  EXPECT_THAT(open(), ElementsAre("1 reused"));
}

TEST_F(NotificationTable, KnowsNotificationsWithoutNumbers) {
  table_.setNamedServer(":1.30");
  table_.addNamed("org.example.Clock", "alarm", titled("Wake up"), {});
  table_.addNamed("org.example.Clock", "timer", titled("Tea"), {});
  post("numbered", 1);
  table_.addNamed("org.example.Clock", "alarm", titled("Wake up now"), {});
  EXPECT_THAT(open(), ElementsAre("org.example.Clock/timer Tea", "1 numbered", "org.example.Clock/alarm Wake up now"));
  table_.removeNamed("org.example.Clock", "timer");
  table_.removeNamed("org.example.Other", "alarm");
  EXPECT_THAT(open(), ElementsAre("1 numbered", "org.example.Clock/alarm Wake up now"));
  table_.setNamedServer("");
  EXPECT_THAT(open(), ElementsAre("1 numbered"));
}

TEST_F(NotificationTable, ForgetsTheOldestBeyondItsSize) {
  for (std::uint32_t i = 1; i <= HLNotificationTable::kMostOpen + 5; ++i) post("n", i);
  const auto kept = table_.open();
  EXPECT_EQ(kept.size(), HLNotificationTable::kMostOpen);
  EXPECT_EQ(kept.front()->name.number, 6U);
  table_.closed(3);
  EXPECT_EQ(table_.open().size(), HLNotificationTable::kMostOpen);
}

TEST_F(NotificationTable, BoundsUnansweredCalls) {
  const HLCallIdentity first = call("first");
  for (std::size_t i = 0; i < HLNotificationTable::kMostOpen; ++i) (void)call("n");
  EXPECT_EQ(table_.waitingCount(), HLNotificationTable::kMostOpen);
  table_.answered(first, 1, {});
  EXPECT_THAT(open(), IsEmpty());
}

TEST_F(NotificationTable, BoundsTexts) {
  HLPostedNotification posted;
  for (std::uint32_t i = 1; i <= 900; ++i) {
    HLStoreNotificationText(std::string(10000, 'x'), posted.summary, posted.isCut);
    HLStoreNotificationText(std::string(10000, 'y'), posted.body, posted.isCut);
    const HLCallIdentity identity{":1.1", i};
    table_.notifyCalled(identity, posted);
    table_.answered(identity, i, {});
    ASSERT_LE(table_.byteCount(), HLNotificationTable::kMostBytes);
  }
  EXPECT_EQ(table_.open().back()->name.number, 900U);
  EXPECT_GT(table_.open().size(), 200U);
  table_.setServer("");
  EXPECT_EQ(table_.byteCount(), 0U);
}

TEST_F(NotificationTable, BoundsNames) {
  for (int i = 0; i < 900; ++i) {
    std::string identifier = std::to_string(i);
    identifier.resize(HLNotificationTextLimit, 'x');
    table_.addNamed("org.example.Clock", identifier, {}, {});
  }
  EXPECT_LE(table_.byteCount(), HLNotificationTable::kMostBytes);
  EXPECT_LE(table_.open().size() * HLNotificationTextLimit, HLNotificationTable::kMostBytes);
}

TEST_F(NotificationTable, BoundsUnansweredTexts) {
  HLPostedNotification posted = titled(std::string(HLNotificationTextLimit, 'x'));
  for (std::uint64_t i = 1; i <= 900; ++i) table_.notifyCalled({":1.1", i}, posted);
  EXPECT_LE(table_.byteCount(), HLNotificationTable::kMostBytes);
  EXPECT_GT(table_.waitingCount(), 400U);
}

TEST_F(NotificationTable, SignalsChangesOfOpenNotifications) {
  const int event = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
  const auto signaled = [event] {
    std::uint64_t count = 0;
    return read(event, &count, sizeof count) == sizeof count;
  };
  table_.startSignaling(event);
  const HLCallIdentity first = call("first");
  EXPECT_FALSE(signaled());
  table_.answered(first, 1, {});
  EXPECT_TRUE(signaled());
  table_.closed(2);
  EXPECT_FALSE(signaled());
  table_.closed(1);
  EXPECT_TRUE(signaled());
  post("second", 2);
  EXPECT_TRUE(signaled());
  table_.answered(askToClose(2), 0, {});
  EXPECT_TRUE(signaled());
  table_.addNamed("org.example.Clock", "alarm", titled("Wake up"), {});
  EXPECT_TRUE(signaled());
  table_.removeNamed("org.example.Clock", "alarm");
  EXPECT_TRUE(signaled());
  table_.setServer(":1.20");
  EXPECT_TRUE(signaled());
  table_.stopSignaling(event);
  post("second", 2);
  EXPECT_FALSE(signaled());
  close(event);
}

TEST(NotificationText, IsCutAtCharacters) {
  std::string stored;
  bool isCut = false;
  HLStoreNotificationText(std::string(HLNotificationTextLimit, 'a'), stored, isCut);
  EXPECT_EQ(stored.size(), HLNotificationTextLimit);
  EXPECT_FALSE(isCut);
  HLStoreNotificationText(std::string(HLNotificationTextLimit - 1, 'a') + "é", stored, isCut);
  EXPECT_EQ(stored, std::string(HLNotificationTextLimit - 1, 'a'));
  EXPECT_TRUE(isCut);
}

}  // namespace
