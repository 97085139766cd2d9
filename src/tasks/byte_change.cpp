// SPDX-License-Identifier: MIT
#include "tasks/byte_change.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace tessaly::tasks {

namespace {

// Whether a character begins at `at`, or the text ends.
bool isBoundary(std::string_view text, std::size_t at) {
    return at >= text.size() || (static_cast<unsigned char>(text[at]) & 0xC0) != 0x80;
}

std::size_t commonPrefix(std::string_view a, std::string_view b) {
    const auto end = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
    auto length = static_cast<std::size_t>(std::distance(a.begin(), end));
    while (length > 0 && !(isBoundary(a, length) && isBoundary(b, length))) {
        --length;
    }
    return length;
}

std::size_t commonSuffix(std::string_view a, std::string_view b) {
    const auto end = std::mismatch(a.rbegin(), a.rend(), b.rbegin(), b.rend()).first;
    auto length = static_cast<std::size_t>(std::distance(a.rbegin(), end));
    while (length > 0 && !isBoundary(a, a.size() - length)) {
        --length;
    }
    return length;
}

}  // namespace

ByteChange changeBetween(std::string_view before, std::string_view after) {
    const std::size_t prefix = commonPrefix(before, after);
    before.remove_prefix(prefix);
    after.remove_prefix(prefix);
    const std::size_t suffix = commonSuffix(before, after);
    before.remove_suffix(suffix);
    after.remove_suffix(suffix);
    return {prefix, std::string(before), std::string(after)};
}

std::optional<std::string> changed(std::string_view bytes, const ByteChange& change) {
    if (change.offset > bytes.size() || !bytes.substr(change.offset).starts_with(change.removed)) {
        return std::nullopt;
    }
    std::string result(bytes);
    return result.replace(change.offset, change.removed.size(), change.inserted);
}

ByteChange inverse(const ByteChange& change) {
    return {change.offset, change.inserted, change.removed};
}

}  // namespace tessaly::tasks
