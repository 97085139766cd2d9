// SPDX-License-Identifier: MIT
#pragma once

// Clang checks with -Wthread-safety who may touch what; other compilers read nothing.
#if defined(__clang__)
#define TESSALY_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define TESSALY_ATTRIBUTE(attribute)
#endif

/// On a class: holding an object of it is a right that members can ask for.
#define TESSALY_CAPABILITY(kind) TESSALY_ATTRIBUTE(capability(kind))
/// On a field: only who holds `queue` may touch it.
#define TESSALY_GUARDED_BY(queue) TESSALY_ATTRIBUTE(guarded_by(queue))
/// On a function: only who holds `queue` may call it.
#define TESSALY_REQUIRES(queue) TESSALY_ATTRIBUTE(requires_capability(queue))
/// On a function: it returns only to who holds `queue`.
#define TESSALY_ASSERTS(queue) TESSALY_ATTRIBUTE(assert_capability(queue))
