// SPDX-License-Identifier: MIT
#include "settings/nearest_name.h"

#include <cstddef>
#include <string>

#include "base/edit_distance.h"
#include "base/utf8.h"

namespace tessaly::settings {

namespace {

std::u32string comparable(std::string_view name) {
    return base::toUtf32(base::lowerCased(name));
}

}  // namespace

std::string_view nearestName(std::string_view typed, std::span<const std::string_view> names) {
    std::string_view nearest;
    // A name is short: what is much longer is none, and not worth a long comparison.
    if (typed.size() > 100) {
        return nearest;
    }
    const std::u32string key = comparable(typed);
    std::size_t least = key.size() / 3 + 2;
    for (const std::string_view name : names) {
        const std::size_t apart = base::editDistance(key, comparable(name));
        if (apart < least) {
            least = apart;
            nearest = name;
        }
    }
    return nearest;
}

}  // namespace tessaly::settings
