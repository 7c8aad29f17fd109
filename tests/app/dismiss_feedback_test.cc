#include "app/dismiss_feedback.h"

#include <gtest/gtest.h>

namespace {

TEST(BusyTitle, IsShownByTheFlavorWithoutAnImage) {
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

TEST(ElapsedMilliseconds, AreRoundedHalvesAwayFromZero) {
  EXPECT_EQ(HLElapsedMilliseconds(0.0014995), 1);
  EXPECT_EQ(HLElapsedMilliseconds(0.0015), 2);
  EXPECT_EQ(HLElapsedMilliseconds(0), 0);
  EXPECT_EQ(HLElapsedMilliseconds(-0.0015), -2);
  EXPECT_EQ(HLElapsedMilliseconds(12.3456), 12346);
}

}  // namespace
