// Which sanitizer the tests run under. The address and thread sanitizers keep memory that was given back, and are slow
// with much of it.
#pragma once

#ifdef __SANITIZE_THREAD__  // GCC's; Clang's thread sanitizer brings an operator new, which some tests replace
inline constexpr bool kIsThreadSanitized = true;
#else
inline constexpr bool kIsThreadSanitized = false;
#endif

#if defined(__has_feature)
inline constexpr bool kIsSanitized = kIsThreadSanitized || __has_feature(address_sanitizer);
#else
inline constexpr bool kIsSanitized = kIsThreadSanitized;
#endif
