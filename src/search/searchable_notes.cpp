// SPDX-License-Identifier: MIT
#include "search/searchable_notes.h"

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>

#include "search/folded_text.h"
#include "store/paths.h"
#include "store/snapshot_difference.h"

namespace tessaly::search {
namespace {

/// So many notes are a thread's turn.
constexpr std::size_t notesInBlock = 512;

/// Calls `body(first, last)` for blocks of indices, on all threads where there are several.
template <class Body>
void forEachBlock(base::Executor& executor, std::size_t count, const Body& body) {
    const std::size_t blocks = (count + notesInBlock - 1) / notesInBlock;
    base::parallelFor(executor, blocks, [&](std::size_t block) {
        const std::size_t first = block * notesInBlock;
        body(first, std::min(count, first + notesInBlock));
    });
}

bool areSame(const grammar::MarkerSettings& a, const grammar::MarkerSettings& b) {
    return a.isAsteriskTodo == b.isAsteriskTodo && a.isDashTodo == b.isDashTodo &&
           a.isNumbersTodo == b.isNumbersTodo;
}

/// In order. A note that comes in the place of one that goes stands for both.
std::vector<NotesInOrder::Change> changesOf(const std::vector<SearchableNote>& gone,
                                            std::vector<NotesInOrder::Pointer>& come) {
    std::vector<NotesInOrder::Change> changes;
    changes.reserve(gone.size() + come.size());
    for (NotesInOrder::Pointer& note : come) {
        changes.push_back({ByPlace::keyOf(*note), std::move(note)});
    }
    for (const SearchableNote& note : gone) {
        changes.push_back({ByPlace::keyOf(note), nullptr});
    }
    std::stable_sort(changes.begin(), changes.end(),
                     [](const auto& a, const auto& b) { return a.key < b.key; });
    const auto end = std::unique(changes.begin(), changes.end(),
                                 [](const auto& a, const auto& b) { return !(a.key < b.key); });
    changes.erase(end, changes.end());
    return changes;
}

}  // namespace

bool operator<(const NotePlace& a, const NotePlace& b) {
    if (comesBefore(a.key, b.key, a.sortBy)) {
        return true;
    }
    if (comesBefore(b.key, a.key, a.sortBy)) {
        return false;
    }
    return std::tie(a.day, a.filename) < std::tie(b.day, b.filename);
}

SearchedNote SearchableNote::view() const {
    SearchedNote note;
    note.type = general ? base::NoteType::note : base::NoteType::calendar;
    note.filename = filename;
    note.title = title;
    note.foldedTitle = foldedTitle;
    note.foldedFolder = foldedFolder;
    note.day = day;
    note.changedDay = changedDay;
    note.text = text;
    note.foldedText = comparedText();
    note.tasks = tasks;
    return note;
}

/// Makes notes; each thread has its own.
class SearchableNotes::Maker {
public:
    Maker(const SearchableNotes& owner, const NoteLooks& looks)
        : _owner(owner), _looks(looks), _localDays(owner._localTimeOf) {}

    /// As it is needed for finding its place.
    SearchableNote placed(const Source& source) const {
        SearchableNote note;
        note.general = source.general;
        note.calendar = source.calendar;
        note.sortBy = _looks.sortBy;
        if (source.general) {
            take(*source.general, note);
        } else {
            take(*source.calendar, note);
        }
        note.foldedTitle = folded(note.title);
        return note;
    }

    std::shared_ptr<const SearchableNote> whole(const Source& source) {
        SearchableNote note = placed(source);
        note.changedDay = _localDays(note.modified);
        note.folder = foldedFolder(note);
        note.foldedFolder = *note.folder;
        if (needsFolding(note.text)) {
            note.foldedCopy = folded(note.text);
        }
        note.tasks = tasksOf(note.text, note.comparedText(), _looks.markers, _scanner);
        return std::make_shared<const SearchableNote>(std::move(note));
    }

private:
    static void take(const store::GeneralNote& from, SearchableNote& note) {
        note.text = from.note.content.view();
        note.filename = from.note.filename;
        note.title = from.note.title;
        note.modified = from.note.contentChangedDate;
        note.created = from.note.contentCreatedDate;
    }
    void take(const store::CalendarNote& from, SearchableNote& note) const {
        note.text = from.content.view();
        note.filename = from.model.filename;
        note.day = from.model.date;
        note.title = _owner._names.relativeDay(*note.day, _looks.today);
        note.modified = from.stamp->modified;
        note.created = from.stamp->created;
    }

    // Notes come in the order of their file names: the folder is often that of the one before.
    std::shared_ptr<const std::string> foldedFolder(const SearchableNote& note) {
        const auto kind = note.general ? base::NoteType::note : base::NoteType::calendar;
        std::string folder(base::folderName(kind));
        if (note.filename.find('/') != std::string_view::npos) {
            folder = store::joined(folder, store::parentOf(note.filename));
        }
        if (!_foldedFolder || folder != _folder) {
            _foldedFolder = std::make_shared<const std::string>(folded(folder));
            _folder = std::move(folder);
        }
        return _foldedFolder;
    }

