// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace tessaly::store {

/// `name` in `folder`; the other one when either is empty.
inline std::string joined(std::string_view folder, std::string_view name) {
    std::string path(folder);
    if (!path.empty() && !name.empty() && !path.ends_with('/')) {
        path += '/';
    }
    return path.append(name);
}

/// The folder of `path`, which must hold a "/".
inline std::string parentOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return std::string(path.substr(0, slash == 0 ? 1 : slash));
}

inline std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// Whether `path` is `folder` or lies below it. Both are resolved.
inline bool isInside(std::string_view path, std::string_view folder) {
    return path == folder ||
           (path.starts_with(folder) && (folder.ends_with('/') || path[folder.size()] == '/'));
}

}  // namespace tessaly::store
