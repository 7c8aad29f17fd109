#include "app/dismiss_feedback.h"

#include <gtest/gtest.h>

namespace {

TEST(BusyTitle, IsEmptyBesideAnImage) {
  EXPECT_EQ(HLBusyTitle(false), "HL…");
  EXPECT_EQ(HLBusyTitle(true), "");
}

TEST(ProgressTitle, IsTheCount) {
  EXPECT_EQ(HLProgressTitle(false, 5), "HL 5");
  EXPECT_EQ(HLProgressTitle(true, 5), "5");
  EXPECT_EQ(HLProgressTitle(false, 1), "HL 1");
  EXPECT_EQ(HLProgressTitle(true, 123), "123");
}

TEST(ProgressTitle, IsTheBusyTitleBelowOne) {
  for (const std::int64_t count : {0, -1, -7}) {
    EXPECT_EQ(HLProgressTitle(false, count), "HL…");
    EXPECT_EQ(HLProgressTitle(true, count), "");
  }
}

TEST(ElapsedMilliseconds, RoundHalvesAwayFromZero) {
  EXPECT_EQ(HLElapsedMilliseconds(0.0014995), 1);
  EXPECT_EQ(HLElapsedMilliseconds(0.0015), 2);
  EXPECT_EQ(HLElapsedMilliseconds(0), 0);
  EXPECT_EQ(HLElapsedMilliseconds(-0.0015), -2);
  EXPECT_EQ(HLElapsedMilliseconds(12.3456), 12346);
}

TEST(FailureReason, NamesTheCauseInOneSentence) {
  const auto reason = [](HLDismissStatus status, std::int64_t remaining = 0, bool hasBanner = false) {
    return HLFailureReason({status, 5, remaining}, hasBanner, "Name").value_or("none");
  };
  EXPECT_EQ(reason(HLDismissStatusSuccess, 3, true), "none");
  EXPECT_EQ(reason(HLDismissStatusNothing), "none");
  EXPECT_EQ(reason(HLDismissStatusNothing, 0, true),
            "Name finds no close button on the notifications that your desktop shows.");
  EXPECT_EQ(reason(HLDismissStatusAccessDenied), "Name cannot see your notifications, because accessibility is off.");
  EXPECT_EQ(reason(HLDismissStatusNotificationCenterUnavailable), "Name finds no program that shows notifications.");
  EXPECT_EQ(reason(HLDismissStatusFailed), "Some notifications could not be closed.");
  EXPECT_EQ(reason(HLDismissStatusFailed, 1), "One notification could not be closed.");
  EXPECT_EQ(reason(HLDismissStatusFailed, 2), "2 notifications could not be closed.");
  EXPECT_EQ(reason(static_cast<HLDismissStatus>(9), 2), "2 notifications could not be closed.");
}

}  // namespace
