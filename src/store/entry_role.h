// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "ports/file_system.h"

namespace tessaly::store {

/// What an entry of a folder of notes is to us, by its name and kind alone. Everything that lists
/// notes asks here, so that the watcher and a reading never differ.
enum class EntryRole {
    passedOver,   ///< hidden, an attachments folder, no note
    note,         ///< may be a conflict copy, too
    folder,       ///< of notes
    placeholder,  ///< of a note that a sync client has not downloaded
    unreadable,   ///< named like a note, but a link or a pipe; or a name that is not UTF-8
};
/// A link that is not named like a note is passed over; where it leads is not asked.
EntryRole entryRole(const ports::FolderEntry& entry);

/// The same in a folder of the data folder, given relative to it. Saved filters have no extension:
/// below "Filters" each file of an ordinary name counts as a note does elsewhere.
EntryRole entryRoleIn(std::string_view folder, const ports::FolderEntry& entry);

/// Whether a file may be a conflict copy by its name, be it a note's name or not. To know, its
/// folder's notes must be asked (`NotesByName`).
bool mayBeConflictCopy(const ports::FolderEntry& entry);

/// Whether a path below a kind's folder is one that readings go to: no part of it is hidden or
/// "_attachments".
bool isCoveredPath(std::string_view path);

}  // namespace tessaly::store
