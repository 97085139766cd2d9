// SPDX-License-Identifier: MIT
#pragma once

namespace tessaly::tests {

#if defined(__has_feature)  // Clang, which has no macros of its own for it
#define TESSALY_HAS(feature) __has_feature(feature)
#else
#define TESSALY_HAS(feature) 0
#endif

/// Whether the sanitizers make everything several times slower.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || \
    TESSALY_HAS(address_sanitizer) || TESSALY_HAS(thread_sanitizer)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

#undef TESSALY_HAS

}  // namespace tessaly::tests
