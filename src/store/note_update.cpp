// SPDX-License-Identifier: MIT
#include "store/note_update.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "base/log.h"
#include "grammar/line_scanner.h"
#include "store/note_names.h"
#include "store/stray_notes.h"

namespace tessaly::store {
namespace {

using base::NoteType;
using What = FoundNote::What;

bool isSame(const GeneralNotes::Pointer& a, const GeneralNotes::Pointer& b) {
    if (!a || !b) {
        return a == b;
    }
    return a->note.isFolder == b->note.isFolder &&
           a->note.contentChangedDate == b->note.contentChangedDate &&
           a->note.content.view() == b->note.content.view();
}

// Whether the days' files are.
bool isSame(const CalendarNotes::Pointer& a, const CalendarNotes::Pointer& b) {
    const bool isFileA = a && a->stamp;
    const bool isFileB = b && b->stamp;
    if (!isFileA || !isFileB) {
        return isFileA == isFileB;
    }
    return a->stamp->modified == b->stamp->modified && a->content.view() == b->content.view();
}

bool hasSameNoteTasks(const CalendarNotes::Pointer& a, const CalendarNotes::Pointer& b) {
    static const NoteModel none;
    const NoteModel& left = a ? a->model : none;
    const NoteModel& right = b ? b->model : none;
    return left.numOpenNoteTodos == right.numOpenNoteTodos &&
           left.numDoneNoteTodos == right.numDoneNoteTodos;
}

bool hasOthersCounts(const NoteModel& model) {
    return model.numReminders > 0 || model.numCompletedReminders > 0 || model.numEvents > 0 ||
           model.numOpenNoteTodos > 0 || model.numDoneNoteTodos > 0;
}

CalendarNote dayWithoutFile(base::Day day) {
    CalendarNote note;
    note.model.filename = calendarFilename(day);
    note.model.date = day;
    note.model.type = NoteType::calendar;
    return note;
}

/// Calls `work(begin, end)` for so few at a time that all threads have some.
template <class Work>
void inJobs(base::Executor& executor, std::size_t count, const Work& work) {
    constexpr std::size_t perJob = 32;
    base::parallelFor(executor, (count + perJob - 1) / perJob, [&](std::size_t job) {
        work(job * perJob, std::min(count, (job + 1) * perJob));
    });
}

}  // namespace

NoteUpdate::NoteUpdate(Tools tools, CacheState before)
    : _tools(tools), _before(std::move(before)) {}

HeldNote NoteUpdate::heldNote(NoteType type, std::string_view filename) const {
    if (type == NoteType::note) {
        const auto changed = _generalNotes.find(filename);
        return {changed != _generalNotes.end() ? changed->second.after
                                               : _before.generalNotes->find(filename),
                nullptr};
    }
    if (const auto day = dayOfCalendarFilename(filename)) {
        return {nullptr, heldDay(*day)};
    }
    const StrayNotes& strays = _strays ? *_strays : *_before.strays;
    const auto stray = strays.find(filename);
    return {nullptr, nullptr, stray == strays.end() ? nullptr : &stray->second};
}

CalendarNotes::Pointer NoteUpdate::heldDay(base::Day day) const {
    const auto changed = _days.find(day);
    return changed != _days.end() ? changed->second.after : _before.calendarNotes->find(day);
}

// What is held at the first change of an item is what was there before the update.
void NoteUpdate::setGeneral(const FoundNote& found, GeneralNotes::Pointer note) {
    const auto [change, isFirst] = _generalNotes.try_emplace(found.name.filename);
    if (isFirst) {
        change->second.before = found.held.general;
    }
    change->second.after = std::move(note);
}

void NoteUpdate::setDay(base::Day day, const CalendarNotes::Pointer& held, CalendarNote note) {
    const bool isKept = note.stamp || hasOthersCounts(note.model);
    const auto [change, isFirst] = _days.try_emplace(day);
    if (isFirst) {
        change->second.before = held;
    }
    change->second.after = isKept ? std::make_shared<const CalendarNote>(std::move(note)) : nullptr;
}

void NoteUpdate::lookAt(std::vector<NamedNote> names, Expected expected) {
    sortNames(names);
    lookInOrder(std::move(names), expected);
}

void NoteUpdate::lookAtAll(std::vector<NamedNote> names) {
    sortNames(names);
    std::vector<NamedNote> others = heldButNotNamed(names, _before);
    lookInOrder(std::move(names), Expected::unchanged);
    lookInOrder(std::move(others), Expected::unchanged);
}

// What is found at a name takes several times the room of the name, and most of it is what is held.
void NoteUpdate::lookInOrder(std::vector<NamedNote> names, Expected expected) {
    constexpr std::size_t atATime = 4096;
    for (std::size_t begin = 0; begin < names.size(); begin += atATime) {
        const auto from = names.begin() + static_cast<std::ptrdiff_t>(begin);
        const auto count = static_cast<std::ptrdiff_t>(std::min(atATime, names.size() - begin));
        enterAll(lookAtNotes(
            _tools.store.files(), _tools.executor, _tools.root,
            {std::make_move_iterator(from), std::make_move_iterator(from + count)}, expected,
            [this](NoteType type, std::string_view filename) { return heldNote(type, filename); }));
    }
}

void NoteUpdate::enterAll(const std::vector<FoundNote>& all) {
    struct Read {
        GeneralNotes::Pointer general;
        CalendarNotes::Pointer day;
    };
    std::vector<Read> read(all.size());
    inJobs(_tools.executor, all.size(), [&](std::size_t begin, std::size_t end) {
        grammar::NoteScanner scanner;
        for (std::size_t index = begin; index < end; ++index) {
            const FoundNote& found = all[index];
            if (found.what != What::note) {
                continue;
            }
            const std::string& filename = found.name.filename;
            if (found.name.type == NoteType::note) {
                read[index].general =
                    generalNote(filename, found.content, found.stamp, _tools.settings, scanner);
            } else if (dayOfCalendarFilename(filename)) {
                read[index].day =
                    calendarNote(filename, found.content, found.stamp, _tools.settings, scanner);
            }
        }
    });
    for (std::size_t index = 0; index < all.size(); ++index) {
        const FoundNote& found = all[index];
        if (found.what == What::unknown || found.what == What::sameNote) {
            continue;
        }
        if (found.name.type == NoteType::note) {
            enterGeneral(found, std::move(read[index].general));
        } else if (const auto day = dayOfCalendarFilename(found.name.filename)) {
            enterDay(found, *day, read[index].day);
        } else {
            enterStray(found);
        }
    }
}

void NoteUpdate::enterGeneral(const FoundNote& found, GeneralNotes::Pointer read) {
    const bool isFolderHeld = found.held.isFolder();
    if (read) {
        setGeneral(found, std::move(read));
    } else if (found.what == What::folder) {
        if (!isFolderHeld) {
            setGeneral(found, folderOfNotes(found.name.filename));
        }
    } else if (found.held.general && (found.what == What::nothing || isFolderHeld)) {
        setGeneral(found, nullptr);
    }
}

void NoteUpdate::enterDay(const FoundNote& found, base::Day day,
                          const CalendarNotes::Pointer& read) {
    const CalendarNotes::Pointer& held = found.held.day;
    const bool isGone = found.what == What::nothing || found.what == What::folder;
    if (!read && (!isGone || !held || !held->stamp)) {
        return;
    }
    CalendarNote note = read ? *read : dayWithoutFile(day);
    if (held) {
        keepOthersCounts(note.model, held->model);
    }
    setDay(day, held, std::move(note));
}

void NoteUpdate::enterStray(const FoundNote& found) {
    if (found.what == What::noNote) {
        return;
    }
    auto strays = std::make_shared<StrayNotes>(_strays ? *_strays : *_before.strays);
    if (found.what == What::note) {
        (*strays)[found.name.filename] = {found.content, found.stamp};
    } else if (strays->erase(found.name.filename) == 0) {
        return;
    }
    _changedStrays.insert(found.name.filename);
    _strays = std::move(strays);
}

void NoteUpdate::mergeStrays() {
    std::vector<NamedNote> touched;
    for (const std::string& filename : _changedStrays) {
        const auto day = dayOfStray(filename);
        if (!day || !_strays->contains(filename)) {
            continue;
        }
        base::log("found an invalid calendar file: ", filename + ", attempt to merge it.");
        if (_tools.store.mergeDisconnectedCalendarNote(filename)) {
            touched.push_back({NoteType::calendar, filename});
            touched.push_back({NoteType::calendar, calendarFilename(*day)});
        }
    }
    if (!touched.empty()) {
        lookAt(std::move(touched), Expected::changed);
    }
}

std::vector<FinishedRepeat> NoteUpdate::finishedRepeats() const {
    std::vector<FinishedRepeat> found;
    grammar::NoteScanner scanner;
    const auto& markers = _tools.settings.markers;
    for (const auto& [day, change] : _days) {
        const auto& [before, note] = change;
        if (note && (!before || before->content.view() != note->content.view())) {
            addFinishedRepeats(NoteType::calendar, note->model.filename, note->content, markers,
                               scanner, found);
        }
    }
    for (const auto& [filename, change] : _generalNotes) {
        const auto& [before, note] = change;
        if (note && (!before || before->note.content.view() != note->note.content.view())) {
            addFinishedRepeats(NoteType::note, filename, note->note.content, markers, scanner,
                               found);
        }
    }
    return found;
}

ChangedTasks NoteUpdate::changedTasks() const {
    const auto mayHaveTasks = [](const GeneralNotes::Pointer& note) {
        return note && !note->note.datedLines.empty();
    };
    ChangedTasks changes;
    for (const auto& [filename, change] : _generalNotes) {
        if (mayHaveTasks(change.before) || mayHaveTasks(change.after)) {
            changes.notes.push_back({change.before, change.after});
        }
    }
    for (const auto& [day, change] : _days) {
        changes.days.push_back(day);
    }
    return changes;
}

void NoteUpdate::countNoteTasksOf(const NoteTaskCounts& counts,
                                  const std::vector<base::Day>& days) {
    struct Counted {
        CalendarNotes::Pointer held;
        NoteTaskCounts::Counts counts;
    };
    std::vector<Counted> counted(days.size());
    const auto count = [&](std::size_t index) {
        Counted& each = counted[index];
        each.held = heldDay(days[index]);
        each.counts = counts.countsOf(days[index], each.held.get(), _tools.settings.markers);
    };
    inJobs(_tools.executor, days.size(), [&](std::size_t begin, std::size_t end) {
        for (std::size_t index = begin; index < end; ++index) {
            count(index);
        }
    });
    for (std::size_t index = 0; index < days.size(); ++index) {
        setCounts(days[index], counted[index].held, counted[index].counts);
    }
}

void NoteUpdate::setCounts(base::Day day, const CalendarNotes::Pointer& held,
                           NoteTaskCounts::Counts counts) {
    const NoteTaskCounts::Counts before =
        held ? NoteTaskCounts::Counts{held->model.numOpenNoteTodos, held->model.numDoneNoteTodos}
             : NoteTaskCounts::Counts{};
    if (counts == before) {
        return;
    }
    CalendarNote note = held ? *held : dayWithoutFile(day);
    note.model.numOpenNoteTodos = counts.open;
    note.model.numDoneNoteTodos = counts.done;
    setDay(day, held, std::move(note));
}

std::vector<NoteUpdate::NoteId> NoteUpdate::changedNotes() const {
    std::vector<NoteId> changed;
    for (const auto& [day, change] : _days) {
        if (!isSame(change.before, change.after) ||
            !hasSameNoteTasks(change.before, change.after)) {
            changed.emplace_back(NoteType::calendar, calendarFilename(day));
        }
    }
    for (const std::string& filename : _changedStrays) {
        if (isStrayChanged(filename)) {
            changed.emplace_back(NoteType::calendar, filename);
        }
    }
    for (const auto& [filename, change] : _generalNotes) {
        if (!isSame(change.before, change.after)) {
            changed.emplace_back(NoteType::note, filename);
        }
    }
    return changed;
}

std::vector<NoteUpdate::TextBefore> NoteUpdate::textsBefore() const {
    std::vector<TextBefore> texts;
    const auto add = [&texts](NoteType type, const std::string& filename,
                              const base::SharedText& before, std::string_view after) {
        if (!before.view().empty() && before.view() != after) {
            texts.push_back({{type, filename}, before});
        }
    };
    for (const auto& [day, change] : _days) {
        if (change.before) {
            add(NoteType::calendar, calendarFilename(day), change.before->content,
                change.after ? change.after->content.view() : "");
        }
    }
    for (const auto& [filename, change] : _generalNotes) {
        if (change.before) {
            add(NoteType::note, filename, change.before->note.content,
                change.after ? change.after->note.content.view() : "");
        }
    }
    return texts;
}

bool NoteUpdate::isStrayChanged(const std::string& filename) const {
    const auto before = _before.strays->find(filename);
    const auto after = _strays->find(filename);
    if (before == _before.strays->end() || after == _strays->end()) {
        return (before == _before.strays->end()) != (after == _strays->end());
    }
    return before->second.stamp.modified != after->second.stamp.modified ||
           before->second.content.view() != after->second.content.view();
}

bool NoteUpdate::isCalendarChanged() const {
    return std::any_of(_changedStrays.begin(), _changedStrays.end(),
                       [this](const std::string& filename) { return isStrayChanged(filename); }) ||
           std::any_of(_days.begin(), _days.end(), [](const auto& entry) {
               const auto& [before, after] = entry.second;
               return !isSame(before, after) || !hasSameNoteTasks(before, after);
           });
}

std::vector<GeneralNotes::Change> NoteUpdate::generalChanges() const {
    std::vector<GeneralNotes::Change> changes;
    changes.reserve(_generalNotes.size());
    for (const auto& [filename, change] : _generalNotes) {
        changes.push_back({filename, change.after});
    }
    return changes;
}

std::vector<CalendarNotes::Change> NoteUpdate::calendarChanges() const {
    std::vector<CalendarNotes::Change> changes;
    changes.reserve(_days.size());
    for (const auto& [day, change] : _days) {
        changes.push_back({day, change.after});
    }
    return changes;
}

void NoteUpdate::addTagDifferences(TagDifferences& atTags, TagDifferences& hashTags) const {
    static const std::vector<std::string> none;
    for (const auto& [filename, change] : _generalNotes) {
        const auto& [before, after] = change;
        atTags.add(before ? before->note.atTags : none, after ? after->note.atTags : none);
        hashTags.add(before ? before->note.hashTags : none, after ? after->note.hashTags : none);
    }
    for (const auto& [day, change] : _days) {
        const auto& [before, after] = change;
        atTags.add(before ? before->model.atTags : none, after ? after->model.atTags : none);
        hashTags.add(before ? before->model.hashTags : none, after ? after->model.hashTags : none);
    }
}

}  // namespace tessaly::store
