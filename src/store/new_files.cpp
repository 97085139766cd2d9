// SPDX-License-Identifier: MIT
#include "store/new_files.h"

#include <algorithm>

#include "base/localisation.h"
#include "base/log.h"
#include "store/foreign_names.h"
#include "store/note_document.h"
#include "store/paths.h"

namespace tessaly::store {

using base::Failure;

base::Result<bool> makeIfMissing(ports::FileSystem& files, ports::FileChanges& changes,
                                 const std::string& folder) {
    const auto kind = files.kindOf(folder);
    if (kind) {
        return false;
    }
    if (kind.failure().kind != Failure::Kind::notFound) {
        return kind.failure();
    }
    const auto made = changes.makeFolders(folder);
    return made ? base::Result<bool>(true) : base::Result<bool>(made.failure());
}

std::optional<NotWritten> writeNewFile(const DataStore::Tools& tools, const std::string& root,
                                       const std::string& path, std::string_view text,
                                       ChangeCause cause) {
    const auto bytes = bytesOfText(text);
    if (!bytes) {
        return NotWritten{noteNotWritten,
                          {bytes.failure().kind, path + ": " + bytes.failure().description}};
    }
    const std::string folder = parentOf(path);
    const auto made = makeIfMissing(tools.files, tools.changes, folder);
    if (!made) {
        return NotWritten{
            "could not create a local folder for saving the notes (very first note?), error ",
            made.failure()};
    }
    if (*made) {
        base::log("Created directories: ", folder);
    }
    if (hasPlaceholder(tools.files, path)) {
        return NotWritten{noteNotWritten, notDownloaded(path)};
    }
    const auto created = tools.safeFiles.create(root, path, *bytes, cause);
    return created ? std::nullopt : std::optional(NotWritten{noteNotWritten, created.failure()});
}

bool hasPlaceholder(ports::FileSystem& files, const std::string& path) {
    const auto entries = files.list(parentOf(path));
    return entries && std::any_of(entries->begin(), entries->end(),
                                  [name = lastComponent(path)](const ports::FolderEntry& entry) {
                                      return nameOfPlaceholder(entry.name) == name;
                                  });
}

Failure notDownloaded(const std::string& path) {
    return {Failure::Kind::unavailable,
            path + ": " + base::tr("the sync client has not downloaded it yet")};
}

Failure logged(std::string_view message, Failure failure) {
    base::log(message, failure.description);
    return failure;
}

}  // namespace tessaly::store
