#pragma once

/// What this program was compiled with. A sanitizer takes stack and heap of its own, so that what
/// is measured is no longer the library's.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool underSanitizer = true;
#elif defined(__has_feature)
#    if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
inline constexpr bool underSanitizer = true;
#    else
inline constexpr bool underSanitizer = false;
#    endif
#else
inline constexpr bool underSanitizer = false;
#endif
