#include "platform/json.h"

#import <Foundation/Foundation.h>

#include "platform/macos/values/values.h"

std::optional<HLValue> HLReadJson(std::string_view text) {
  @autoreleasepool {
    NSData* data = [NSData dataWithBytes:text.data() length:text.size()];
    const id document = [NSJSONSerialization JSONObjectWithData:data options:0 error:nil];
    if (document == nil) return std::nullopt;
    return HLValueOfObject((__bridge CFTypeRef)document);
  }
}
