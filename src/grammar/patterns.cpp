// SPDX-License-Identifier: MIT
#include "grammar/patterns.h"

#include <map>
#include <memory>
#include <mutex>

namespace tessaly::grammar::patterns {

const base::Regex& compiled(const char16_t* pattern) {
    static std::mutex mutex;
    static std::map<const char16_t*, std::unique_ptr<base::Regex>> known;
    const std::scoped_lock lock(mutex);
    auto& entry = known[pattern];
    if (!entry) {
        entry = std::make_unique<base::Regex>(pattern);
    }
    return *entry;
}

}  // namespace tessaly::grammar::patterns
