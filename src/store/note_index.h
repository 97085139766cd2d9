// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"
#include "ports/cache_files.h"
#include "ports/file_system.h"

namespace tessaly::store {

struct IndexSections;

/// The notes of a data folder as they were read some time ago, each with the state that its file
/// had: inode, size, date and last change of the inode, all to the nanosecond. What a note's file
/// is now must be looked at first; the index answers for that very state only, so that it saves
/// opening and reading the file, and never shows a text that is not its.
///
/// It lies in one file of the cache folder, mapped into memory. Deleting it costs time alone. Its
/// tables have a checksum that is proved when it is opened, each text one of its own that is proved
/// when the text is asked for. A value that does not change; any thread.
class NoteIndex {
public:
    /// What an index is about. One of another folder, of other rules or another machine's byte
    /// order is foreign.
    struct Key {
        std::string root;  ///< resolved
        grammar::MarkerSettings markers;
    };

    /// Failure: `notFound`: there is none; `malformed`: it is damaged, or of a newer or older
    /// version of the program; `changed`: it is of another folder. Nothing is logged.
    static base::Result<std::shared_ptr<const NoteIndex>> open(ports::CacheFiles& files,
                                                               const std::string& file,
                                                               const Key& key);

    /// The file of the index of `root` in the cache folder.
    static std::string fileFor(const std::string& cacheFolder, const std::string& root);

    ~NoteIndex();

    /// How many notes it holds.
    std::size_t size() const;

    /// A folder of notes in the index; one that it does not know holds none.
    class Folder;
    /// A note in the index, by its place; valid as long as the index.
    struct Entry {
        std::uint32_t place = 0;
    };

    /// `name` relative to the kind's folder; empty: that folder itself.
    Folder folder(base::NoteType type, std::string_view name) const;

    /// The file's bytes, as on disk; nothing: what lies there has another checksum.
    std::optional<std::string_view> bytes(Entry entry) const;

    /// What a reading by `Key::markers` made of the note beside its text (see `WrittenNote`);
    /// nothing when the index was written by other markers.
    std::optional<std::string_view> record(Entry entry) const;

    /// The bytes of a note whatever the state of its file is now: an earlier text, for who looks
    /// for one.
    std::optional<std::string_view> earlierBytes(base::NoteType type,
                                                 std::string_view filename) const;

    /// Part of what `bytes` gave, or several notes' with all between them, is not needed again
    /// soon. Only whole pages are given back: a short text has none.
    void forget(std::string_view part) const { _file->forget(part); }
    /// No record is needed soon: opening has looked at all of them.
    void forgetRecords() const;

private:
    NoteIndex(std::shared_ptr<const ports::MappedFile> file, const IndexSections& sections,
              bool hasRecords);

    const std::shared_ptr<const ports::MappedFile> _file;
    const std::unique_ptr<const IndexSections> _sections;
    const bool _hasRecords;
};

/// Finds the notes of one folder by name and state.
class NoteIndex::Folder {
public:
    /// The note of that name, if its file had this state. `stamp.created` does not count.
    std::optional<Entry> find(std::string_view name, const ports::FileStamp& stamp) const;

private:
    friend class NoteIndex;
    const NoteIndex* _index = nullptr;
    std::uint32_t _first = 0;
    std::uint32_t _count = 0;
};

}  // namespace tessaly::store
