// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/failure.h"
#include "ports/file_system.h"

namespace tessaly::ports {

/// When a change must be on the disk: before the call returns, or whenever the kernel writes it.
/// The latter outlives this process, but not a power cut.
enum class Durability { now, later };

/// Who may read a new file: whom the user's mask lets, or the owner alone.
enum class Readers { byMask, ownerOnly };

/// Changes of files and folders. Paths are absolute. A file is changed as a whole: whoever looks,
/// and a kill or a power cut at any moment, finds the old bytes or the new ones under its name, and
/// nothing else but names that `base::nameOfTemporary` knows. After a failure nothing has changed.
/// Every operation may be called from any thread, logs nothing, and blocks for as long as the disk
/// does. A path that holds NUL is `malformed`.
class FileChanges {
public:
    virtual ~FileChanges() = default;

    /// Makes a folder and those above it, readable by the owner alone where it makes them. One that
    /// is there already is no failure.
    virtual base::Result<base::Done> makeFolders(const std::string& folder) = 0;

    /// Writes a new file. Failure `exists`: there is something of that name, and it is untouched.
    virtual base::Result<base::Done> create(const std::string& file, std::string_view bytes,
                                            Readers readers = Readers::byMask,
                                            Durability durability = Durability::now) = 0;

    /// Puts `bytes` in the place of a file if that still is what `read` tells: its bytes and its
    /// inode. Permissions, owner and extended attributes are kept; a link stays one, and the file
    /// that it leads to is replaced. Another program that has the file open for writing is waited
    /// for, and what it wrote counts.
    /// Failures: `changed`: it is not what was read, and stands as it was found; `notFound`: it is
    /// no longer there; `unavailable`: another program keeps it open for writing; `denied`: also
    /// when the file itself may not be written. On disk before it returns.
    virtual base::Result<base::Done> replace(const std::string& file, const FileContents& read,
                                             std::string_view bytes) = 0;

    /// Adds bytes at the end of a file, or makes it, readable by its owner alone. The one operation
    /// that a kill can interrupt in the middle of the bytes.
    virtual base::Result<base::Done> append(const std::string& file, std::string_view bytes,
                                            Durability durability) = 0;

    /// Sees to it that a file's bytes and its name are on the disk.
    virtual base::Result<base::Done> sync(const std::string& file) = 0;

    /// Removes a file; with `read` only if it still is what that tells (else `changed`, as for
    /// `replace`). A link itself is removed, not what it leads to.
    virtual base::Result<base::Done> remove(const std::string& file,
                                            const FileContents* read = nullptr) = 0;

    /// Gives a file another path, whose folder is there, keeping bytes, permissions and date of
    /// change; on another file system too, where it is copied, put on the disk and compared before
    /// the source goes (a kill may leave both, equal). Failure `exists`: there is something at
    /// `to`.
    virtual base::Result<base::Done> move(const std::string& from, const std::string& to) = 0;

    /// Removes a folder that is empty. Failure `exists`: it is not.
    virtual base::Result<base::Done> removeFolder(const std::string& folder) = 0;
};

}  // namespace tessaly::ports
