// How a stored value is read as a number, a truth or a text.
#include "platform/application/user_defaults.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

// Holds one value under one key.
class OneDefault : public HLUserDefaults {
 public:
  explicit OneDefault(HLValue value) : value_(std::move(value)) {}
  void registerDefaults(const HLDictionary&) override {}
  HLValue value(std::string_view key) override { return key == "key" ? value_ : HLValue(); }
  void setValue(std::string_view, const HLValue&) override {}

 private:
  const HLValue value_;
};

std::int64_t integer(HLValue value) {
  OneDefault defaults(std::move(value));
  return HLIntegerDefault(defaults, "key");
}
bool truth(HLValue value) {
  OneDefault defaults(std::move(value));
  return HLBooleanDefault(defaults, "key");
}
std::optional<std::string> text(HLValue value) {
  OneDefault defaults(std::move(value));
  return HLStringDefault(defaults, "key");
}
HLValue string(const char* characters) { return std::string(characters); }
HLValue number(std::int64_t value) { return value; }

TEST(IntegerDefault, TruncatesStoredNumbers) {
  EXPECT_EQ(integer(number(45)), 45);
  EXPECT_EQ(integer(number(-1)), -1);
  EXPECT_EQ(integer(number(kMost)), kMost);
  EXPECT_EQ(integer(true), 1);
  EXPECT_EQ(integer(false), 0);
  EXPECT_EQ(integer(12.9), 12);
  EXPECT_EQ(integer(-12.9), -12);
}

TEST(IntegerDefault, ClampsTo64Bits) {
  EXPECT_EQ(integer(1e300), kMost);
  EXPECT_EQ(integer(-1e300), kLeast);
  EXPECT_EQ(integer(9223372036854775808.0), kMost);
  EXPECT_EQ(integer(-9223372036854775808.0), kLeast);
  EXPECT_EQ(integer(9223372036854774784.0), 9223372036854774784);
  EXPECT_EQ(integer(std::numeric_limits<double>::infinity()), kMost);
  EXPECT_EQ(integer(-std::numeric_limits<double>::infinity()), kLeast);
  EXPECT_EQ(integer(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(IntegerDefault, ReadsTheLeadingNumberOfText) {
  EXPECT_EQ(integer(string("45")), 45);
  EXPECT_EQ(integer(string(" -7 keys")), -7);
  EXPECT_EQ(integer(string("12.9")), 12);
  EXPECT_EQ(integer(string("keys 7")), 0);
  EXPECT_EQ(integer(string("")), 0);
}

TEST(IntegerDefault, IsZeroForOtherTypes) {
  EXPECT_EQ(integer({}), 0);
  EXPECT_EQ(integer(HLArray{number(1)}), 0);
  EXPECT_EQ(integer(HLDictionary{{"key", number(1)}}), 0);
}

TEST(BooleanDefault, IsTrueForNonzeroNumbers) {
  EXPECT_TRUE(truth(true));
  EXPECT_FALSE(truth(false));
  EXPECT_TRUE(truth(number(1)));
  EXPECT_TRUE(truth(number(-1)));
  EXPECT_FALSE(truth(number(0)));
  EXPECT_TRUE(truth(2.0));
  EXPECT_FALSE(truth(0.0));
}

TEST(BooleanDefault, ReadsText) {
  for (const char* yes : {"YES", "yes", "y", "true", "True", "t", "1", "7", " yes", "01"}) {
    EXPECT_TRUE(truth(string(yes))) << yes;
  }
  for (const char* no : {"NO", "false", "0", "", "on", "  ", "-"}) EXPECT_FALSE(truth(string(no))) << no;
}

TEST(BooleanDefault, IsFalseForOtherTypes) {
  EXPECT_FALSE(truth({}));
  EXPECT_FALSE(truth(HLArray{true}));
}

TEST(StringDefault, AcceptsTextAndNumbers) {
  EXPECT_EQ(text(string("N")), "N");
  EXPECT_EQ(text(string("")), "");
  EXPECT_EQ(text(number(45)), "45");
  EXPECT_EQ(text(true), "1");
  EXPECT_EQ(text(0.5), "0.5");
  EXPECT_EQ(text({}), std::nullopt);
  EXPECT_EQ(text(HLArray{string("N")}), std::nullopt);
}

}  // namespace
