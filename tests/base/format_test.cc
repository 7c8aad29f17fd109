#include "base/format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace {

TEST(Format, PlainTextStaysAsItIs) {
  EXPECT_EQ(HLFormat(""), "");
  EXPECT_EQ(HLFormat("watching\n"), "watching\n");
  EXPECT_EQ(HLFormat("größe 😀"), "größe 😀");
}

TEST(Format, AcceptsTextForBothPlaceholders) {
  const std::string text = "text";
  EXPECT_EQ(HLFormat("%@|%s|%@|%s", text, text, std::string_view("view"), "literal"), "text|text|view|literal");
  EXPECT_EQ(HLFormat("%@", std::string()), "");
  EXPECT_EQ(HLFormat("<%@>", std::string("a\0b", 3)), std::string("<a\0b>", 5));
}

TEST(Format, IgnoresPlaceholdersInArguments) {
  EXPECT_EQ(HLFormat("%@ %@", std::string("%d %@ %%"), std::string("100%")), "%d %@ %% 100%");
}

TEST(Format, PrintsIntegersAsDecimals) {
  EXPECT_EQ(HLFormat("%d %d %d", 0, -7, std::numeric_limits<std::int32_t>::max()), "0 -7 2147483647");
  EXPECT_EQ(HLFormat("%ld %ld", std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()),
            "-9223372036854775808 9223372036854775807");
  EXPECT_EQ(HLFormat("%lu %lu", std::size_t{0}, std::numeric_limits<std::uint64_t>::max()), "0 18446744073709551615");
}

TEST(Format, PadsIntegersWithZeros) {
  EXPECT_EQ(HLFormat("%02ld-%03d", std::int64_t{0}, 7), "00-007");
  EXPECT_EQ(HLFormat("%02ld %02ld", std::int64_t{10}, std::int64_t{123}), "10 123");
  EXPECT_EQ(HLFormat("%02d %03d", -5, -5), "-5 -05");
  EXPECT_EQ(HLFormat("%01d %09ld", 7, std::int64_t{7}), "7 000000007");
}

TEST(Format, PrintsUnsignedNumbers) { EXPECT_EQ(HLFormat("Key %u", 90U), "Key 90"); }

TEST(Format, PrintsTheGivenDecimals) {
  EXPECT_EQ(HLFormat("%.0f %.1f %.2f %f %.10f", 1.0, 2.0, 3.14159, 0.5, 0.1), "1 2.0 3.14 0.500000 0.1000000000");
  EXPECT_EQ(HLFormat("%.0f", 1e15), "1000000000000000");
  EXPECT_EQ(HLFormat("%.0f", -1e22), "-10000000000000000000000");
  EXPECT_EQ(HLFormat("%.0f", std::numeric_limits<double>::max()).size(), 309U);
}

TEST(Format, RoundsTiesToEven) {
  EXPECT_EQ(HLFormat("%.0f %.0f %.0f %.0f", 0.5, 1.5, 2.5, 2.51), "0 2 2 3");
  EXPECT_EQ(HLFormat("%.1f %.1f %.1f", 0.25, 0.75, 0.05), "0.2 0.8 0.1");
  EXPECT_EQ(HLFormat("%.1f", 99.96), "100.0");
}

TEST(Format, NegativeZeroKeepsItsSign) {
  EXPECT_EQ(HLFormat("%.0f %.0f %.1f", -0.0, -0.4, -0.04), "-0 -0 -0.0");
  EXPECT_EQ(HLFormat("%.1f", 0.0), "0.0");
}

TEST(Format, WritesBooleansAsTrueAndFalse) { EXPECT_EQ(HLFormat("%@ %s", true, false), "true false"); }

TEST(Format, PrintsTwoPercentSignsAsOne) { EXPECT_EQ(HLFormat("%% %d%% %%", 5), "% 5% %"); }

TEST(Format, AcceptsAdjacentPlaceholders) {
  EXPECT_EQ(HLFormat("%@%d%@%.1f%lu", "a", 1, "b", 2.0, std::size_t{3}), "a1b2.03");
}

TEST(Format, PrintsEveryMessageInUse) {
  EXPECT_EQ(
      HLFormat("batch actions eligible=%lu attempted=%lu clear=%ld", std::size_t{3}, std::size_t{2}, std::int64_t{1}),
      "batch actions eligible=3 attempted=2 clear=1");
  EXPECT_EQ(HLFormat("frame=(%.1f,%.1f,%.1f,%.1f)", 1.0, -2.25, 3.0, 4.0), "frame=(1.0,-2.2,3.0,4.0)");
  EXPECT_EQ(HLFormat("%s|%ld|%ld\n", "success", std::int64_t{3}, std::int64_t{0}), "success|3|0\n");
}

constexpr bool reads(std::string_view format, char kind, int precision, std::size_t length) {
  const HLFormatPlaceholder placeholder = HLParsePlaceholder(format);
  return placeholder.kind == kind && placeholder.precision == precision && placeholder.length == length;
}

TEST(Placeholder, AcceptsUsedKinds) {
  static_assert(reads("%@ and more", '@', 6, 2));
  static_assert(reads("%s", '@', 6, 2));
  static_assert(reads("%d", 'd', 1, 2));
  static_assert(reads("%ld", 'd', 1, 3));
  static_assert(reads("%lu", 'u', 1, 3));
  static_assert(reads("%u", 'u', 1, 2));
  static_assert(reads("%02ld", 'd', 2, 5));
  static_assert(reads("%f", 'f', 6, 2));
  static_assert(reads("%.0f", 'f', 0, 4));
  static_assert(reads("%.12fx", 'f', 12, 5));
  static_assert(reads("%%", '%', 6, 2));
}

TEST(Placeholder, RejectsOtherKinds) {
  static_assert(HLParsePlaceholder("%").length == 0);
  static_assert(HLParsePlaceholder("%x").length == 0);
  static_assert(HLParsePlaceholder("%02f").length == 0);
  static_assert(HLParsePlaceholder("%02@").length == 0);
  static_assert(HLParsePlaceholder("%00d").length == 0);
  static_assert(HLParsePlaceholder("%l").length == 0);
  static_assert(HLParsePlaceholder("%lf").length == 0);
  static_assert(HLParsePlaceholder("%l@").length == 0);
  static_assert(HLParsePlaceholder("%ls").length == 0);
  static_assert(HLParsePlaceholder("%5d").length == 0);
  static_assert(HLParsePlaceholder("%.3d").length == 0);
  static_assert(HLParsePlaceholder("%.3").length == 0);
  static_assert(HLParsePlaceholder("% d").length == 0);
}

}  // namespace
