// Case mappings by ICU.
#include <unicode/uchar.h>
#include <unicode/ustring.h>

#include "platform/text.h"

namespace {

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
  return map(text, [text](char16_t* out, std::int32_t room, UErrorCode& error) {
    return u_strToLower(out, room, text.data(), static_cast<std::int32_t>(text.size()), "", &error);
  });
}

std::u16string HLHostFoldCase(std::u16string_view text) {
  return map(text, [text](char16_t* out, std::int32_t room, UErrorCode& error) {
    return u_strFoldCase(out, room, text.data(), static_cast<std::int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &error);
  });
}
