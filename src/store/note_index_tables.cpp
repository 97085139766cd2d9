// SPDX-License-Identifier: MIT
#include "store/note_index_tables.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <tuple>
#include <xxhash.h>

namespace tessaly::store {

using base::Done;
using base::Result;

namespace {

/// Writes the tables' bytes, and hashes them on the way.
class TablesSink {
public:
    explicit TablesSink(ports::NewCacheFile& file) : _file(file), _state(XXH3_createState()) {
        XXH3_64bits_reset(_state.get());
    }

    void write(std::string_view bytes) {
        XXH3_64bits_update(_state.get(), bytes.data(), bytes.size());
        if (_written) {
            _written = _file.write(bytes);
        }
    }
    const Result<Done>& written() const { return _written; }
    std::uint64_t hash() const { return XXH3_64bits_digest(_state.get()); }

private:
    struct FreeState {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };

    ports::NewCacheFile& _file;
    const std::unique_ptr<XXH3_state_t, FreeState> _state;
    Result<Done> _written{Done{}};
};

}  // namespace

void NoteIndexTables::add(base::NoteType type, std::string_view filename, std::uint64_t inode,
                          IndexNote row, std::string_view record) {
    const FolderAndName parts = splitFilename(filename);
    row.nameStart = addName(parts.name);
    row.nameLength = static_cast<std::uint32_t>(parts.name.size());
    row.recordStart = _records.size();
    row.recordLength = static_cast<std::uint32_t>(record.size());
    _records += record;
    _notes.push_back({numberOf(type, parts.folder), inode, row});
}

std::uint64_t NoteIndexTables::addName(std::string_view name) {
    const std::uint64_t start = _names.size();
    _names += name;
    return start;
}

std::uint32_t NoteIndexTables::numberOf(base::NoteType type, std::string_view folder) {
    if (_lastFolder == nullptr || _lastFolder->first != type || _lastFolder->second != folder) {
        const auto next = static_cast<std::uint32_t>(_folders.size());
        const auto found = _folders.try_emplace(Folder(type, folder), next).first;
        _lastFolder = &found->first;
        _lastNumber = found->second;
    }
    return _lastNumber;
}

std::vector<IndexFolder> NoteIndexTables::sortFolders() {
    std::vector<IndexFolder> rows;
    std::vector<std::uint32_t> ranks(_folders.size());
    for (const auto& [folder, number] : _folders) {
        ranks[number] = static_cast<std::uint32_t>(rows.size());
        rows.push_back({.type = static_cast<std::uint32_t>(folder.first),
                        .nameLength = static_cast<std::uint32_t>(folder.second.size()),
                        .nameStart = addName(folder.second),
                        .first = 0,
                        .count = 0});
    }
    for (Note& note : _notes) {
        note.folder = ranks[note.folder];
    }
    return rows;
}

void NoteIndexTables::sortNotes(std::vector<IndexFolder>& folders) {
    std::sort(_notes.begin(), _notes.end(), [](const Note& a, const Note& b) {
        return std::tie(a.folder, a.inode, a.row.textStart, a.row.nameStart) <
               std::tie(b.folder, b.inode, b.row.textStart, b.row.nameStart);
    });
    for (const Note& note : _notes) {
        ++folders[note.folder].count;
    }
    std::uint32_t first = 0;
    for (IndexFolder& folder : folders) {
        folder.first = first;
        first += folder.count;
    }
}

Result<Done> NoteIndexTables::write(ports::NewCacheFile& file, const NoteIndex::Key& key,
                                    std::uint64_t texts) {
    std::vector<IndexFolder> folders = sortFolders();
    sortNotes(folders);
    TablesSink sink(file);
    for (const Note& note : _notes) {
        sink.write(bytesOf(note.inode));
    }
    for (const Note& note : _notes) {
        sink.write(bytesOf(note.row));
    }
    for (const IndexFolder& folder : folders) {
        sink.write(bytesOf(folder));
    }
    for (const std::string_view section :
         {std::string_view(_names), std::string_view(_records), std::string_view(key.root)}) {
        sink.write(section);
    }
    IndexTrailer trailer{};
    trailer.tablesHash = sink.hash();
    trailer.texts = texts;
    trailer.folders = folders.size();
    trailer.notes = _notes.size();
    trailer.names = _names.size();
    trailer.records = _records.size();
    trailer.root = key.root.size();
    trailer.markers = bitsOf(key.markers);
    return sink.written() ? file.write(bytesOf(sealed(trailer))) : sink.written();
}

}  // namespace tessaly::store
