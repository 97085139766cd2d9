// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "base/failure.h"
#include "base/note_type.h"
#include "grammar/todo.h"
#include "ports/file_system.h"

namespace tessaly::store {

/// The file of an index, from its beginning: the notes' texts, one behind the other, filled up to
/// eight bytes; the sections of its tables, in the order of `IndexSections`; `IndexTrailer`. All
/// numbers are the machine's own. Any change of this file or of what records hold is a new version.
inline constexpr std::uint32_t indexVersion = 1;

/// A folder with notes. They lie by kind and name, which is relative to the kind's folder.
struct IndexFolder {
    std::uint32_t type;
    std::uint32_t nameLength;
    std::uint64_t nameStart;  ///< in the section of names
    std::uint32_t first;      ///< its first note
    std::uint32_t count;
};

/// A note. A folder's notes lie side by side, by inode. The inodes lie in a section of their own,
/// at the same place.
struct IndexNote {
    std::int64_t modified;  ///< nanoseconds since 1970, as is the next
    std::int64_t changed;
    std::uint64_t textStart;  ///< in the section of texts
    std::uint64_t textHash;
    std::uint64_t nameStart;    ///< in the section of names; without the folder's
    std::uint64_t recordStart;  ///< in the section of records
    std::uint32_t textLength;   ///< and the size of the file
    std::uint32_t recordLength;
    std::uint32_t nameLength;
    std::uint32_t unused;
};

/// What stands at the end of the file.
struct IndexTrailer {
    std::uint64_t trailerHash;  ///< of all that follows
    std::uint64_t tablesHash;   ///< of all sections but the texts
    std::uint64_t texts;        ///< sizes in bytes, or numbers of rows
    std::uint64_t folders;
    std::uint64_t notes;
    std::uint64_t names;
    std::uint64_t records;
    std::uint64_t root;
    std::uint64_t markers;
    // All versions end with these.
    std::uint64_t magic;
    std::uint32_t byteOrder;
    std::uint32_t version;
};

/// Where the parts of an index lie.
struct IndexSections {
    std::string_view texts;
    std::string_view inodes;   ///< 64 bits each
    std::string_view notes;    ///< IndexNote
    std::string_view folders;  ///< IndexFolder
    std::string_view names;
    std::string_view records;
    std::string_view root;
    std::uint64_t markers = 0;
};

/// Takes an index apart, and proves all but the texts. It may hold any bytes. Failure `malformed`.
base::Result<IndexSections> readIndexSections(std::string_view file);

/// A trailer whose sizes the caller has filled in, with all that is the same in every index.
/// `tablesHash` has to be there already.
IndexTrailer sealed(IndexTrailer trailer);

std::uint64_t textHash(std::string_view text);

/// The settings that records depend on.
std::uint64_t bitsOf(const grammar::MarkerSettings& markers);

inline std::int64_t nanoseconds(base::Instant time) {
    return time.time_since_epoch().count();
}

/// A note's folder and its name there.
struct FolderAndName {
    std::string_view folder;  ///< empty: the kind's folder itself
    std::string_view name;
};
FolderAndName splitFilename(std::string_view filename);

/// Bytes of a section; empty where they would go past its end.
inline std::string_view partOf(std::string_view section, std::uint64_t start,
                               std::uint64_t length) {
    return start <= section.size() && length <= section.size() - start
               ? section.substr(start, length)
               : std::string_view{};
}

/// Row `place` of a table; all zero where it has none.
template <class Row>
Row rowAt(std::string_view table, std::size_t place) {
    static_assert(std::is_trivially_copyable_v<Row>);
    Row row{};
    if (place < table.size() / sizeof(Row)) {
        std::memcpy(&row, table.data() + place * sizeof(Row), sizeof(Row));
    }
    return row;
}

template <class Row>
std::string_view bytesOf(const Row& row) {
    static_assert(std::has_unique_object_representations_v<Row>, "no bytes in between");
    return {reinterpret_cast<const char*>(&row), sizeof(Row)};
}

}  // namespace tessaly::store
