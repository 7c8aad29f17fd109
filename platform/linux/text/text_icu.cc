// Case mappings by ICU, which is loaded when the first text comes that is not plain ASCII: together with what it needs
// it costs as much time as all other libraries, and most runs never ask for it.
#include <dlfcn.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/uvernum.h>

#include <cstdio>
#include <cstdlib>

#include "platform/text.h"

// ICU's functions bear its version in their names.
#define HL_NAME_OF(function) HL_TEXT_OF(function)
#define HL_TEXT_OF(name) #name

namespace {

// What the dynamic loader does about a library that is missing, only later.
[[noreturn]] void giveUp() {
  std::fprintf(stderr, "hushlet: %s\n", ::dlerror());
  std::abort();
}

void* functionOfIcu(const char* name) {
  static void* const library = ::dlopen("libicuuc.so." U_ICU_VERSION_SHORT, RTLD_LAZY | RTLD_LOCAL);
  void* const function = library == nullptr ? nullptr : ::dlsym(library, name);
  if (function == nullptr) giveUp();
  return function;
}

// ICU's string functions share this shape: called again with room enough when the first room was not.
template <class Mapping>
std::u16string map(std::u16string_view text, const Mapping& mapping) {
  std::u16string mapped(text.size() + 16, u'\0');
  for (;;) {
    UErrorCode error = U_ZERO_ERROR;
    const std::int32_t length = mapping(mapped.data(), static_cast<std::int32_t>(mapped.size()), error);
    if (error != U_BUFFER_OVERFLOW_ERROR) {
      if (U_FAILURE(error)) return std::u16string(text);
      mapped.resize(static_cast<std::size_t>(length));
      return mapped;
    }
    mapped.resize(static_cast<std::size_t>(length));
  }
}

}  // namespace

std::u16string HLHostLowercase(std::u16string_view text) {
  static const auto toLower = reinterpret_cast<decltype(&u_strToLower)>(functionOfIcu(HL_NAME_OF(u_strToLower)));
  return map(text, [text](char16_t* out, std::int32_t room, UErrorCode& error) {
    return toLower(out, room, text.data(), static_cast<std::int32_t>(text.size()), "", &error);
  });
}

std::u16string HLHostUppercase(std::u16string_view text) {
  static const auto toUpper = reinterpret_cast<decltype(&u_strToUpper)>(functionOfIcu(HL_NAME_OF(u_strToUpper)));
  return map(text, [text](char16_t* out, std::int32_t room, UErrorCode& error) {
    return toUpper(out, room, text.data(), static_cast<std::int32_t>(text.size()), "", &error);
  });
}

std::u16string HLHostFoldCase(std::u16string_view text) {
  static const auto foldCase = reinterpret_cast<decltype(&u_strFoldCase)>(functionOfIcu(HL_NAME_OF(u_strFoldCase)));
  return map(text, [text](char16_t* out, std::int32_t room, UErrorCode& error) {
    return foldCase(out, room, text.data(), static_cast<std::int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &error);
  });
}

bool HLHostIsWordCharacter(char32_t codePoint) {
  static const auto charType = reinterpret_cast<decltype(&u_charType)>(functionOfIcu(HL_NAME_OF(u_charType)));
  const auto category = static_cast<std::uint32_t>(charType(static_cast<UChar32>(codePoint)));
  return (U_MASK(category) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}
