// SPDX-License-Identifier: MIT
#include "base/edit_distance.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace tessaly::base {

// A row of the usual table at a time.
std::size_t editDistance(std::u32string_view a, std::u32string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace tessaly::base
