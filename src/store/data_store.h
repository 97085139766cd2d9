// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "base/note_type.h"
#include "ports/cloud_container.h"
#include "ports/file_system.h"
#include "ports/standard_folders.h"

namespace tessaly::store {

/// The single owner of the data folder: where it lies, what is in it, how files are called. The
/// root is chosen anew on each look-up, so linking Dropbox or losing the cloud drive shows at once.
/// Any thread.
class DataStore {
public:
    /// What the choice of root depends on. `dataFolder` names the data folder outright and goes
    /// before all else.
    struct Roots {
        ports::StandardFolders folders;
        std::string bundleIdentifier;
        ports::DropboxAuthorised dropboxAuthorised;
        ports::CloudContainer cloudContainer;
        std::optional<std::string> dataFolder;
    };

    DataStore(ports::FileSystem& files, Roots roots);

    /// CONTAINER/Documents. Nothing while a Dropbox account is linked (the container is then not
    /// even asked for), or without a container.
    std::optional<std::string> cloudRoot() const;
    /// The folder named after the bundle identifier in the user's data folder.
    std::string localRoot() const;
    /// The data folder in use: the one that was named outright, else the cloud root, else the
    /// local one.
    std::string root() const;

    /// The folder of a kind under each root; the cloud one is absent with the cloud root. The kind
    /// `none` has no folder of its own and names the root.
    std::optional<std::string> cloudFolder(base::NoteType type) const;
    std::string localFolder(base::NoteType type) const;
    std::string folder(base::NoteType type) const;

    /// Whether the local data folder is there. A failure other than its absence is logged as
    /// "error in localFolderExists(): " and answers no.
    bool localFolderExists() const;

    /// Makes a folder with those above it unless something is at its path already. Failure: logged
    /// as "Error createFolderIfNonExisting: ", and nothing was made.
    bool createFolderIfNonExisting(const std::string& folder);

    /// A base name that no entry of `folder` has with `extension`: `base` itself, else "base 2",
    /// "base 3" …, cut where that would not fit a file name. Names collide when they are the same
    /// in composed form after case folding. When the folder cannot be listed: logs "error in
    /// uniqueFilename(): " and returns `base`; a folder that is not there has no entries.
    std::string uniqueFilename(const std::string& base, std::string_view extension,
                               const std::string& folder) const;

    /// The path of a file by its kind and its name relative to the kind's folder. The name may come
    /// from outside: one with "..", an absolute one, one that is empty or holds NUL, and one that a
    /// link leads out of the data folder, are refused with `outside`. The file need not exist.
    base::Result<std::string> pathOf(base::NoteType type, std::string_view filename) const;

    /// Writes a new file that must not exist, making its folder; for the notes that a new user
    /// finds. A folder that was made is logged ("Created directories: "); failures are logged
    /// ("could not create a local folder for saving the notes (very first note?), error " or "Could
    /// not make a filename or write a note ") and returned.
    base::Result<base::Done> createNote(base::NoteType type, std::string_view filename,
                                        std::string_view text);

    ports::FileSystem& files() const { return _files; }

private:
    base::Result<base::Done> makeFolderOfNote(const std::string& folder);

    ports::FileSystem& _files;
    const Roots _roots;
};

}  // namespace tessaly::store
