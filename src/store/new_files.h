// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "store/change_cause.h"
#include "store/data_store.h"

namespace tessaly::store {

/// Makes a folder unless something is at its path, and tells whether it did.
base::Result<bool> makeIfMissing(ports::FileSystem& files, ports::FileChanges& changes,
                                 const std::string& folder);

/// Why a new note is not there, and the fixed text that tells of it in the log.
struct NotWritten {
    std::string_view message;
    base::Failure failure;
};

inline constexpr std::string_view noteNotWritten = "Could not make a filename or write a note ";

/// Writes a new note at `path`, below `root`, making its folder, which is logged ("Created
/// directories: "). Failures, not logged: `exists`; `unavailable` where a sync client has the note
/// but has not downloaded it; `malformed` for a text that is not UTF-8; those of the disk.
std::optional<NotWritten> writeNewFile(const DataStore::Tools& tools, const std::string& root,
                                       const std::string& path, std::string_view text,
                                       ChangeCause cause = ChangeCause::created);

/// Whether a sync client has a file of this path, but has not downloaded it.
bool hasPlaceholder(ports::FileSystem& files, const std::string& path);
/// The refusal of a change of such a file.
base::Failure notDownloaded(const std::string& path);

/// Logs a failure behind its fixed text, and returns it.
base::Failure logged(std::string_view message, base::Failure failure);

}  // namespace tessaly::store
