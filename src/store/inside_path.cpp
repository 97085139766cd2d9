// SPDX-License-Identifier: MIT
#include "store/inside_path.h"

#include <utility>

#include "base/localisation.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using base::Failure;
using Kind = ports::FolderEntry::Kind;

// Whether `folder` may hold a link called `name`, wherever that leads.
bool mayHoldLink(ports::FileSystem& files, const std::string& folder, std::string_view name) {
    const auto entries = files.list(folder);
    if (!entries) {
        return entries.failure().kind != Failure::Kind::notFound;
    }
    for (const ports::FolderEntry& entry : *entries) {
        if (entry.kind == Kind::link && entry.name == name) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool namesOnly(std::string_view path) {
    if (path.find('\0') != path.npos) {
        return false;
    }
    while (true) {
        const std::size_t slash = path.find('/');
        const std::string_view part = path.substr(0, slash);
        if (part.empty() || part == "." || part == "..") {
            return false;
        }
        if (slash == path.npos) {
            return true;
        }
        path.remove_prefix(slash + 1);
    }
}

Failure outside(std::string_view filename) {
    return {Failure::Kind::outside,
            std::string(filename) + ": " + base::tr("leads out of the data folder")};
}

base::Result<std::string> pathInside(ports::FileSystem& files, const std::string& root,
                                     std::string_view relative) {
    if (!namesOnly(relative)) {
        return outside(relative);
    }
    std::string path = joined(root, relative);
    const auto resolvedRoot = files.resolve(root);
    if (!resolvedRoot) {
        // Without the data folder nothing in it can lead out.
        return resolvedRoot.failure().kind == Failure::Kind::notFound
                   ? base::Result<std::string>(std::move(path))
                   : resolvedRoot.failure();
    }
    for (std::string ancestor = path; ancestor.size() > root.size();) {
        const auto resolved = files.resolve(ancestor);
        if (resolved) {
            return isInside(*resolved, *resolvedRoot) ? base::Result<std::string>(std::move(path))
                                                      : outside(relative);
        }
        if (resolved.failure().kind != Failure::Kind::notFound) {
            return resolved.failure();
        }
        const std::string missing(lastComponent(ancestor));
        ancestor = parentOf(ancestor);
        if (mayHoldLink(files, ancestor, missing)) {
            return outside(relative);
        }
    }
    return path;
}

}  // namespace tessaly::store
