// Between the system's objects and the program's values.
#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>

#include "platform/macos/values/cf_ref.h"
#include "platform/value.h"

NS_ASSUME_NONNULL_BEGIN

// A string with the text's UTF-16 units, halves of pairs included. The reference is the caller's.
[[nodiscard]] HLCFRef<CFStringRef> HLMakeCFString(std::string_view text);
[[nodiscard]] std::string HLTextOfCFString(CFStringRef string);

// The same in Foundation's words.
[[nodiscard]] NSString* HLMakeString(std::string_view text);
[[nodiscard]] std::string HLTextOfString(NSString* string);
[[nodiscard]] std::optional<std::string> HLOptionalText(NSString* _Nullable string);

// Strings, booleans, numbers, points, sizes, elements, arrays and dictionaries with keys of text; all else, and what is
// nested more than 500 deep, is missing. An integer beyond 64 bits becomes a real number.
[[nodiscard]] HLValue HLValueOfObject(CFTypeRef _Nullable object);
[[nodiscard]] HLDictionary HLDictionaryOfObject(NSDictionary* _Nullable dictionary);

// A boolean, a number or a text; nil for any other value.
[[nodiscard]] id _Nullable HLMakeObject(const HLValue& value);

NS_ASSUME_NONNULL_END
