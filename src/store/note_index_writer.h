// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "base/day.h"
#include "base/failure.h"
#include "base/note_type.h"
#include "ports/cache_files.h"
#include "ports/file_system.h"
#include "store/note_index.h"

namespace tessaly::store {

/// A note that goes into an index.
struct WrittenNote {
    base::NoteType type = base::NoteType::none;
    std::string_view filename;  ///< relative to the kind's folder
    std::string_view bytes;     ///< as on disk
    ports::FileStamp stamp;     ///< as it was before `bytes` were read
    std::string_view record;    ///< what else is to be had again; opaque here, may be empty
};

/// Writes the index of a data folder: texts first, as they come, then the tables that were gathered
/// meanwhile, which take some 150 bytes a note. Notes may be added by several threads at once.
class NoteIndexWriter {
public:
    /// How long a file's state must have lain still before its text was read to be told by that
    /// state alone. A clock of the file system may stand still for some milliseconds, and some keep
    /// only every second one: a file that is written twice within that time with as many bytes
    /// looks the same.
    static constexpr std::chrono::milliseconds settled{2000};

    /// `begun`: the system's time (not the user's idea of it) before the first note was read.
    /// Failure `exists`: somebody is writing it at this moment.
    static base::Result<std::unique_ptr<NoteIndexWriter>> begin(
        ports::CacheFiles& files, const std::string& file, NoteIndex::Key key, base::Instant begun,
        std::chrono::milliseconds stillFor = settled);
    ~NoteIndexWriter();

    /// A note whose file was changed less than `stillFor` before `begun`, or after it, is left out;
    /// so is one whose bytes are not as many as its stamp says. A failure is told by
    /// `finish`.
    void add(const WrittenNote& note);

    /// How many notes were added and not left out.
    std::size_t size() const;

    /// Writes the tables and puts the index in the place of the one before. Failure: the first one
    /// that there was; the index before stays.
    base::Result<base::Done> finish();

private:
    struct State;
    explicit NoteIndexWriter(std::unique_ptr<State> state);
    const std::unique_ptr<State> _state;
};

}  // namespace tessaly::store
