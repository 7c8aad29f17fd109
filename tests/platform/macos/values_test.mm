// The system's objects as values.
#include "platform/macos/values/values.h"

#import <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <optional>
#include <string>

#include "platform/json.h"
#include "platform/macos/values/element.h"

namespace {

HLValue valueOf(id object) { return HLValueOfObject((__bridge CFTypeRef)object); }

// nullopt for a value of another type, and for none.
template <class T>
std::optional<T> contentOf(const HLValue* value) {
  const T* content = value == nullptr ? nullptr : value->as<T>();
  return content == nullptr ? std::nullopt : std::optional(*content);
}
template <class T>
std::optional<T> contentOf(const HLValue& value) {
  return contentOf<T>(&value);
}

TEST(Values, KeepKindsOfNumbers) {
  EXPECT_EQ(contentOf<bool>(valueOf(@YES)), true);
  EXPECT_EQ(contentOf<bool>(valueOf([NSNumber numberWithBool:NO])), false);
  EXPECT_EQ(contentOf<std::int64_t>(valueOf(@1)), 1);
  EXPECT_EQ(contentOf<std::int64_t>(valueOf(@(INT64_MIN))), INT64_MIN);
  EXPECT_EQ(contentOf<double>(valueOf(@1.5)), 1.5);
  EXPECT_EQ(contentOf<double>(valueOf(@1.0)), 1.0);
  EXPECT_EQ(contentOf<double>(valueOf(@(UINT64_MAX))), 18446744073709551616.0);
  EXPECT_EQ(contentOf<double>(valueOf(@(UINT64_C(1) << 63))), 9223372036854775808.0);
  EXPECT_EQ(contentOf<double>(valueOf([NSDecimalNumber decimalNumberWithString:@"1e20"])), 1e20);
}

TEST(Values, KeepUnpairedSurrogatesInStrings) {
  const unichar units[] = {u'a', 0xD83D, 0xD83D, 0xDE00, 0xDE00};
  EXPECT_EQ(contentOf<std::string>(valueOf([NSString stringWithCharacters:units length:5])),
            "a\xED\xA0\xBD\xF0\x9F\x98\x80\xED\xB8\x80");
  EXPECT_EQ(contentOf<std::string>(valueOf(@"")), "");
  EXPECT_EQ(contentOf<std::string>(valueOf(@"e\u0301\0x")), std::string("e\u0301\0x", 5));
}

TEST(Values, GoThroughStringsUnchanged) {
  for (const std::string text : {"", "plain", "Zoë \U0001F600", "\xED\xA0\xBD half", "half \xED\xB8\x80"}) {
    EXPECT_EQ(HLTextOfString(HLMakeString(text)), text);
    EXPECT_EQ(HLTextOfCFString(HLMakeCFString(text).get()), text);
  }
}

TEST(Values, ReadBoxedPointsAndSizes) {
  const CGPoint point = CGPointMake(-1440, 12.5);
  const CGSize size = CGSizeMake(360, 80);
  const CGRect rectangle = CGRectMake(1, 2, 3, 4);
  const HLCFRef<AXValueRef> boxedPoint(AXValueCreate(kAXValueTypeCGPoint, &point));
  const HLCFRef<AXValueRef> boxedSize(AXValueCreate(kAXValueTypeCGSize, &size));
  const HLCFRef<AXValueRef> boxedRectangle(AXValueCreate(kAXValueTypeCGRect, &rectangle));
  EXPECT_EQ(contentOf<HLPoint>(HLValueOfObject(boxedPoint.get())), (HLPoint{-1440, 12.5}));
  EXPECT_EQ(contentOf<HLSize>(HLValueOfObject(boxedSize.get())), (HLSize{360, 80}));
  EXPECT_TRUE(HLValueOfObject(boxedRectangle.get()).isMissing());
}

TEST(Values, ReferToTheSameElement) {
  const HLCFRef<AXUIElementRef> element(AXUIElementCreateApplication(getpid()));
  const HLValue first = HLValueOfObject(element.get());
  const HLValue second = HLValueOfObject(element.get());
  ASSERT_NE(first.as<HLElementRef>(), nullptr);
  ASSERT_NE(second.as<HLElementRef>(), nullptr);
  EXPECT_TRUE((*first.as<HLElementRef>())->isEqual(**second.as<HLElementRef>()));
  EXPECT_EQ((*first.as<HLElementRef>())->hash(), (*second.as<HLElementRef>())->hash());
  EXPECT_EQ(HLSystemElement(**first.as<HLElementRef>()), element.get());
}

TEST(Values, KeepOnlyUsableMembersOfCollections) {
  const HLValue list = valueOf(@[ @"one", NSNull.null, [NSDate date], @[ @2 ] ]);
  ASSERT_NE(list.as<HLArray>(), nullptr);
  const HLArray& members = *list.as<HLArray>();
  ASSERT_EQ(members.size(), 4U);
  EXPECT_EQ(contentOf<std::string>(members[0]), "one");
  EXPECT_TRUE(members[1].isMissing());
  EXPECT_TRUE(members[2].isMissing());
  ASSERT_NE(members[3].as<HLArray>(), nullptr);
  ASSERT_EQ(members[3].as<HLArray>()->size(), 1U);
  EXPECT_EQ(contentOf<std::int64_t>(members[3].as<HLArray>()->front()), 2);

  const HLDictionary dictionary = HLDictionaryOfObject(@{@"key" : @"value", @5 : @"number for a key"});
  ASSERT_EQ(dictionary.size(), 1U);
  EXPECT_EQ(contentOf<std::string>(HLDictionaryValue(dictionary, "key")), "value");
  EXPECT_TRUE(HLDictionaryOfObject(nil).empty());
}

TEST(Values, NestedTooDeepAreMissing) {
  // Not much deeper than that: the system gives up one array within the other, on the stack.
  NSArray* nested = @[];
  for (int i = 0; i < 2'000; ++i) nested = @[ nested ];
  const HLValue value = valueOf(nested);
  const HLValue* member = &value;
  int depth = 0;
  for (; member->as<HLArray>() != nullptr && !member->as<HLArray>()->empty(); ++depth) {
    member = &member->as<HLArray>()->front();
  }
  EXPECT_EQ(depth, 501);
  EXPECT_TRUE(member->isMissing());
}

TEST(Json, NumbersBeyond64BitsAreReal) {
  const auto document = HLReadJson(R"({"most": 9223372036854775807, "more": 9223372036854775808, "whole": 12.0})");
  ASSERT_TRUE(document.has_value());
  ASSERT_NE(document->as<HLDictionary>(), nullptr);
  const HLDictionary& members = *document->as<HLDictionary>();
  EXPECT_EQ(contentOf<std::int64_t>(HLDictionaryValue(members, "most")), INT64_MAX);
  EXPECT_EQ(contentOf<double>(HLDictionaryValue(members, "more")), 9223372036854775808.0);
  EXPECT_NE(HLDictionaryValue(members, "whole"), nullptr);
}

TEST(Json, BooleansAndNullsAreNoNumbers) {
  const auto document = HLReadJson(R"([true, false, null, 1, "\ud83d\ude00"])");
  ASSERT_TRUE(document.has_value());
  ASSERT_NE(document->as<HLArray>(), nullptr);
  const HLArray& members = *document->as<HLArray>();
  ASSERT_EQ(members.size(), 5U);
  EXPECT_EQ(contentOf<bool>(members[0]), true);
  EXPECT_EQ(contentOf<bool>(members[1]), false);
  EXPECT_TRUE(members[2].isMissing());
  EXPECT_EQ(contentOf<std::int64_t>(members[3]), 1);
  EXPECT_EQ(contentOf<std::string>(members[4]), "\U0001F600");
}

TEST(Json, WhatIsNoDocumentIsNothing) {
  for (const char* text : {"", "{", "[,1]", "{\"a\" 1}", "nonsense"}) EXPECT_FALSE(HLReadJson(text)) << text;
}

}  // namespace
