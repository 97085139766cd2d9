// SPDX-License-Identifier: MIT
#include "store/cloud_mover.h"

#include <algorithm>
#include <utility>

#include "base/localisation.h"
#include "base/log.h"
#include "base/temporary_name.h"
#include "store/inside_path.h"
#include "store/new_files.h"
#include "store/paths.h"
#include "store/taken_names.h"

namespace tessaly::store {
namespace {

using base::Failure;
using Kind = ports::FolderEntry::Kind;

// How often another program may take a name between our look and our move.
constexpr int maxSurprises = 100;

constexpr std::string_view notPushed = "Could not push file from local to iCloud Drive, error = ";

struct SplitName {
    std::string base;
    std::string extension;
};

SplitName split(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    return dot == name.npos || dot == 0
               ? SplitName{std::string(name), {}}
               : SplitName{std::string(name.substr(0, dot)), std::string(name.substr(dot + 1))};
}

/// The bytes of two files when they are the same.
std::optional<std::string> sharedBytes(ports::FileSystem& files, const std::string& one,
                                       const std::string& other) {
    auto first = files.read(one);
    const auto second = files.read(other);
    return first && second && first->bytes == second->bytes
               ? std::optional(std::move(*std::move(first)).bytes)
               : std::nullopt;
}

std::optional<std::string> whyItStays(const ports::FolderEntry& entry) {
    if (entry.kind == Kind::link) {
        return base::tr("a link; it is not moved");
    }
    if (entry.kind == Kind::other) {
        return base::tr("not a regular file");
    }
    return base::nameOfTemporary(entry.name)
               ? std::optional(base::tr("a file that is just being written"))
               : std::nullopt;
}

void sortInto(FolderTree& tree, std::vector<std::string>& waiting, const std::string& folder,
              const ports::FolderEntry& entry) {
    std::string path = joined(folder, entry.name);
    if (const auto why = whyItStays(entry)) {
        tree.staying.push_back({path, {Failure::Kind::notAFile, path + ": " + *why}});
    } else {
        (entry.kind == Kind::folder ? waiting : tree.files).push_back(std::move(path));
    }
}

}  // namespace

FolderTree CloudMover::tree() const {
    FolderTree tree;
    std::vector<std::string> waiting{""};
    while (!waiting.empty()) {
        const std::string folder = std::move(waiting.back());
        waiting.pop_back();
        auto entries = _tools.files.list(joined(_local, folder));
        if (!entries) {
            if (!folder.empty() || entries.failure().kind != Failure::Kind::notFound) {
                tree.staying.push_back(
                    {folder, logged("Failed to move all files to cloud: ", entries.failure())});
            }
            continue;
        }
        tree.folders.push_back(folder);
        for (const ports::FolderEntry& entry : *entries) {
            sortInto(tree, waiting, folder, entry);
        }
    }
    std::sort(tree.files.begin(), tree.files.end());
    return tree;
}

bool CloudMover::isCloudInLocal() const {
    const auto local = _tools.files.resolve(_local);
    std::string existing = _cloud;
    auto cloud = _tools.files.resolve(existing);
    while (!cloud && existing.size() > 1) {
        existing = parentOf(existing);
        cloud = _tools.files.resolve(existing);
    }
    return isInside(_cloud, _local) || (local && cloud && isInside(*cloud, *local));
}

base::Result<std::string> CloudMover::move(const std::string& relative) const {
    const auto from = regularFile(relative);
    const auto wanted = pathInside(_tools.files, _cloud, relative);
    if (!from || !wanted) {
        return logged(notPushed, from ? wanted.failure() : from.failure());
    }
    const auto made = makeIfMissing(_tools.files, _tools.changes, parentOf(*wanted));
    if (!made) {
        base::log("Could not create the iCloud Drive directories");
        return made.failure();
    }
    const auto name = moveUnderFreeName(*from, *wanted);
    if (!name) {
        return logged(notPushed, name.failure());
    }
    const std::size_t slash = relative.rfind('/');
    return joined(relative.substr(0, slash == relative.npos ? 0 : slash), *name);
}

base::Result<std::string> CloudMover::regularFile(const std::string& relative) const {
    auto path = pathInside(_tools.files, _local, relative);
    if (!path) {
        return path;
    }
    const auto kind = _tools.files.kindOf(*path);
    if (!kind) {
        return kind.failure();
    }
    const auto resolved = _tools.files.resolve(*path);
    const auto folder = _tools.files.resolve(parentOf(*path));
    const bool isLink = !resolved || !folder || *resolved != joined(*folder, lastComponent(*path));
    if (isLink || *kind != Kind::file) {
        return Failure{Failure::Kind::notAFile, *path + ": " + base::tr("not a regular file")};
    }
    return path;
}

// A name that is taken by an equal file is as good as a move: it may be our own, of a move that was
// interrupted.
base::Result<std::string> CloudMover::moveUnderFreeName(const std::string& from,
                                                        const std::string& wanted) const {
    const std::string folder = parentOf(wanted);
    const SplitName name = split(lastComponent(wanted));
    auto taken = TakenNames::in(_tools.files, folder);
    if (!taken) {
        return taken.failure();
    }
    TakenNames names = *std::move(taken);
    for (int counter = 1, surprises = 0;;) {
        std::string candidate =
            withExtension(numberedBase(name.base, counter, name.extension), name.extension);
        if (const std::string* holder = names.holder(candidate)) {
            if (const auto bytes = sharedBytes(_tools.files, from, joined(folder, *holder))) {
                const auto removed = _tools.safeFiles.remove(_local, from, &*bytes);
                return removed ? base::Result<std::string>(*holder) : removed.failure();
            }
            ++counter;
            continue;
        }
        const auto moved =
            _tools.safeFiles.move({_local, from}, {_cloud, joined(folder, candidate)});
        if (moved) {
            return candidate;
        }
        if (moved.failure().kind != Failure::Kind::exists || ++surprises == maxSurprises) {
            return moved.failure();
        }
        names.add(candidate);
    }
}

void CloudMover::moveEmptyFolders(const std::vector<std::string>& folders) const {
    for (auto folder = folders.rbegin(); folder != folders.rend(); ++folder) {
        const std::string path = joined(_local, *folder);
        const auto entries = _tools.files.list(path);
        if (entries && entries->empty() && hasCloudFolder(*folder)) {
            // Where it stays, something has come into it, or it is in no one's way.
            static_cast<void>(_tools.changes.removeFolder(path));
        }
    }
}

bool CloudMover::hasCloudFolder(const std::string& relative) const {
    const auto path = relative.empty() ? base::Result<std::string>(_cloud)
                                       : pathInside(_tools.files, _cloud, relative);
    if (!path) {
        return false;
    }
    if (!makeIfMissing(_tools.files, _tools.changes, *path)) {
        base::log("Could not create the iCloud Drive directories");
        return false;
    }
    const auto kind = _tools.files.kindOf(*path);
    return kind && *kind == Kind::folder;
}

}  // namespace tessaly::store
