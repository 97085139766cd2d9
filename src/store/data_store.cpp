// SPDX-License-Identifier: MIT
#include "store/data_store.h"

#include <unordered_set>
#include <utility>

#include "base/graphemes.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/normalise.h"
#include "store/note_names.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using base::Failure;
using Kind = ports::FolderEntry::Kind;

constexpr std::string_view cloudDocuments = "Documents";

std::string withExtension(std::string_view base, std::string_view extension) {
    std::string name(base);
    return extension.empty() ? name : name.append(".").append(extension);
}

// "base 2.txt"; a base too long for that loses characters at its end.
std::string numbered(std::string_view base, int counter, std::string_view extension) {
    const std::string ending = " " + std::to_string(counter);
    const std::size_t taken = withExtension(ending, extension).size();
    const std::size_t room = maxFilenameBytes > taken ? maxFilenameBytes - taken : 0;
    return std::string(base.size() <= room ? base : base::cutToBytes(base, room)) + ending;
}

Failure outside(std::string_view filename) {
    return {Failure::Kind::outside,
            std::string(filename) + ": " + base::tr("leads out of the data folder")};
}

// Whether every part of a relative path is the name of something below its folder.
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

// Makes a folder unless something is at its path, and tells whether it did.
base::Result<bool> makeIfMissing(ports::FileSystem& files, const std::string& folder) {
    const auto kind = files.kindOf(folder);
    if (kind) {
        return false;
    }
    if (kind.failure().kind != Failure::Kind::notFound) {
        return kind.failure();
    }
    const auto made = files.makeFolders(folder);
    return made ? base::Result<bool>(true) : base::Result<bool>(made.failure());
}

}  // namespace

DataStore::DataStore(ports::FileSystem& files, Roots roots)
    : _files(files), _roots(std::move(roots)) {}

std::optional<std::string> DataStore::cloudRoot() const {
    if (_roots.dropboxAuthorised && _roots.dropboxAuthorised()) {
        return std::nullopt;
    }
    const auto container = _roots.cloudContainer ? _roots.cloudContainer() : std::nullopt;
    if (!container || container->empty()) {
        return std::nullopt;
    }
    return joined(*container, cloudDocuments);
}

std::string DataStore::localRoot() const {
    return joined(_roots.folders.data, _roots.bundleIdentifier);
}

std::string DataStore::root() const {
    return _roots.dataFolder ? *_roots.dataFolder : cloudRoot().value_or(localRoot());
}

std::optional<std::string> DataStore::cloudFolder(base::NoteType type) const {
    const auto cloud = cloudRoot();
    return cloud ? std::optional(joined(*cloud, base::folderName(type))) : std::nullopt;
}

std::string DataStore::localFolder(base::NoteType type) const {
    return joined(localRoot(), base::folderName(type));
}

std::string DataStore::folder(base::NoteType type) const {
    return joined(root(), base::folderName(type));
}

bool DataStore::localFolderExists() const {
    const auto kind = _files.kindOf(localRoot());
    if (!kind && kind.failure().kind != Failure::Kind::notFound) {
        base::log("error in localFolderExists(): ", kind.failure().description);
    }
    return kind && *kind == Kind::folder;
}

bool DataStore::createFolderIfNonExisting(const std::string& folder) {
    const auto made = makeIfMissing(_files, folder);
    if (!made) {
        base::log("Error createFolderIfNonExisting: ", made.failure().description);
    }
    return made.ok();
}

std::string DataStore::uniqueFilename(const std::string& base, std::string_view extension,
                                      const std::string& folder) const {
    const auto entries = _files.list(folder);
    if (!entries) {
        if (entries.failure().kind != Failure::Kind::notFound) {
            base::log("error in uniqueFilename(): ", entries.failure().description);
        }
        return base;
    }
    std::unordered_set<std::string> taken;
    for (const ports::FolderEntry& entry : *entries) {
        taken.insert(base::foldedForNames(entry.name));
    }
    const auto collides = [&](const std::string& candidate) {
        return taken.contains(base::foldedForNames(withExtension(candidate, extension)));
    };
    std::string candidate = base;
    for (int counter = 2; collides(candidate); ++counter) {
        candidate = numbered(base, counter, extension);
    }
    return candidate;
}

base::Result<std::string> DataStore::pathOf(base::NoteType type, std::string_view filename) const {
    if (type == base::NoteType::none || !namesOnly(filename)) {
        return outside(filename);
    }
    const std::string rootFolder = root();
    const auto resolvedRoot = _files.resolve(rootFolder);
    std::string path = joined(joined(rootFolder, base::folderName(type)), filename);
    if (!resolvedRoot) {
        // Without the data folder nothing in it can lead out.
        return resolvedRoot.failure().kind == Failure::Kind::notFound
                   ? base::Result<std::string>(std::move(path))
                   : resolvedRoot.failure();
    }
    for (std::string ancestor = path; ancestor.size() > rootFolder.size();) {
        const auto resolved = _files.resolve(ancestor);
        if (resolved) {
            return isInside(*resolved, *resolvedRoot) ? base::Result<std::string>(std::move(path))
                                                      : outside(filename);
        }
        if (resolved.failure().kind != Failure::Kind::notFound) {
            return resolved.failure();
        }
        const std::string missing(lastComponent(ancestor));
        ancestor = parentOf(ancestor);
        if (mayHoldLink(_files, ancestor, missing)) {
            return outside(filename);
        }
    }
    return path;
}

base::Result<base::Done> DataStore::createNote(base::NoteType type, std::string_view filename,
                                               std::string_view text) {
    const auto logged = [](Failure failure) {
        base::log("Could not make a filename or write a note ", failure.description);
        return failure;
    };
    const auto path = pathOf(type, filename);
    if (!path) {
        return logged(path.failure());
    }
    const auto folder = makeFolderOfNote(parentOf(*path));
    if (!folder) {
        return folder.failure();
    }
    const auto created = _files.create(*path, text);
    return created ? created : logged(created.failure());
}

base::Result<base::Done> DataStore::makeFolderOfNote(const std::string& folder) {
    const auto made = makeIfMissing(_files, folder);
    if (!made) {
        base::log("could not create a local folder for saving the notes (very first note?), error ",
                  made.failure().description);
        return made.failure();
    }
    if (*made) {
        base::log("Created directories: ", folder);
    }
    return base::Done{};
}

}  // namespace tessaly::store
