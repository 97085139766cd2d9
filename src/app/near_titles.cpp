// SPDX-License-Identifier: MIT
#include "app/near_titles.h"

#include <algorithm>
#include <set>
#include <utility>

#include "base/edit_distance.h"
#include "base/normalise.h"
#include "base/utf8.h"

namespace tessaly::app {
namespace {

constexpr std::size_t longestCompared = 200;

std::u32string comparableTitle(std::string_view text) {
    return base::toUtf32(base::lowerCased(base::nfc(text)));
}

// How far a title is from what was wanted; `limit + 1` and more is too far. Lengths are compared
// first, so that a title of a whole page costs nothing.
std::size_t farness(std::u32string_view wanted, std::u32string_view title, std::size_t limit) {
    const std::size_t longer = std::max(wanted.size(), title.size());
    if (longer <= longestCompared && longer - std::min(wanted.size(), title.size()) <= limit) {
        const std::size_t distance = base::editDistance(wanted, title);
        if (distance <= limit) {
            return distance;
        }
    }
    const bool within = wanted.size() >= 3 && title.find(wanted) != std::u32string_view::npos;
    return within ? limit : limit + 1;
}

}  // namespace

std::vector<std::string> nearTitles(std::string_view wanted, const std::vector<std::string>& titles,
                                    std::size_t atMost) {
    const std::u32string key = comparableTitle(wanted);
    const std::size_t limit = std::max<std::size_t>(1, std::min<std::size_t>(key.size() / 3, 6));
    std::set<std::pair<std::size_t, std::string>> near;
    for (const std::string& title : titles) {
        const std::size_t far = farness(key, comparableTitle(title), limit);
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
