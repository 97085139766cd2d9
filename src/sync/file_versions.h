// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "ports/file_system.h"
#include "ports/file_version.h"
#include "store/safe_files.h"

namespace tessaly::sync {

/// All versions of one note, as one look at its folder found them.
struct ItemVersions {
    /// Failures: `notFound`: there is no such file; `unavailable`: a sync client's placeholder of
    /// another name stands for it; `notAFile`.
    base::Result<ports::FileVersion> current;
    /// Its conflict copies, the latest first, those of one date by name.
    std::vector<ports::FileVersion> unresolved;
};

/// The versions of a note as sync clients leave them: the file itself, and the conflict copies that
/// lie beside it. A note's name may be spelt composed or not; the versions have the names that are
/// on the disk. Where a client's names tell who wrote the version that kept the plain name, the
/// current version has that device, by the latest copy that tells, and such copies have none.
///
/// Changes go through `SafeFiles`, so that every version that goes is in the history. Blocks for
/// the disk; logs nothing; any thread, but one change at a time.
class FileVersions {
public:
    /// All outlive this object. `root` is the data folder, resolved.
    struct Tools {
        ports::FileSystem& files;
        store::SafeFiles& safeFiles;
        std::string root;
    };

    explicit FileVersions(Tools tools);

    /// Failure: the folder cannot be listed. There may be copies of a file that is gone.
    base::Result<ItemVersions> versionsOfItem(const std::string& url) const;

    /// `ItemVersions::current`. Failure also: the folder cannot be listed.
    base::Result<ports::FileVersion> currentVersionOfItem(const std::string& url) const;

    /// `ItemVersions::unresolved`. Failure: the folder cannot be listed.
    base::Result<std::vector<ports::FileVersion>> unresolvedConflictVersionsOfItem(
        const std::string& url) const;

    /// The bytes of a version. Failure `unavailable`: a sync client has not downloaded it.
    base::Result<std::string> contents(const ports::FileVersion& version) const;

    /// Puts `text`, which was read from a version, or made from several, in the place of the file
    /// `url`, whose bytes go into the history, if it still holds `expected`; null: if it is still
    /// gone. Failure `changed`: it does not, and stands as it was found. Nothing is written where
    /// it holds `text` already.
    base::Result<base::Done> replaceItem(const std::string& url, std::string_view text,
                                         const std::string* expected);

    /// Takes a conflict copy away if it still holds `expected`, its bytes being in the history. One
    /// that is gone is no failure. Failure `changed`: it holds other bytes, and stays.
    base::Result<base::Done> removeVersion(const ports::FileVersion& version,
                                           const std::string& expected);

private:
    const Tools _tools;
};

}  // namespace tessaly::sync
