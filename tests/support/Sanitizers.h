// Whether a sanitizer watches this program.
#pragma once

#if defined(__has_feature)
#define KELO_HAS_FEATURE(feature) __has_feature(feature)
#else
#define KELO_HAS_FEATURE(feature) 0
#endif

namespace support {

#if defined(__SANITIZE_ADDRESS__) || KELO_HAS_FEATURE(address_sanitizer)
constexpr bool kAddressSanitizer = true;
#else
constexpr bool kAddressSanitizer = false;
#endif

#if defined(__SANITIZE_THREAD__) || KELO_HAS_FEATURE(thread_sanitizer)
constexpr bool kThreadSanitizer = true;
#else
constexpr bool kThreadSanitizer = false;
#endif

constexpr bool kSanitized = kAddressSanitizer || kThreadSanitizer;

}  // namespace support
