#include "platform/linux/files/linux_property_lists.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

constexpr const char* kXml = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
  <key>text</key><string>Ünïcode &amp; more</string>
  <key>yes</key><true/>
  <key>no</key><false/>
  <key>whole</key><integer>-42</integer>
  <key>real</key><real>2.5</real>
  <key>list</key><array><string>a</string><integer>1</integer></array>
  <key>inner</key><dict><key>b</key><string>c</string></dict>
  <key>date</key><date>2024-01-01T00:00:00Z</date>
  <key>data</key><data>AAEC</data>
</dict>
</plist>
)";

// {"a": 1, "b": "c"}, as macOS's own tool writes it.
constexpr char kBinary[] =
    "bplist00\xd2\x01\x02\x03\x04Qa\x51"
    "b\x10\x01Qc\x08\x0d\x0f\x11\x13\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00\x05\x00\x00\x00\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x15";

TEST(PropertyList, ReadsEveryKindOfXmlValue) {
  const std::optional<HLValue> list = HLParsePropertyList(kXml);
  ASSERT_TRUE(list);
  const HLDictionary* dictionary = list->as<HLDictionary>();
  ASSERT_NE(dictionary, nullptr);
  const auto value = [&](const char* key) { return HLDictionaryValue(*dictionary, key); };
  EXPECT_EQ(*value("text")->as<std::string>(), "Ünïcode & more");
  EXPECT_TRUE(*value("yes")->as<bool>());
  EXPECT_FALSE(*value("no")->as<bool>());
  EXPECT_EQ(*value("whole")->as<std::int64_t>(), -42);
  EXPECT_EQ(*value("real")->as<double>(), 2.5);
  const HLArray* array = value("list")->as<HLArray>();
  ASSERT_NE(array, nullptr);
  ASSERT_EQ(array->size(), 2U);
  EXPECT_EQ(*(*array)[0].as<std::string>(), "a");
  EXPECT_EQ(*(*array)[1].as<std::int64_t>(), 1);
  EXPECT_EQ(*HLDictionaryValue(*value("inner")->as<HLDictionary>(), "b")->as<std::string>(), "c");
  EXPECT_TRUE(value("date")->isMissing());
  EXPECT_TRUE(value("data")->isMissing());
}

TEST(PropertyList, EntriesKeepTheirOrder) {
  const std::optional<HLValue> list = HLParsePropertyList(kXml);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->as<HLDictionary>()->front().key, "text");
  EXPECT_EQ(list->as<HLDictionary>()->back().key, "data");
}

TEST(PropertyList, BinaryOnesAreReadToo) {
  const std::optional<HLValue> list = HLParsePropertyList({kBinary, sizeof kBinary - 1});
  ASSERT_TRUE(list);
  EXPECT_EQ(*HLDictionaryValue(*list->as<HLDictionary>(), "a")->as<std::int64_t>(), 1);
  EXPECT_EQ(*HLDictionaryValue(*list->as<HLDictionary>(), "b")->as<std::string>(), "c");
}

TEST(PropertyList, WhatIsNoneReadsAsNothing) {
  EXPECT_FALSE(HLParsePropertyList(""));
  EXPECT_FALSE(HLParsePropertyList("no property list"));
  EXPECT_FALSE(HLParsePropertyList("bplist00"));
  EXPECT_FALSE(HLParsePropertyList("<plist><dict><key>a</key>"));
  EXPECT_FALSE(HLReadPropertyList("/nonexistent/Info.plist"));
}

}  // namespace
