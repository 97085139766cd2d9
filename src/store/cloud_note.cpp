// SPDX-License-Identifier: MIT
#include "store/cloud_note.h"

namespace tessaly::store {
namespace {

// Takes `folder` and the slash behind it off the front of `path`.
bool enterFolder(std::string_view& path, std::string_view folder) {
    if (!path.starts_with(folder)) {
        return false;
    }
    path.remove_prefix(folder.size());
    if (!path.starts_with('/')) {
        return false;
    }
    path.remove_prefix(1);
    return true;
}

}  // namespace

std::string_view filenameOf(const CloudNote& note, std::string_view root) {
    const std::string_view folder = base::folderName(note.base);
    std::string_view path = note.url;
    if (root.ends_with('/')) {
        root.remove_suffix(1);
    }
    const bool isBelow = !folder.empty() && enterFolder(path, root) && enterFolder(path, folder);
    return isBelow ? path : std::string_view();
}

}  // namespace tessaly::store
