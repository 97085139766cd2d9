// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "search/note_matcher.h"
#include "search/result_rows.h"

namespace tessaly::search {

/// The lists that have a name: "//recent", which an empty query means too, and "//inbox". Any other
/// name has an empty list.
enum class DefaultList { none, recent, inbox };

/// `name` is what stands behind "//"; its case and blanks around it do not count.
DefaultList defaultListCalled(std::string_view name);

/// The open tasks of a general note that carry no date of any kind, each a row in line order;
/// nothing for other notes. Of the note, `tasks`, `text` and `foldedText` are looked at.
NoteMatches inboxOf(const SearchedNote& note);

/// Adds the list "Recent".
void addRecentNotes(ResultRows& rows, std::span<const SearchedNote> newestFirst);

/// By what the notes changed last are told. Of two changed at the same instant a general note comes
/// before a calendar note, then the smaller file name does.
struct NoteAge {
    base::Instant modified{};
    base::NoteType type = base::NoteType::none;
    std::string_view filename;
};
bool isNewer(const NoteAge& a, const NoteAge& b);

/// Keeps the `most` newest notes of any number that are added in any order. Collections of several
/// threads are joined. `Note` is whatever the caller wants to get back.
template <class Note>
class NewestNotes {
public:
    explicit NewestNotes(std::size_t most) : _most(most) {}

    /// Whether a note of this age would be kept at present: asked ahead, it spares making a `Note`.
    bool wants(const NoteAge& age) const {
        return _kept.size() < _most || (_most > 0 && isNewer(age, _kept.front().age()));
    }

    void add(const NoteAge& age, Note note) {
        if (wants(age)) {
            push({age.modified, age.type, std::string(age.filename), std::move(note)});
        }
    }

    void join(NewestNotes&& other) {
        for (Kept& kept : other._kept) {
            if (wants(kept.age())) {
                push(std::move(kept));
            }
        }
        other._kept.clear();
    }

    /// The notes, the newest first; none is left.
    std::vector<Note> take() {
        std::sort_heap(_kept.begin(), _kept.end(), IsNewer());
        std::vector<Note> notes;
        for (Kept& kept : _kept) {
            notes.push_back(std::move(kept.note));
        }
        _kept.clear();
        return notes;
    }

private:
    struct Kept {
        base::Instant modified;
        base::NoteType type;
        std::string filename;
        Note note;

        NoteAge age() const { return {modified, type, filename}; }
    };
    struct IsNewer {
        bool operator()(const Kept& a, const Kept& b) const { return isNewer(a.age(), b.age()); }
    };

    void push(Kept kept) {
        if (_kept.size() == _most) {
            std::pop_heap(_kept.begin(), _kept.end(), IsNewer());
            _kept.pop_back();
        }
        _kept.push_back(std::move(kept));
        std::push_heap(_kept.begin(), _kept.end(), IsNewer());
    }

    std::size_t _most;
    std::vector<Kept> _kept;  // a heap; the oldest is at its front
};

}  // namespace tessaly::search
