// SPDX-License-Identifier: MIT
#include "store/named_notes.h"

#include <algorithm>
#include <string_view>
#include <tuple>

#include "store/entry_role.h"
#include "store/note_names.h"

namespace tessaly::store {
namespace {

using base::NoteType;
using NamePlace = std::tuple<NoteType, std::string_view>;

NamePlace placeOf(const NamedNote& name) {
    return {name.type, name.filename};
}

NamedNote::Seen seenOf(const CloudNote& note) {
    return note.update == UpdateType::deleted ? NamedNote::Seen::gone
           : note.isFolder                    ? NamedNote::Seen::folder
                                              : NamedNote::Seen::somehow;
}

}  // namespace

bool isCached(NoteType type, std::string_view filename) {
    return (type == NoteType::note || type == NoteType::calendar) && !filename.empty() &&
           isCoveredPath(filename);
}

std::vector<NamedNote> namesOf(const CloudBatch& batch) {
    std::vector<NamedNote> names;
    names.reserve(batch.notes.size());
    for (const CloudNote& note : batch.notes) {
        const std::string_view filename = filenameOf(note, batch.root);
        if (isCached(note.base, filename)) {
            names.push_back({note.base, std::string(filename), seenOf(note), note.hasConflicts});
        }
    }
    return names;
}

void sortNames(std::vector<NamedNote>& names) {
    std::reverse(names.begin(), names.end());
    std::stable_sort(names.begin(), names.end(), [](const NamedNote& a, const NamedNote& b) {
        return placeOf(a) < placeOf(b);
    });
    const auto end = std::unique(
        names.begin(), names.end(),
        [](const NamedNote& a, const NamedNote& b) { return placeOf(a) == placeOf(b); });
    names.erase(end, names.end());
}

std::vector<NamedNote> heldButNotNamed(const std::vector<NamedNote>& names,
                                       const CacheState& held) {
    std::vector<NamedNote> missing;
    const auto check = [&](NoteType type, std::string_view filename) {
        const auto at = std::lower_bound(
            names.begin(), names.end(), NamePlace(type, filename),
            [](const NamedNote& name, const NamePlace& place) { return placeOf(name) < place; });
        if (at == names.end() || placeOf(*at) != NamePlace(type, filename)) {
            missing.push_back({type, std::string(filename)});
        }
    };
    held.calendarNotes->forEach([&](const CalendarNotes::Pointer& note) {
        if (note->stamp) {
            check(NoteType::calendar, note->model.filename);
        }
    });
    for (const auto& [filename, stray] : *held.strays) {
        check(NoteType::calendar, filename);
    }
    held.generalNotes->forEach(
        [&](const GeneralNotes::Pointer& note) { check(NoteType::note, note->note.filename); });
    return missing;
}

}  // namespace tessaly::store
