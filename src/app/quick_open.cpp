// SPDX-License-Identifier: MIT
#include "app/quick_open.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "app/note_address.h"
#include "base/day.h"
#include "search/folded_text.h"
#include "store/note_names.h"
#include "store/snapshot_difference.h"

namespace tessaly::app {

namespace {

using Notes = store::GeneralNotes;

/// Fewer digits are more often those of a title.
constexpr std::size_t leastDateDigits = 4;
constexpr std::size_t mostDatedDays = 10;

/// A note and when it was changed.
struct Changed {
    base::Instant when{};
    const store::GeneralNote* note = nullptr;  ///< null: the note of `day`
    base::Day day{};
};

std::string shownTitle(const store::LoadedNote& note) {
    return note.title.empty() ? std::string(store::baseName(note.filename)) : note.title;
}

std::string shownFolder(std::string_view filename) {
    const std::size_t slash = filename.rfind('/');
    return std::string(filename.substr(0, slash == std::string_view::npos ? 0 : slash));
}

QuickOpenRow noteRow(const store::LoadedNote& note, std::vector<base::TextRange> ranges) {
    return {Place::ofNote(note.filename), shownTitle(note), shownFolder(note.filename),
            std::move(ranges)};
}

}  // namespace

/// The titles of all notes, folded, by file name; those that a text was found in are asked first
/// when more of it is typed.
class QuickOpen::Titles {
public:
    void update(std::shared_ptr<const Notes> notes) {
        if (notes == _notes) {
            return;
        }
        std::vector<Entry> next;
        next.reserve(notes->size());
        std::size_t taken = 0;
        store::forEachDifference<store::ByFilename>(
            *_notes, *notes, [&](const Notes::Pointer& before, const Notes::Pointer& after) {
                const auto name = (after ? after : before)->note.filename;
                while (taken < _entries.size() && _entries[taken].note->note.filename < name) {
                    next.push_back(std::move(_entries[taken++]));
                }
                if (taken < _entries.size() && _entries[taken].note == before) {
                    ++taken;
                }
                if (after && !after->note.isFolder) {
                    next.push_back(entryOf(after));
                }
            });
        std::move(_entries.begin() + static_cast<std::ptrdiff_t>(taken), _entries.end(),
                  std::back_inserter(next));
        _entries = std::move(next);
        _notes = std::move(notes);
        _typed.reset();
    }

    /// The best first.
    std::vector<QuickOpenRow> rows(std::string_view typed, std::size_t most) {
        FuzzyPattern pattern(typed);
        find(pattern);
        std::vector<Found> best(std::min(most, _found.size()));
        std::partial_sort_copy(_found.begin(), _found.end(), best.begin(), best.end(),
                               [this](const Found& a, const Found& b) { return isBetter(a, b); });
        std::vector<QuickOpenRow> rows;
        for (const Found& found : best) {
            const store::LoadedNote& note = _entries[found.entry].note->note;
            rows.push_back(noteRow(note, pattern.match(shownTitle(note))->ranges));
        }
        return rows;
    }

private:
    struct Entry {
        Notes::Pointer note;
        std::string title;  // folded
        std::uint64_t letters;
    };
    struct Found {
        std::uint32_t entry;
        std::int32_t score;
    };

    static Entry entryOf(const Notes::Pointer& note) {
        std::string title = search::folded(shownTitle(note->note));
        const std::uint64_t letters = lettersIn(title);
        return {note, std::move(title), letters};
    }

    /// What more letters are found in, fewer were found in, too.
    void find(FuzzyPattern& pattern) {
        if (!_typed || !pattern.folded().starts_with(*_typed)) {
            _found.clear();
            for (std::size_t i = 0; i < _entries.size(); ++i) {
                _found.push_back({static_cast<std::uint32_t>(i), 0});
            }
        }
        _typed = pattern.folded();
        std::erase_if(_found, [&](Found& found) {
            const Entry& entry = _entries[found.entry];
            if ((pattern.letters() & ~entry.letters) != 0) {
                return true;
            }
            const auto score = pattern.score(entry.title);
            found.score = score.value_or(0);
            return !score;
        });
    }

    bool isBetter(const Found& a, const Found& b) const {
        if (a.score != b.score) {
            return a.score > b.score;
        }
        const auto changed = [this](const Found& found) {
            return _entries[found.entry].note->note.contentChangedDate;
        };
        return changed(a) != changed(b) ? changed(a) > changed(b) : a.entry < b.entry;
    }

    std::shared_ptr<const Notes> _notes = std::make_shared<const Notes>();
    std::vector<Entry> _entries;        // by file name
    std::optional<std::string> _typed;  // folded, what `_found` was found by; nothing: by none
    std::vector<Found> _found;          // by file name
};

QuickOpen::QuickOpen(Services& services)
    : _services(services),
      _formats(services.ports().locale.formats),
      _titles(std::make_unique<Titles>()) {}

QuickOpen::~QuickOpen() = default;

std::vector<QuickOpenRow> QuickOpen::rows(std::string_view typed, std::size_t most) {
    if (FuzzyPattern(typed).isEmpty()) {
        return lastChanged(most);
    }
    _titles->update(_services.noteCache().generalNotes());
    std::vector<QuickOpenRow> rows;
    addDays(rows, typed, std::min(most, mostDatedDays));
    std::ranges::move(_titles->rows(typed, most - rows.size()), std::back_inserter(rows));
    return rows;
}

QuickOpenRow QuickOpen::dayRow(base::Day day) const {
    return {Place::ofDay(day), _formats.day(day, "EEEEdMMMMyyyy"), base::tagText(day), {}};
}

void QuickOpen::addDays(std::vector<QuickOpenRow>& rows, std::string_view typed,
                        std::size_t most) const {
    const auto named = parseDay(typed, _services.today(), _formats);
    if (named) {
        rows.push_back(dayRow(*named));
        return;
    }
    if (typed.size() < leastDateDigits || typed.find_first_not_of("0123456789-") != typed.npos) {
        return;
    }
    std::vector<base::Day> days;
    _services.noteCache().calendarNotes()->forEach([&](const store::CalendarNotes::Pointer& note) {
        const base::Day day = *note->model.date;
        const bool isNamed =
            base::tagText(day).starts_with(typed) || base::fileText(day).starts_with(typed);
        if (note->stamp && isNamed) {
            days.push_back(day);
        }
    });
    for (auto day = days.rbegin(); day != days.rend() && rows.size() < most; ++day) {
        rows.push_back(dayRow(*day));
    }
}

std::vector<QuickOpenRow> QuickOpen::lastChanged(std::size_t most) const {
    const auto notes = _services.noteCache().generalNotes();
    const auto days = _services.noteCache().calendarNotes();
    std::vector<Changed> all;
    all.reserve(notes->size() + days->size());
    notes->forEach([&](const Notes::Pointer& note) {
        if (!note->note.isFolder) {
            all.push_back({note->note.contentChangedDate, note.get(), {}});
        }
    });
    days->forEach([&](const store::CalendarNotes::Pointer& note) {
        if (note->stamp) {
            all.push_back({note->stamp->modified, nullptr, *note->model.date});
        }
    });
    std::vector<Changed> newest(std::min(most, all.size()));
    std::partial_sort_copy(all.begin(), all.end(), newest.begin(), newest.end(),
                           [](const Changed& a, const Changed& b) { return a.when > b.when; });
    std::vector<QuickOpenRow> rows;
    for (const Changed& changed : newest) {
        rows.push_back(changed.note ? noteRow(changed.note->note, {}) : dayRow(changed.day));
    }
    return rows;
}

}  // namespace tessaly::app
