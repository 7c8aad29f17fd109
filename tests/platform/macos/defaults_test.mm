// User defaults and property lists.
#import <Foundation/Foundation.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/macos/system/macos_property_lists.h"
#include "platform/macos/system/macos_user_defaults.h"
#include "platform/macos/values/values.h"

namespace {

// A registered default stays registered until the process ends, so that the test of these has its own key.
NSString* const kRegisteredKey = @"HLRegisteredTestKey";

// The test program has its own domain, and the fixture removes what it stored there.
class UserDefaults : public testing::Test {
 protected:
  ~UserDefaults() override {
    for (NSString* key in @[ @"HLTestKey", kRegisteredKey ])
      [NSUserDefaults.standardUserDefaults removeObjectForKey:key];
  }

  // Reads the domain of a program without a bundle, which has the program's name.
  static NSNumber* stored() {
    return [NSUserDefaults.standardUserDefaults
        persistentDomainForName:NSProcessInfo.processInfo.processName][kRegisteredKey];
  }

  HLMacUserDefaults defaults_;
};

TEST_F(UserDefaults, AnswerWhatWasStored) {
  EXPECT_TRUE(defaults_.value("HLTestKey").isMissing());
  defaults_.setValue("HLTestKey", true);
  EXPECT_TRUE(*defaults_.value("HLTestKey").as<bool>());
  defaults_.setValue("HLTestKey", std::int64_t{-1});
  EXPECT_EQ(*defaults_.value("HLTestKey").as<std::int64_t>(), -1);
  defaults_.setValue("HLTestKey", std::string("⌃⌥⌘N"));
  EXPECT_EQ(*defaults_.value("HLTestKey").as<std::string>(), "⌃⌥⌘N");
}

TEST_F(UserDefaults, UseRegisteredValuesWithoutStoringThem) {
  const std::string key = HLTextOfString(kRegisteredKey);
  defaults_.registerDefaults({{key, std::int64_t{45}}});
  EXPECT_EQ(HLIntegerDefault(defaults_, key), 45);
  EXPECT_EQ(stored(), nil);
  defaults_.setValue(key, std::int64_t{7});
  EXPECT_EQ(HLIntegerDefault(defaults_, key), 7);
  EXPECT_EQ(stored().integerValue, 7);
}

TEST_F(UserDefaults, IgnoreValuesOfOtherKinds) {
  defaults_.setValue("HLTestKey", HLPoint{1, 2});
  EXPECT_TRUE(defaults_.value("HLTestKey").isMissing());
}

class PropertyLists : public testing::Test {
 protected:
  ~PropertyLists() override { [NSFileManager.defaultManager removeItemAtPath:HLMakeString(path_) error:nil]; }

  void write(id list, NSPropertyListFormat format) {
    NSData* data = [NSPropertyListSerialization dataWithPropertyList:list format:format options:0 error:nil];
    ASSERT_TRUE([data writeToFile:HLMakeString(path_) atomically:YES]);
  }

  const std::string path_ =
      HLTextOfString([NSTemporaryDirectory() stringByAppendingPathComponent:NSUUID.UUID.UUIDString]);
  HLMacPropertyLists lists_;
};

TEST_F(PropertyLists, AreReadInBothForms) {
  for (NSPropertyListFormat format : {NSPropertyListXMLFormat_v1_0, NSPropertyListBinaryFormat_v1_0}) {
    write(
        @{@"de" : @{@"CFBundleDisplayName" : @"Kurzbefehle"},
          @"count" : @3},
        format);
    const auto list = lists_.readDictionary(path_);
    ASSERT_TRUE(list.has_value());
    const HLDictionary& german = *HLDictionaryValue(*list, "de")->as<HLDictionary>();
    EXPECT_EQ(*HLDictionaryValue(german, "CFBundleDisplayName")->as<std::string>(), "Kurzbefehle");
    EXPECT_EQ(*HLDictionaryValue(*list, "count")->as<std::int64_t>(), 3);
  }
}

TEST_F(PropertyLists, AreRejectedUnlessValidDictionaries) {
  EXPECT_FALSE(lists_.readDictionary(path_).has_value());
  write(@[ @1 ], NSPropertyListXMLFormat_v1_0);
  EXPECT_FALSE(lists_.readDictionary(path_).has_value());
  [@"no list <" writeToFile:HLMakeString(path_) atomically:YES encoding:NSUTF8StringEncoding error:nil];
  EXPECT_FALSE(lists_.readDictionary(path_).has_value());
}

TEST_F(PropertyLists, ReadNamesOfTheShortcutsApplication) {
  const auto table = lists_.readDictionary("/System/Applications/Shortcuts.app/Contents/Resources/InfoPlist.loctable");
  ASSERT_TRUE(table.has_value());
  EXPECT_GT(table->size(), 10U);
}

}  // namespace
