#include "core/scan/records.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

HLDismissTarget targetAt(double x, double y, double width, double height) {
  return {nullptr, "AXPress", {x, y, width, height}, 92, "axbutton close", "close-words"};
}

TEST(CompactSnapshot, JoinsWordsWithOneBlank) {
  EXPECT_EQ(HLCompactSnapshot("  Close\n\n Notification\t"), "Close Notification");
  EXPECT_EQ(HLCompactSnapshot("Close"), "Close");
  EXPECT_EQ(HLCompactSnapshot("a      b"), "a b");
  EXPECT_EQ(HLCompactSnapshot("a\tb"), "a b");
  EXPECT_EQ(HLCompactSnapshot("a\r\nb \t c"), "a b c");
}

TEST(CompactSnapshot, TrimsEitherEndAlone) {
  for (const std::string text : {" a b", "a b ", "\ta b", "a b\n", "a b\u00A0"})
    EXPECT_EQ(HLCompactSnapshot(text), "a b") << text;
}

TEST(CompactSnapshot, IsEmptyForBlankTexts) {
  EXPECT_EQ(HLCompactSnapshot(""), "");
  EXPECT_EQ(HLCompactSnapshot("\n\t \n  \t"), "");
  EXPECT_EQ(HLCompactSnapshot("\u00A0\u3000\u2029"), "");
}

TEST(CompactSnapshot, KeepsCaseAndForeignLetters) {
  EXPECT_EQ(HLCompactSnapshot(" Größe  ÄÖ 日本 😀 "), "Größe ÄÖ 日本 😀");
}

TEST(CompactSnapshot, SplitsAtEveryUnicodeBlank) {
  const std::vector<std::string> blanks = {"\t",     "\n",     "\v",     "\f",     "\r",     " ",      "\u0085",
                                           "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
                                           "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u200B",
                                           "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};
  for (std::size_t i = 0; i < blanks.size(); ++i) {
    EXPECT_EQ(HLCompactSnapshot(blanks[i] + "a" + blanks[i] + blanks[i] + "b" + blanks[i]), "a b") << "blank " << i;
  }
}

TEST(CompactSnapshot, KeepsOtherInvisibleCharacters) {
  for (const std::string other :
       {"\b", "\x0E", "\x1C", "\x1F", "\u0084", "\u0086", "\u180E", "\u200C", "\u2060", "\uFEFF"}) {
    EXPECT_EQ(HLCompactSnapshot("a" + other + "b"), "a" + other + "b");
  }
}

TEST(DeduplicationKey, HoldsActionRoundedFrameAndSnapshot) {
  EXPECT_EQ(HLDeduplicationKeyForTarget(targetAt(1220.4, 38.6, 16, 16)), "AXPress|1220|39|16|16|axbutton close");
}

TEST(DeduplicationKey, OmitsAMissingFrame) {
  HLDismissTarget target;
  target.action = "Name:Close";
  EXPECT_EQ(HLDeduplicationKeyForTarget(target), "Name:Close|");
  target.snapshot = "Mail|Hello";
  EXPECT_EQ(HLDeduplicationKeyForTarget(target), "Name:Close|Mail|Hello");
}

TEST(DeduplicationKey, RoundsHalvesAwayFromZero) {
  EXPECT_EQ(HLDeduplicationKeyForTarget(targetAt(10.5, -10.5, 15.5, 2.5)), "AXPress|11|-11|16|3|axbutton close");
  EXPECT_EQ(HLDeduplicationKeyForTarget(targetAt(10.4999, -10.4999, 15.51, 0.5)), "AXPress|10|-10|16|1|axbutton close");
}

TEST(DeduplicationKey, PrintsSmallNegativesAsNegativeZero) {
  EXPECT_EQ(HLDeduplicationKeyForTarget(targetAt(-0.4, 0.4, 16, 16)), "AXPress|-0|0|16|16|axbutton close");
}

TEST(DeduplicationKey, LargeNumbersAreWrittenOut) {
  EXPECT_EQ(HLDeduplicationKeyForTarget(targetAt(-2147483648.0, 1e15, 16, 16)),
            "AXPress|-2147483648|1000000000000000|16|16|axbutton close");
}

TEST(DeduplicationKey, IgnoresScoreAndReason) {
  HLDismissTarget other = targetAt(1, 2, 3, 4);
  other.score = 200;
  other.reason = "explicit-action";
  EXPECT_EQ(HLDeduplicationKeyForTarget(other), HLDeduplicationKeyForTarget(targetAt(1, 2, 3, 4)));
}

TEST(DeduplicationKey, DistinguishesLetterCase) {
  HLDismissTarget snapshot = targetAt(1, 2, 3, 4);
  snapshot.snapshot = "AXButton close";
  EXPECT_NE(HLDeduplicationKeyForTarget(snapshot), HLDeduplicationKeyForTarget(targetAt(1, 2, 3, 4)));
  HLDismissTarget action = targetAt(1, 2, 3, 4);
  action.action = "axpress";
  EXPECT_NE(HLDeduplicationKeyForTarget(action), HLDeduplicationKeyForTarget(targetAt(1, 2, 3, 4)));
}

TEST(DismissTarget, DefaultsToEmptyTexts) {
  const HLDismissTarget target;
  EXPECT_EQ(target.action, "");
  EXPECT_EQ(target.snapshot, "");
  EXPECT_EQ(target.reason, "");
  EXPECT_EQ(target.score, 0);
  EXPECT_TRUE(target.frame.isNull());
}

TEST(DismissTarget, CutsSnapshotsAt180Units) { EXPECT_EQ(HLSnapshotLimit, 180U); }

}  // namespace
