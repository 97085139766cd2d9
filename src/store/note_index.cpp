// SPDX-License-Identifier: MIT
#include "store/note_index.h"

#include <algorithm>
#include <utility>

#include "base/localisation.h"
#include "base/sha256.h"
#include "store/note_index_format.h"

namespace tessaly::store {

using base::Failure;

namespace {

constexpr std::size_t fileNameLength = 16;

/// The first place from `first` on, below `end`, that is not before what is sought.
template <class IsBefore>
std::size_t partition(std::size_t first, std::size_t end, const IsBefore& isBefore) {
    while (first < end) {
        const std::size_t middle = first + (end - first) / 2;
        if (isBefore(middle)) {
            first = middle + 1;
        } else {
            end = middle;
        }
    }
    return first;
}

std::uint64_t inodeAt(const IndexSections& sections, std::size_t place) {
    return rowAt<std::uint64_t>(sections.inodes, place);
}

IndexNote noteAt(const IndexSections& sections, std::size_t place) {
    return rowAt<IndexNote>(sections.notes, place);
}

std::string_view nameOf(const IndexSections& sections, const IndexNote& note) {
    return partOf(sections.names, note.nameStart, note.nameLength);
}

bool hasState(const IndexNote& note, const ports::FileStamp& stamp) {
    return note.textLength == stamp.size && note.modified == nanoseconds(stamp.modified) &&
           note.changed == nanoseconds(stamp.changed);
}

std::size_t noteCount(const IndexSections& sections) {
    return sections.notes.size() / sizeof(IndexNote);
}

Failure failureOf(const std::string& file, const Failure& failure) {
    return {failure.kind, file + ": " + failure.description};
}

}  // namespace

NoteIndex::NoteIndex(std::shared_ptr<const ports::MappedFile> file, const IndexSections& sections,
                     bool hasRecords)
    : _file(std::move(file)),
      _sections(std::make_unique<const IndexSections>(sections)),
      _hasRecords(hasRecords) {}

NoteIndex::~NoteIndex() = default;

base::Result<std::shared_ptr<const NoteIndex>> NoteIndex::open(ports::CacheFiles& files,
                                                               const std::string& file,
                                                               const Key& key) {
    auto mapped = files.map(file);
    if (!mapped) {
        return mapped.failure();
    }
    const auto sections = readIndexSections((*mapped)->bytes());
    if (!sections) {
        return failureOf(file, sections.failure());
    }
    if (sections->root != key.root) {
        return failureOf(file,
                         {Failure::Kind::changed, base::tr("the index is of another data folder")});
    }
    return std::shared_ptr<const NoteIndex>(
        new NoteIndex(*std::move(mapped), *sections, sections->markers == bitsOf(key.markers)));
}

std::string NoteIndex::fileFor(const std::string& cacheFolder, const std::string& root) {
    return cacheFolder + "/index/" + base::sha256(root).substr(0, fileNameLength);
}

std::size_t NoteIndex::size() const {
    return noteCount(*_sections);
}

NoteIndex::Folder NoteIndex::folder(base::NoteType type, std::string_view name) const {
    const auto keyAt = [this](std::size_t place) {
        const auto row = rowAt<IndexFolder>(_sections->folders, place);
        return std::pair(row.type, partOf(_sections->names, row.nameStart, row.nameLength));
    };
    const std::pair wanted(static_cast<std::uint32_t>(type), name);
    const std::size_t count = _sections->folders.size() / sizeof(IndexFolder);
    const std::size_t place =
        partition(0, count, [&](std::size_t at) { return keyAt(at) < wanted; });
    Folder found;
    found._index = this;
    if (place < count && keyAt(place) == wanted) {
        const auto row = rowAt<IndexFolder>(_sections->folders, place);
        found._first = std::min(row.first, static_cast<std::uint32_t>(size()));
        found._count = std::min(row.count, static_cast<std::uint32_t>(size()) - found._first);
    }
    return found;
}

std::optional<std::string_view> NoteIndex::bytes(Entry entry) const {
    const IndexNote note = noteAt(*_sections, entry.place);
    const std::string_view text = partOf(_sections->texts, note.textStart, note.textLength);
    return text.size() == note.textLength && textHash(text) == note.textHash ? std::optional(text)
                                                                             : std::nullopt;
}

void NoteIndex::forgetRecords() const {
    _file->forget(_sections->records);
}

std::optional<std::string_view> NoteIndex::record(Entry entry) const {
    if (!_hasRecords) {
        return std::nullopt;
    }
    const IndexNote note = noteAt(*_sections, entry.place);
    return partOf(_sections->records, note.recordStart, note.recordLength);
}

std::optional<std::string_view> NoteIndex::earlierBytes(base::NoteType type,
                                                        std::string_view filename) const {
    const FolderAndName wanted = splitFilename(filename);
    const Folder in = folder(type, wanted.folder);
    for (std::uint32_t place = in._first; place < in._first + in._count; ++place) {
        if (nameOf(*_sections, noteAt(*_sections, place)) == wanted.name) {
            return bytes({place});
        }
    }
    return std::nullopt;
}

std::optional<NoteIndex::Entry> NoteIndex::Folder::find(std::string_view name,
                                                        const ports::FileStamp& stamp) const {
    if (_count == 0) {
        return std::nullopt;
    }
    const IndexSections& sections = *_index->_sections;
    const std::size_t end = std::size_t{_first} + _count;
    std::size_t place =
        partition(_first, end, [&](std::size_t at) { return inodeAt(sections, at) < stamp.inode; });
    for (; place < end && inodeAt(sections, place) == stamp.inode; ++place) {
        const IndexNote note = noteAt(sections, place);
        if (hasState(note, stamp) && nameOf(sections, note) == name) {
            return Entry{static_cast<std::uint32_t>(place)};
        }
    }
    return std::nullopt;
}

}  // namespace tessaly::store