    const SearchableNotes& _owner;
    const NoteLooks& _looks;
    LocalDays _localDays;
    grammar::NoteScanner _scanner;
    std::string _folder;
    std::shared_ptr<const std::string> _foldedFolder;
};

SearchableNotes::SearchableNotes(base::Executor& executor, const grammar::DateStringHelper& names,
                                 LocalTimeOf localTimeOf)
    : _executor(executor),
      _names(names),
      _localTimeOf(std::move(localTimeOf)),
      _generalNotes(std::make_shared<const store::GeneralNotes>()),
      _calendarNotes(std::make_shared<const store::CalendarNotes>()),
      _notes(std::make_shared<const NotesInOrder>()) {}

std::shared_ptr<const NotesInOrder> SearchableNotes::of(
    std::shared_ptr<const store::GeneralNotes> generalNotes,
    std::shared_ptr<const store::CalendarNotes> calendarNotes, const NoteLooks& looks) {
    if (!areSame(_looks.markers, looks.markers)) {
        forgetAll();
    } else if (_looks.sortBy != looks.sortBy) {
        sortAnew(looks.sortBy);
    }
    const Differences found = differences(*generalNotes, *calendarNotes, looks.today);
    NoteLooks before = looks;
    before.today = _looks.today;
    if (!found.gone.empty() || !found.come.empty()) {
        replace(found, before, looks);
    }
    _generalNotes = std::move(generalNotes);
    _calendarNotes = std::move(calendarNotes);
    _looks = looks;
    return _notes;
}

void SearchableNotes::forgetAll() {
    _generalNotes = std::make_shared<const store::GeneralNotes>();
    _calendarNotes = std::make_shared<const store::CalendarNotes>();
    _notes = std::make_shared<const NotesInOrder>();
}

void SearchableNotes::sortAnew(base::SortType sortBy) {
    std::vector<NotesInOrder::Pointer> notes;
    notes.reserve(_notes->size());
    _notes->forEach([&notes](const auto& note) { notes.push_back(note); });
    forEachBlock(_executor, notes.size(), [&](std::size_t first, std::size_t last) {
        for (; first < last; ++first) {
            SearchableNote other = *notes[first];
            other.sortBy = sortBy;
            notes[first] = std::make_shared<const SearchableNote>(std::move(other));
        }
    });
    std::sort(notes.begin(), notes.end(),
              [](const auto& a, const auto& b) { return ByPlace::keyOf(*a) < ByPlace::keyOf(*b); });
    _notes = std::make_shared<const NotesInOrder>(std::move(notes));
    _looks.sortBy = sortBy;
}

SearchableNotes::Differences SearchableNotes::differences(const store::GeneralNotes& generalNotes,
                                                          const store::CalendarNotes& calendarNotes,
                                                          base::Day today) const {
    Differences found;
    const auto addGeneral = [&found](const auto& before, const auto& after) {
        if (before && !before->note.isFolder) {
            found.gone.push_back({before, nullptr});
        }
        if (after && !after->note.isFolder) {
            found.come.push_back({after, nullptr});
        }
    };
    const auto addDay = [&found](const auto& before, const auto& after) {
        if (before && before->stamp) {
            found.gone.push_back({nullptr, before});
        }
        if (after && after->stamp) {
            found.come.push_back({nullptr, after});
        }
    };
    store::forEachDifference<store::ByFilename>(*_generalNotes, generalNotes, addGeneral);
    if (_looks.today == today) {
        store::forEachDifference<store::ByDay>(*_calendarNotes, calendarNotes, addDay);
    } else {  // all days have other names
        const store::CalendarNotes none;
        store::forEachDifference<store::ByDay>(*_calendarNotes, none, addDay);
        store::forEachDifference<store::ByDay>(none, calendarNotes, addDay);
    }
    return found;
}

void SearchableNotes::replace(const Differences& found, const NoteLooks& before,
                              const NoteLooks& now) {
    std::vector<SearchableNote> gone(found.gone.size());
    forEachBlock(_executor, gone.size(), [&](std::size_t first, std::size_t last) {
        const Maker maker(*this, before);
        for (; first < last; ++first) {
            gone[first] = maker.placed(found.gone[first]);
        }
    });
    std::vector<NotesInOrder::Pointer> come(found.come.size());
    forEachBlock(_executor, come.size(), [&](std::size_t first, std::size_t last) {
        Maker maker(*this, now);
        for (; first < last; ++first) {
            come[first] = maker.whole(found.come[first]);
        }
    });
    _notes = std::make_shared<const NotesInOrder>(_notes->with(changesOf(gone, come)));
}

}  // namespace tessaly::search
