#include "core/dismissal/ordering.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

HLDismissTarget named(std::string name, std::int64_t score, HLRect frame = {}) {
  return {nullptr, "AXPress", frame, score, std::move(name), ""};
}

std::vector<std::string> sortedNames(std::vector<HLDismissTarget> targets) {
  std::vector<std::string> names;
  for (const HLDismissTarget& target : HLSortedTargets(std::move(targets))) names.push_back(target.snapshot);
  return names;
}

using Names = std::vector<std::string>;

TEST(TargetOrder, PutsHigherScoresFirst) {
  EXPECT_EQ(sortedNames({named("200", 200, {900, 0, 10, 10}), named("260", 260, {0, 900, 10, 10})}),
            (Names{"260", "200"}));
  EXPECT_EQ(sortedNames({named("framed", 199, {1, 1, 1, 1}), named("frameless", 200)}), (Names{"frameless", "framed"}));
}

TEST(TargetOrder, ComparesSignedScores) {
  EXPECT_EQ(sortedNames({named("-1", -1), named("1", 1), named("least", std::numeric_limits<std::int64_t>::min()),
                         named("most", std::numeric_limits<std::int64_t>::max())}),
            (Names{"most", "1", "-1", "least"}));
}

TEST(TargetOrder, PutsHigherPositionsFirst) {
  EXPECT_EQ(sortedNames({named("y 50", 92, {300, 50, 10, 10}), named("y 10", 92, {0, 10, 10, 10}),
                         named("y -20", 92, {0, -20, 10, 10})}),
            (Names{"y -20", "y 10", "y 50"}));
}

TEST(TargetOrder, PutsTheRightmostFirst) {
  EXPECT_EQ(sortedNames({named("x 100", 92, {100, 50, 10, 10}), named("x 300", 92, {300, 50, 10, 10}),
                         named("x -5", 92, {-5, 50, 10, 10})}),
            (Names{"x 300", "x 100", "x -5"}));
}

TEST(TargetOrder, PutsTargetsWithoutFrameLast) {
  EXPECT_EQ(sortedNames({named("none", 92), named("far down", 92, {0, 1e12, 1, 1}), named("less", 91, {0, 0, 1, 1})}),
            (Names{"far down", "none", "less"}));
  EXPECT_EQ(HLCompareTargets(named("a", 92), named("b", 92)), 0);
}

TEST(TargetOrder, IgnoresSizeAndTexts) {
  const HLDismissTarget a{nullptr, "AXPress", {10, 20, 30, 40}, 92, "a", "x"};
  const HLDismissTarget b{nullptr, "Name:Close", {10, 20, 1, 2}, 92, "b", "y"};
  EXPECT_EQ(HLCompareTargets(a, b), 0);
  EXPECT_EQ(HLCompareTargets(b, a), 0);
}

TEST(TargetOrder, ReturnsASignedComparison) {
  const HLDismissTarget target = named("target", 92, {20, 10, 1, 1});
  for (const HLDismissTarget& later :
       {named("score", 91, {20, 10, 1, 1}), named("height", 92, {20, 11, 1, 1}), named("left", 92, {19, 10, 1, 1})}) {
    EXPECT_LT(HLCompareTargets(target, later), 0) << later.snapshot;
    EXPECT_GT(HLCompareTargets(later, target), 0) << later.snapshot;
  }
}

TEST(TargetOrder, PrefersTheSecondWithUnknownCoordinates) {
  const double unknown = std::numeric_limits<double>::quiet_NaN();
  const HLDismissTarget known = named("known", 92, {10, 10, 1, 1});
  for (const HLRect& frame : {HLRect{10, unknown, 1, 1}, HLRect{unknown, 10, 1, 1}}) {
    EXPECT_GT(HLCompareTargets(named("unknown", 92, frame), known), 0);
    EXPECT_GT(HLCompareTargets(known, named("unknown", 92, frame)), 0);
  }
}

TEST(TargetOrder, IsStableForEqualTargets) {
  std::vector<HLDismissTarget> targets;
  Names names;
  for (int i = 0; i < 40; ++i) {
    names.push_back(std::to_string(i));
    targets.push_back(named(names.back(), 92, {0, 0, 1, 1}));
  }
  EXPECT_EQ(sortedNames(targets), names);
}

TEST(TargetOrder, KeepsZeroOrOneTarget) {
  EXPECT_EQ(sortedNames({}), Names{});
  EXPECT_EQ(sortedNames({named("only", 1)}), Names{"only"});
}

}  // namespace
