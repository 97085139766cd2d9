// SPDX-License-Identifier: MIT
#include "store/note_index_writer.h"

#include <cstdint>
#include <limits>
#include <mutex>
#include <utility>

#include "store/note_index_format.h"
#include "store/note_index_tables.h"

namespace tessaly::store {

using base::Done;
using base::Result;

namespace {

constexpr std::uint64_t alignment = 8;  // of the tables behind the texts
constexpr std::string_view filling("\0\0\0\0\0\0\0", alignment - 1);
constexpr std::size_t largest = std::numeric_limits<std::uint32_t>::max();

/// A file that has changed while it was read has another size, or a later date.
bool isWhole(const WrittenNote& note) {
    return note.bytes.size() == note.stamp.size && note.bytes.size() <= largest &&
           note.record.size() <= largest;
}

}  // namespace

struct NoteIndexWriter::State {
    const std::unique_ptr<ports::NewCacheFile> file;
    const NoteIndex::Key key;
    const base::Instant lastSettled;  ///< of a state that can be told by its stamp

    mutable std::mutex mutex{};  ///< of what follows, and of writing `file`
    NoteIndexTables tables{};
    std::uint64_t texts = 0;  ///< bytes written
    Result<Done> written{Done{}};

    void writeText(std::string_view bytes) {
        if (written) {
            written = file->write(bytes);
        }
        texts += bytes.size();
    }
};

NoteIndexWriter::NoteIndexWriter(std::unique_ptr<State> state) : _state(std::move(state)) {}

NoteIndexWriter::~NoteIndexWriter() = default;

Result<std::unique_ptr<NoteIndexWriter>> NoteIndexWriter::begin(
    ports::CacheFiles& files, const std::string& file, NoteIndex::Key key, base::Instant begun,
    std::chrono::milliseconds stillFor) {
    auto created = files.create(file);
    if (!created) {
        return created.failure();
    }
    std::unique_ptr<State> state(new State{
        .file = *std::move(created), .key = std::move(key), .lastSettled = begun - stillFor});
    return std::unique_ptr<NoteIndexWriter>(new NoteIndexWriter(std::move(state)));
}

void NoteIndexWriter::add(const WrittenNote& note) {
    const base::Instant last = _state->lastSettled;
    if (!isWhole(note) || note.stamp.modified > last || note.stamp.changed > last) {
        return;
    }
    IndexNote row{};
    row.modified = nanoseconds(note.stamp.modified);
    row.changed = nanoseconds(note.stamp.changed);
    row.textHash = textHash(note.bytes);
    row.textLength = static_cast<std::uint32_t>(note.bytes.size());
    const std::lock_guard lock(_state->mutex);
    row.textStart = _state->texts;
    _state->writeText(note.bytes);
    _state->tables.add(note.type, note.filename, note.stamp.inode, row, note.record);
}

std::size_t NoteIndexWriter::size() const {
    const std::lock_guard lock(_state->mutex);
    return _state->tables.size();
}

Result<Done> NoteIndexWriter::finish() {
    const std::lock_guard lock(_state->mutex);
    _state->writeText(filling.substr(0, (alignment - _state->texts % alignment) % alignment));
    if (!_state->written) {
        return _state->written;
    }
    if (auto tables = _state->tables.write(*_state->file, _state->key, _state->texts); !tables) {
        return tables;
    }
    return _state->file->putInPlace();
}

}  // namespace tessaly::store
