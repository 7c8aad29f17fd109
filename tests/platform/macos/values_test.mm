// The system's objects as values.
#include "platform/macos/values/values.h"

#import <ApplicationServices/ApplicationServices.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/json.h"
#include "platform/macos/values/element.h"

namespace {

HLValue valueOf(id object) { return HLValueOfObject((__bridge CFTypeRef)object); }

TEST(Values, OfNumbersKeepTheirKind) {
  EXPECT_TRUE(*valueOf(@YES).as<bool>());
  EXPECT_FALSE(*valueOf([NSNumber numberWithBool:NO]).as<bool>());
  EXPECT_EQ(*valueOf(@1).as<std::int64_t>(), 1);
  EXPECT_EQ(*valueOf(@(INT64_MIN)).as<std::int64_t>(), INT64_MIN);
  EXPECT_EQ(*valueOf(@1.5).as<double>(), 1.5);
  EXPECT_EQ(*valueOf(@1.0).as<double>(), 1.0);
  EXPECT_EQ(*valueOf(@(UINT64_MAX)).as<double>(), 18446744073709551616.0);
  EXPECT_EQ(*valueOf(@(UINT64_C(1) << 63)).as<double>(), 9223372036854775808.0);
  EXPECT_EQ(*valueOf([NSDecimalNumber decimalNumberWithString:@"1e20"]).as<double>(), 1e20);
}

TEST(Values, OfStringsKeepHalvesOfPairs) {
  const unichar units[] = {u'a', 0xD83D, 0xD83D, 0xDE00, 0xDE00};
  EXPECT_EQ(*valueOf([NSString stringWithCharacters:units length:5]).as<std::string>(),
            "a\xED\xA0\xBD\xF0\x9F\x98\x80\xED\xB8\x80");
  EXPECT_EQ(*valueOf(@"").as<std::string>(), "");
  EXPECT_EQ(*valueOf(@"e\u0301\0x").as<std::string>(), std::string("e\u0301\0x", 5));
}

TEST(Values, GoThroughStringsUnchanged) {
  for (const std::string text : {"", "plain", "Zoë \U0001F600", "\xED\xA0\xBD half", "half \xED\xB8\x80"}) {
    EXPECT_EQ(HLTextOfString(HLMakeString(text)), text);
    EXPECT_EQ(HLTextOfCFString(HLMakeCFString(text).get()), text);
  }
}

TEST(Values, OfBoxesAreGeometry) {
  const CGPoint point = CGPointMake(-1440, 12.5);
  const CGSize size = CGSizeMake(360, 80);
  const CGRect rectangle = CGRectMake(1, 2, 3, 4);
  const HLCFRef<AXValueRef> boxedPoint(AXValueCreate(kAXValueTypeCGPoint, &point));
  const HLCFRef<AXValueRef> boxedSize(AXValueCreate(kAXValueTypeCGSize, &size));
  const HLCFRef<AXValueRef> boxedRectangle(AXValueCreate(kAXValueTypeCGRect, &rectangle));
  EXPECT_EQ(*HLValueOfObject(boxedPoint.get()).as<HLPoint>(), (HLPoint{-1440, 12.5}));
  EXPECT_EQ(*HLValueOfObject(boxedSize.get()).as<HLSize>(), (HLSize{360, 80}));
  EXPECT_TRUE(HLValueOfObject(boxedRectangle.get()).isMissing());
}

TEST(Values, OfElementsAreHandlesOfTheSameNode) {
  const HLCFRef<AXUIElementRef> element(AXUIElementCreateApplication(getpid()));
  const HLValue first = HLValueOfObject(element.get());
  const HLValue second = HLValueOfObject(element.get());
  ASSERT_NE(first.as<HLElementRef>(), nullptr);
  EXPECT_TRUE((*first.as<HLElementRef>())->isEqual(**second.as<HLElementRef>()));
  EXPECT_EQ(HLSystemElement(**first.as<HLElementRef>()), element.get());
}

TEST(Values, OfCollectionsKeepWhatIsOfUse) {
  const HLValue list = valueOf(@[ @"one", NSNull.null, [NSDate date], @[ @2 ] ]);
  const HLArray& members = *list.as<HLArray>();
  ASSERT_EQ(members.size(), 4U);
  EXPECT_EQ(*members[0].as<std::string>(), "one");
  EXPECT_TRUE(members[1].isMissing());
  EXPECT_TRUE(members[2].isMissing());
  EXPECT_EQ(*members[3].as<HLArray>()->at(0).as<std::int64_t>(), 2);

  const HLDictionary dictionary = HLDictionaryOfObject(@{@"key" : @"value", @5 : @"number for a key"});
  ASSERT_EQ(dictionary.size(), 1U);
  EXPECT_EQ(*HLDictionaryValue(dictionary, "key")->as<std::string>(), "value");
  EXPECT_TRUE(HLDictionaryOfObject(nil).empty());
}

TEST(Values, NestedTooDeepAreMissing) {
  // Not much deeper than that: the system gives up one array within the other, on the stack.
  NSArray* nested = @[];
  for (int i = 0; i < 2'000; ++i) nested = @[ nested ];
  const HLValue value = valueOf(nested);
  const HLValue* member = &value;
  int depth = 0;
  for (; member->as<HLArray>() != nullptr; ++depth) member = &member->as<HLArray>()->at(0);
  EXPECT_EQ(depth, 501);
  EXPECT_TRUE(member->isMissing());
}

TEST(Json, NumbersBeyond64BitsAreReal) {
  const HLValue document = *HLReadJson(R"({"most": 9223372036854775807, "more": 9223372036854775808, "whole": 12.0})");
  const HLDictionary& members = *document.as<HLDictionary>();
  EXPECT_EQ(*HLDictionaryValue(members, "most")->as<std::int64_t>(), INT64_MAX);
  EXPECT_EQ(*HLDictionaryValue(members, "more")->as<double>(), 9223372036854775808.0);
  EXPECT_NE(HLDictionaryValue(members, "whole"), nullptr);
}

TEST(Json, BooleansAndNullsAreNoNumbers) {
  const HLValue document = *HLReadJson(R"([true, false, null, 1, "\ud83d\ude00"])");
  const HLArray& members = *document.as<HLArray>();
  EXPECT_TRUE(*members[0].as<bool>());
  EXPECT_FALSE(*members[1].as<bool>());
  EXPECT_TRUE(members[2].isMissing());
  EXPECT_EQ(*members[3].as<std::int64_t>(), 1);
  EXPECT_EQ(*members[4].as<std::string>(), "\U0001F600");
}

TEST(Json, WhatIsNoDocumentIsNothing) {
  for (const char* text : {"", "{", "[,1]", "{\"a\" 1}", "nonsense"}) EXPECT_FALSE(HLReadJson(text)) << text;
}

}  // namespace
