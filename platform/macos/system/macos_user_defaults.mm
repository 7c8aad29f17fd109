#include "platform/macos/system/macos_user_defaults.h"

#import <Foundation/Foundation.h>

#include "platform/macos/values/values.h"

void HLMacUserDefaults::registerDefaults(const HLDictionary& defaults) {
  @autoreleasepool {
    NSMutableDictionary<NSString*, id>* objects = [NSMutableDictionary dictionary];
    for (const HLDictionaryEntry& entry : defaults) objects[HLMakeString(entry.key)] = HLMakeObject(entry.value);
    [NSUserDefaults.standardUserDefaults registerDefaults:objects];
  }
}

HLValue HLMacUserDefaults::value(std::string_view key) {
  @autoreleasepool {
    const id object = [NSUserDefaults.standardUserDefaults objectForKey:HLMakeString(key)];
    return HLValueOfObject((__bridge CFTypeRef)object);
  }
}

void HLMacUserDefaults::setValue(std::string_view key, const HLValue& value) {
  @autoreleasepool {
    const id object = HLMakeObject(value);
    if (object != nil) [NSUserDefaults.standardUserDefaults setObject:object forKey:HLMakeString(key)];
  }
}
