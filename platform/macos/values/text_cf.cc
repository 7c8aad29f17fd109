// Case mappings by Core Foundation, under the root locale.
#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>

#include "platform/macos/values/cf_ref.h"
#include "platform/text.h"

namespace {

template <class Change>
std::u16string changed(std::u16string_view text, const Change& change) {
  const HLCFRef<CFMutableStringRef> string(CFStringCreateMutable(kCFAllocatorDefault, 0));
  CFStringAppendCharacters(string.get(), reinterpret_cast<const UniChar*>(text.data()),
                           static_cast<CFIndex>(text.size()));
  change(string.get());
  const CFIndex length = CFStringGetLength(string.get());
  std::u16string units(static_cast<std::size_t>(length), u'\0');
  CFStringGetCharacters(string.get(), CFRangeMake(0, length), reinterpret_cast<UniChar*>(units.data()));
  return units;
}

}  // namespace

std::u16string HLHostLowercase(std::u16string_view text) {
  return changed(text, [](CFMutableStringRef string) { CFStringLowercase(string, CFLocaleGetSystem()); });
}

std::u16string HLHostUppercase(std::u16string_view text) {
  return changed(text, [](CFMutableStringRef string) { CFStringUppercase(string, CFLocaleGetSystem()); });
}

std::u16string HLHostFoldCase(std::u16string_view text) {
  return changed(
      text, [](CFMutableStringRef string) { CFStringFold(string, kCFCompareCaseInsensitive, CFLocaleGetSystem()); });
}

bool HLHostIsWordCharacter(char32_t codePoint) {
  // The set's general categories are L, M and N.
  return CFCharacterSetIsLongCharacterMember(CFCharacterSetGetPredefined(kCFCharacterSetAlphaNumeric), codePoint);
}
