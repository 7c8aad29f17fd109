#include "platform/macos/system/macos_property_lists.h"

#import <Foundation/Foundation.h>

#include "platform/macos/values/values.h"

std::optional<HLDictionary> HLMacPropertyLists::readDictionary(const std::string& path) {
  @autoreleasepool {
    NSData* data = [NSData dataWithContentsOfFile:HLMakeString(path)];
    if (data == nil) return std::nullopt;
    NSObject* list = [NSPropertyListSerialization propertyListWithData:data
                                                               options:NSPropertyListImmutable
                                                                format:nil
                                                                 error:nil];
    if (![list isKindOfClass:NSDictionary.class]) return std::nullopt;
    return HLDictionaryOfObject(static_cast<NSDictionary*>(list));
  }
}
