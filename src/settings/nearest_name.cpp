// SPDX-License-Identifier: MIT
#include "settings/nearest_name.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

namespace tessaly::settings {

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// The edit distance, one row of the table at a time.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t changed = diagonal + (lower(a[i]) == lower(b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row[b.size()];
}

}  // namespace

std::string_view nearestName(std::string_view typed, std::span<const std::string_view> names) {
    std::string_view nearest;
    std::size_t least = typed.size() / 3 + 2;
    // A name is short: what is much longer is none, and not worth a long comparison.
    if (typed.size() > 100) {
        return nearest;
    }
    for (const std::string_view name : names) {
        const std::size_t apart = distance(typed, name);
        if (apart < least) {
            least = apart;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace tessaly::settings
