#include "platform/macos/values/values.h"

#import <ApplicationServices/ApplicationServices.h>

#include <cstddef>
#include <cstdint>
#include <variant>
#include <vector>

#include "platform/macos/values/element.h"
#include "platform/text.h"

namespace {

// Deeper values would cost the reader its stack.
constexpr int kDeepest = 500;

HLValue valueOf(CFTypeRef object, int depth);

HLValue numberOf(CFNumberRef number) {
  double real = 0;
  CFNumberGetValue(number, kCFNumberDoubleType, &real);
  if (CFNumberIsFloatType(number)) return real;
  std::int64_t integer = 0;
  const bool fits = CFNumberGetValue(number, kCFNumberSInt64Type, &integer) != 0;
  // An unsigned number of 64 bits may have been taken for a negative one.
  if (!fits || (integer < 0) != (real < 0)) return real;
  return integer;
}

HLValue boxedValueOf(AXValueRef boxed) {
  switch (AXValueGetType(boxed)) {
    case kAXValueTypeCGPoint: {
      CGPoint point = CGPointZero;
      AXValueGetValue(boxed, kAXValueTypeCGPoint, &point);
      return HLPoint{point.x, point.y};
    }
    case kAXValueTypeCGSize: {
      CGSize size = CGSizeZero;
      AXValueGetValue(boxed, kAXValueTypeCGSize, &size);
      return HLSize{size.width, size.height};
    }
    default:
      return {};
  }
}

HLArray arrayOf(CFArrayRef array, int depth) {
  const CFIndex count = CFArrayGetCount(array);
  HLArray values;
  values.reserve(static_cast<std::size_t>(count));
  for (CFIndex i = 0; i < count; ++i) values.push_back(valueOf(CFArrayGetValueAtIndex(array, i), depth + 1));
  return values;
}

HLDictionary dictionaryOf(CFDictionaryRef dictionary, int depth) {
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> keys(count);
  std::vector<const void*> values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  HLDictionary entries;
  entries.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    if (CFGetTypeID(keys[i]) != CFStringGetTypeID()) continue;
    entries.push_back({HLTextOfCFString(static_cast<CFStringRef>(keys[i])), valueOf(values[i], depth + 1)});
  }
  return entries;
}

HLValue valueOf(CFTypeRef object, int depth) {
  if (object == nullptr || depth > kDeepest) return {};
  const CFTypeID type = CFGetTypeID(object);
  if (type == CFStringGetTypeID()) return HLTextOfCFString(static_cast<CFStringRef>(object));
  if (type == CFBooleanGetTypeID()) return CFBooleanGetValue(static_cast<CFBooleanRef>(object)) != 0;
  if (type == CFNumberGetTypeID()) return numberOf(static_cast<CFNumberRef>(object));
  if (type == AXValueGetTypeID()) return boxedValueOf(static_cast<AXValueRef>(object));
  if (type == AXUIElementGetTypeID()) return HLMakeElement(static_cast<AXUIElementRef>(object));
  if (type == CFArrayGetTypeID()) return arrayOf(static_cast<CFArrayRef>(object), depth);
  if (type == CFDictionaryGetTypeID()) return dictionaryOf(static_cast<CFDictionaryRef>(object), depth);
  return {};
}

}  // namespace

HLCFRef<CFStringRef> HLMakeCFString(std::string_view text) {
  const std::u16string units = HLUtf16Units(text);
  return HLCFRef<CFStringRef>(CFStringCreateWithCharacters(
      kCFAllocatorDefault, reinterpret_cast<const UniChar*>(units.data()), static_cast<CFIndex>(units.size())));
}

std::string HLTextOfCFString(CFStringRef string) {
  const CFIndex length = CFStringGetLength(string);
  std::u16string units(static_cast<std::size_t>(length), u'\0');
  CFStringGetCharacters(string, CFRangeMake(0, length), reinterpret_cast<UniChar*>(units.data()));
  return HLTextOfUtf16(units);
}

NSString* HLMakeString(std::string_view text) {
  const std::u16string units = HLUtf16Units(text);
  return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(units.data()) length:units.size()];
}

std::string HLTextOfString(NSString* string) { return HLTextOfCFString((__bridge CFStringRef)string); }

std::optional<std::string> HLOptionalText(NSString* _Nullable string) {
  if (string == nil) return std::nullopt;
  return HLTextOfString(string);
}

HLValue HLValueOfObject(CFTypeRef _Nullable object) { return valueOf(object, 0); }

HLDictionary HLDictionaryOfObject(NSDictionary* _Nullable dictionary) {
  if (dictionary == nil) return {};
  return dictionaryOf((__bridge CFDictionaryRef)dictionary, 0);
}

id _Nullable HLMakeObject(const HLValue& value) {
  if (const bool* truth = value.as<bool>()) return [NSNumber numberWithBool:*truth];
  if (const std::int64_t* integer = value.as<std::int64_t>()) return @(*integer);
  if (const double* real = value.as<double>()) return @(*real);
  if (const std::string* text = value.as<std::string>()) return HLMakeString(*text);
  return nil;
}
