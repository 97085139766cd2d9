// SPDX-License-Identifier: MIT
#include "store/data_store.h"

#include <utility>

#include "base/log.h"
#include "store/inside_path.h"
#include "store/new_files.h"
#include "store/paths.h"
#include "store/taken_names.h"

namespace tessaly::store {
namespace {

using base::Failure;
using Kind = ports::FolderEntry::Kind;

constexpr std::string_view cloudDocuments = "Documents";

}  // namespace

DataStore::DataStore(Tools tools, Roots roots)
    : _tools(std::move(tools)),
      _roots(std::move(roots)),
      _files(_roots.bundleIdentifier + ".DataStore.files", _tools.executor) {}

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
    const auto kind = _tools.files.kindOf(localRoot());
    if (!kind && kind.failure().kind != Failure::Kind::notFound) {
        base::log("error in localFolderExists(): ", kind.failure().description);
    }
    return kind && *kind == Kind::folder;
}

bool DataStore::createFolderIfNonExisting(const std::string& folder) {
    const auto made =
        _files.sync([&] { return makeIfMissing(_tools.files, _tools.changes, folder); });
    if (!made) {
        base::log("Error createFolderIfNonExisting: ", made.failure().description);
    }
    return made.ok();
}

std::string DataStore::uniqueFilename(const std::string& base, std::string_view extension,
                                      const std::string& folder) const {
    const auto taken = listForUniqueName(folder);
    return taken ? taken->unique(base, extension) : base;
}

std::optional<TakenNames> DataStore::listForUniqueName(const std::string& folder) const {
    auto taken = TakenNames::in(_tools.files, folder);
    if (!taken) {
        base::log("error in uniqueFilename(): ", taken.failure().description);
        return std::nullopt;
    }
    return *std::move(taken);
}

base::Result<std::string> DataStore::pathOf(base::NoteType type, std::string_view filename) const {
    return pathIn(root(), type, filename);
}

base::Result<std::string> DataStore::pathIn(const std::string& rootFolder, base::NoteType type,
                                            std::string_view filename) const {
    if (type == base::NoteType::none || !namesOnly(filename)) {
        return outside(filename);
    }
    return pathInside(_tools.files, rootFolder, joined(base::folderName(type), filename));
}

}  // namespace tessaly::store
