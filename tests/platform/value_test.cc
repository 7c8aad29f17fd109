#include "platform/value.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "platform/geometry.h"

namespace {

TEST(Value, StartsMissing) {
  EXPECT_TRUE(HLValue().isMissing());
  EXPECT_FALSE(HLValue(false).isMissing());
  EXPECT_FALSE(HLValue(std::string()).isMissing());
  EXPECT_FALSE(HLValue(HLArray()).isMissing());
}

TEST(Value, AnswersOnlyToItsOwnType) {
  const HLValue integer(std::int64_t{1});
  ASSERT_NE(integer.as<std::int64_t>(), nullptr);
  EXPECT_EQ(*integer.as<std::int64_t>(), 1);
  EXPECT_EQ(integer.as<bool>(), nullptr);
  EXPECT_EQ(integer.as<double>(), nullptr);
  EXPECT_EQ(integer.as<std::string>(), nullptr);
  EXPECT_EQ(HLValue(HLPoint{1, 2}).as<HLSize>(), nullptr);
}

TEST(Dictionary, ComparesWholeKeys) {
  const HLDictionary dictionary = {{"a", std::string("1")}, {"ab", std::string("2")}, {"", std::string("3")}};
  EXPECT_EQ(*HLDictionaryValue(dictionary, "ab")->as<std::string>(), "2");
  EXPECT_EQ(*HLDictionaryValue(dictionary, "")->as<std::string>(), "3");
  EXPECT_EQ(HLDictionaryValue(dictionary, "A"), nullptr);
  EXPECT_EQ(HLDictionaryValue({}, "a"), nullptr);
}

TEST(NumberText, PrintsIntegersAndBooleans) {
  EXPECT_EQ(HLNumberText(std::int64_t{0}), "0");
  EXPECT_EQ(HLNumberText(std::int64_t{-42}), "-42");
  EXPECT_EQ(HLNumberText(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(HLNumberText(true), "1");
  EXPECT_EQ(HLNumberText(false), "0");
}

TEST(NumberText, PrintsRealsWithSixteenDigits) {
  EXPECT_EQ(HLNumberText(1.0), "1");
  EXPECT_EQ(HLNumberText(0.5), "0.5");
  EXPECT_EQ(HLNumberText(-0.0), "-0");
  EXPECT_EQ(HLNumberText(1e16), "1e+16");
  EXPECT_EQ(HLNumberText(1e15), "1000000000000000");
  EXPECT_EQ(HLNumberText(0.1 + 0.2), "0.3");
  EXPECT_EQ(HLNumberText(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(HLNumberText(0.00001), "1e-05");
}

TEST(NumberText, IsEmptyForOtherTypes) {
  EXPECT_EQ(HLNumberText(HLValue()), std::nullopt);
  EXPECT_EQ(HLNumberText(std::string("1")), std::nullopt);
  EXPECT_EQ(HLNumberText(HLPoint{1, 1}), std::nullopt);
  EXPECT_EQ(HLNumberText(HLArray()), std::nullopt);
}

TEST(IntegerPart, CutsARealTowardsZero) {
  EXPECT_EQ(HLIntegerPart(std::int64_t{-42}), -42);
  EXPECT_EQ(HLIntegerPart(12.9), 12);
  EXPECT_EQ(HLIntegerPart(-12.9), -12);
  EXPECT_EQ(HLIntegerPart(0.00001), 0);
  EXPECT_EQ(HLIntegerPart(9223372036854774784.0), 9223372036854774784);
}

TEST(IntegerPart, IsMissingBeyond64Bits) {
  for (const double real : {9223372036854775808.0, -9223372036854775808.0, 1e300, std::nan("")}) {
    EXPECT_EQ(HLIntegerPart(real), std::nullopt);
  }
}

TEST(IntegerPart, IsMissingForOtherTypes) {
  EXPECT_EQ(HLIntegerPart(true), std::nullopt);
  EXPECT_EQ(HLIntegerPart(std::string("1")), std::nullopt);
  EXPECT_EQ(HLIntegerPart(HLValue()), std::nullopt);
}

TEST(Rect, IsNullOnlyByItsOrigin) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  EXPECT_TRUE(HLRect().isNull());
  EXPECT_FALSE((HLRect{0, 0, 0, 0}).isNull());
  EXPECT_FALSE((HLRect{infinity, 0, 0, 0}).isNull());
  EXPECT_TRUE((HLRect{infinity, infinity, 5, 5}).isNull());
  EXPECT_EQ((HLRect{-10, 0, 30, 5}).maxX(), 20);
}

}  // namespace
