// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/failure.h"
#include "base/note_type.h"
#include "ports/cache_files.h"
#include "store/note_index.h"
#include "store/note_index_format.h"

namespace tessaly::store {

/// The tables of an index as they are gathered, and written behind its texts. One thread at a time.
class NoteIndexTables {
public:
    /// Adds a note. `row` has all but the places of name and record.
    void add(base::NoteType type, std::string_view filename, std::uint64_t inode, IndexNote row,
             std::string_view record);

    std::size_t size() const { return _notes.size(); }

    /// Writes the tables and the trailer behind `texts` bytes of texts. Nothing can be added
    /// afterwards.
    base::Result<base::Done> write(ports::NewCacheFile& file, const NoteIndex::Key& key,
                                   std::uint64_t texts);

private:
    using Folder = std::pair<base::NoteType, std::string>;
    struct Note {
        std::uint32_t folder;  ///< by the order in which they came, later by kind and name
        std::uint64_t inode;
        IndexNote row;
    };

    std::uint32_t numberOf(base::NoteType type, std::string_view folder);
    std::uint64_t addName(std::string_view name);
    std::vector<IndexFolder> sortFolders();
    void sortNotes(std::vector<IndexFolder>& folders);

    std::map<Folder, std::uint32_t, std::less<>> _folders;
    std::vector<Note> _notes;
    std::string _names;
    std::string _records;
    const Folder* _lastFolder = nullptr;  ///< most notes come folder by folder
    std::uint32_t _lastNumber = 0;
};

}  // namespace tessaly::store
