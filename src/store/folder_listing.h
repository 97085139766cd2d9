// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "base/note_type.h"
#include "ports/file_system.h"
#include "store/note_index.h"
#include "store/note_reader.h"

namespace tessaly::store {

/// A folder of notes.
struct NoteFolder {
    base::NoteType type;
    std::string name;  ///< relative to the kind's folder; empty for that itself
    std::string path;
};

/// The path of a kind's entry relative to the data folder, for people: always UTF-8.
std::string pathInData(base::NoteType type, std::string_view name);

/// A note that the start-up index knows in the state that its file has now.
struct KnownNote {
    std::string name;
    ports::FileStamp stamp;
    NoteIndex::Entry entry;
};

/// A folder's entries, told apart, in no order.
struct FolderListing {
    std::vector<KnownNote> known;
    std::vector<ports::FolderEntry> notes;  ///< the other ones
    std::vector<ports::FolderEntry> others;
    /// Those that lie beside their notes, and files whose note is not there and that nobody would
    /// see otherwise, as their own names are no notes'.
    std::vector<ConflictCopy> conflictCopies;
};

/// Lists a folder; with an index, looks at each of its files, too.
base::Result<FolderListing> listNotes(ports::FileSystem& files, const NoteFolder& folder,
                                      const NoteIndex* index);

}  // namespace tessaly::store
