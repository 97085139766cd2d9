// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "base/shared_text.h"

namespace tessaly::store {

/// A text that a note held.
struct HeldText {
    base::SharedText text;
    std::optional<base::Instant> until;  ///< when it was seen to be replaced; nothing: unknown
};

/// What a note held at earlier times, oldest first.
struct HeldTexts {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to the kind's folder
    std::vector<HeldText> texts;
};

/// What notes held before others changed them, in memory: two devices that changed a note at the
/// same time most likely began with one of these texts. Of changes that follow each other closely,
/// as an editor's that saves while somebody writes, only the text before the first is kept. When
/// there is no room left, the oldest text goes, of whichever note. One thread.
class EarlierTexts {
public:
    struct Limits {
        /// A change belongs to the burst of the one before it that is no longer ago than this.
        std::chrono::seconds burst = std::chrono::minutes(5);
        std::size_t textsOfNote = 8;
        std::size_t bytes = std::size_t{16}
                            << 20;  ///< of all texts and what is needed to find them
    };

    EarlierTexts() : EarlierTexts(Limits()) {}
    explicit EarlierTexts(const Limits& limits) : _limits(limits) {}

    /// A note that held `text` was found changed. Copies the text, if it is kept.
    void remember(base::NoteType type, std::string_view filename, std::string_view text,
                  base::Instant now);

    /// What is kept of a note, which is forgotten. Its burst goes on.
    std::vector<HeldText> take(base::NoteType type, std::string_view filename);

    std::size_t bytes() const { return _bytes; }

private:
    using Name = std::pair<base::NoteType, std::string>;
    struct Kept {
        std::uint64_t age;  // a later text has a higher one
        HeldText text;
    };
    struct Note {
        std::optional<base::Instant> changed;
        std::deque<Kept> texts;  // oldest first
    };
    using Notes = std::map<Name, Note>;

    bool goesOn(const Note& note, base::Instant now) const;
    void dropOldestOf(Notes::iterator note);
    void forgetIfEmpty(Notes::iterator note);
    static std::size_t costOf(const Name& name, const HeldText& text);

    Limits _limits;
    Notes _notes;
    std::map<std::uint64_t, Notes::iterator> _byAge;
    std::uint64_t _lastAge = 0;
    std::size_t _bytes = 0;
};

}  // namespace tessaly::store
