// SPDX-License-Identifier: MIT
#include "app/near_titles.h"

#include <algorithm>
#include <numeric>
#include <set>
#include <utility>

#include "base/normalise.h"
#include "base/utf8.h"

namespace tessaly::app {
namespace {

constexpr std::size_t longestCompared = 200;

std::u16string comparable(std::string_view text) {
    return base::toUtf16(base::lowerCased(base::nfc(text)));
}

// Letters to insert, remove or replace; a row of the usual table at a time.
std::size_t editDistance(std::u16string_view a, std::u16string_view b) {
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

// How far a title is from what was wanted; `limit + 1` and more is too far. Lengths are compared
// first, so that a title of a whole page costs nothing.
std::size_t farness(std::u16string_view wanted, std::u16string_view title, std::size_t limit) {
    const std::size_t longer = std::max(wanted.size(), title.size());
    if (longer <= longestCompared && longer - std::min(wanted.size(), title.size()) <= limit) {
        const std::size_t distance = editDistance(wanted, title);
        if (distance <= limit) {
            return distance;
        }
    }
    const bool within = wanted.size() >= 3 && title.find(wanted) != std::u16string_view::npos;
    return within ? limit : limit + 1;
}

}  // namespace

std::vector<std::string> nearTitles(std::string_view wanted, const std::vector<std::string>& titles,
                                    std::size_t atMost) {
    const std::u16string key = comparable(wanted);
    const std::size_t limit = std::max<std::size_t>(1, std::min<std::size_t>(key.size() / 3, 6));
    std::set<std::pair<std::size_t, std::string>> near;
    for (const std::string& title : titles) {
        const std::size_t far = farness(key, comparable(title), limit);
        if (far <= limit) {
            near.emplace(far, title);
        }
    }
    std::vector<std::string> result;
    for (const auto& [far, title] : near) {
        if (result.size() == atMost) {
            break;
        }
        result.push_back(title);
    }
    return result;
}

}  // namespace tessaly::app
