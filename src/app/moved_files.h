// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "app/services.h"
#include "base/failure.h"

namespace tessaly::app {

/// A general note, or a folder of them, on the disk. Names are relative to the folder of general
/// notes.
struct FiledItem {
    std::string root;  ///< the data folder in use
    std::string name;  ///< "Work/Plans.txt"
    std::string path;  ///< absolute

    std::string folder() const;  ///< "Work"; empty: the topmost
};

/// Failures, in words for the user: it is not there, is no such thing, or is passed over.
base::Result<FiledItem> filedItem(Services& services, const std::string& name,
                                  ports::FolderEntry::Kind kind);
/// A folder to put things into, made if it is not there; empty: the topmost.
base::Result<FiledItem> targetFolder(Services& services, std::string_view folder);

/// The name of a file or folder for what the user typed; `malformed`: nothing is left of it.
base::Result<std::string> nameForTitle(std::string_view title);
/// What a user typed, as one line of text; `malformed`: it is not UTF-8, holds NUL, or is blank.
base::Result<std::string> acceptedLine(std::string_view typed);

/// Whether an entry of the folder `at`, but for the item itself, has a name that collides.
base::Result<bool> isNameTaken(Services& services, const std::string& at, std::string_view name,
                               const std::string& itself);
base::Failure nameIsTaken(std::string_view name);

/// Moves a note's file to the folder `to`, under the name or, if that is taken, the next that is
/// free; its bytes are in the history under its old path first. Returns its new name.
base::Result<std::string> moveToFreeName(Services& services, const FiledItem& note,
                                         const FiledItem& to, std::string_view base);

/// Has the cache look at what has another name now, and at all notes in it if it is a folder;
/// either name may be empty.
void tellCacheOfMove(Services& services, const std::string& from, const std::string& to);
/// Has the cache look at a note that has come, or at a folder and all notes in it.
void tellCacheOfReturn(Services& services, const std::string& name);

}  // namespace tessaly::app
