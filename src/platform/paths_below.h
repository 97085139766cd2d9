// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

namespace tessaly::platform {

/// Paths relative to one root, without slashes at their ends; the root is empty.

template <class Value>
using ByPath = std::map<std::string, Value, std::less<>>;

inline std::string joinPath(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty()) {
        path += '/';
    }
    return path += name;
}

/// The range of `map` that lies below `folder`, which is not in it itself.
template <class Map>
auto below(Map& map, std::string_view folder) {
    if (folder.empty()) {
        return std::pair(map.upper_bound(folder), map.end());
    }
    constexpr char afterSlash = '/' + 1;
    const std::string prefix(folder);
    return std::pair(map.lower_bound(prefix + '/'), map.lower_bound(prefix + afterSlash));
}

/// Whether `holds` is true of a folder above `path`; the root comes first.
template <class Predicate>
bool anyAbove(std::string_view path, const Predicate& holds) {
    if (path.empty()) {
        return false;
    }
    if (holds(std::string_view())) {
        return true;
    }
    for (auto end = path.find('/'); end != std::string_view::npos; end = path.find('/', end + 1)) {
        if (holds(path.substr(0, end))) {
            return true;
        }
    }
    return false;
}

}  // namespace tessaly::platform
