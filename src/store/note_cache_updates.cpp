// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "base/log.h"
#include "store/named_notes.h"
#include "store/note_cache.h"
#include "store/note_document.h"
#include "store/paths.h"
#include "store/shared_const.h"

namespace tessaly::store {
namespace {

using base::NoteType;

constexpr std::size_t namesInLog = 5;

// "2 files: Notes/a.txt, Calendar/20190305.txt"
std::string describe(const CloudBatch& batch) {
    std::string text =
        std::to_string(batch.notes.size()) + (batch.notes.size() == 1 ? " file" : " files");
    for (std::size_t index = 0; index < std::min(namesInLog, batch.notes.size()); ++index) {
        const CloudNote& note = batch.notes[index];
        const auto name = joined(base::folderName(note.base), filenameOf(note, batch.root));
        text.append(index == 0 ? ": " : ", ").append(name);
    }
    return batch.notes.size() > namesInLog ? text + ", …" : text;
}

bool isSame(const grammar::MarkerSettings& a, const grammar::MarkerSettings& b) {
    return a.isAsteriskTodo == b.isAsteriskTodo && a.isDashTodo == b.isDashTodo &&
           a.isNumbersTodo == b.isNumbersTodo;
}

bool isSame(const CountSettings& a, const CountSettings& b) {
    return isSame(a.markers, b.markers) &&
           a.isIndentedTasksInCalendar == b.isIndentedTasksInCalendar;
}

// Days that have tasks, and those that had some when they were counted last.
std::vector<base::Day> daysToCount(const NoteTaskCounts& counts, const CalendarNotes& notes) {
    std::vector<base::Day> days = counts.days();
    notes.forEach([&](const CalendarNotes::Pointer& note) {
        const NoteModel& model = note->model;
        if ((model.numOpenNoteTodos > 0 || model.numDoneNoteTodos > 0) &&
            !counts.hasTasks(*model.date)) {
            days.push_back(*model.date);
        }
    });
    return days;
}

/// The collection with each item in the place of which `replace(item, scanner)` gives one, made on
/// all threads.
template <class Snapshot, class Replace>
Snapshot replaced(const Snapshot& items, base::Executor& executor, const Replace& replace) {
    std::vector<std::vector<typename Snapshot::Pointer>> chunks(items.chunks());
    base::parallelFor(executor, items.chunks(), [&](std::size_t index) {
        grammar::NoteScanner scanner;
        for (const auto& item : items.chunk(index)) {
            chunks[index].push_back(replace(item, scanner));
        }
    });
    std::vector<typename Snapshot::Pointer> all;
    all.reserve(items.size());
    for (auto& chunk : chunks) {
        std::move(chunk.begin(), chunk.end(), std::back_inserter(all));
    }
    return Snapshot(std::move(all));
}

}  // namespace

// What is told ahead is told once more with all there is, and what is not loaded yet will be.
void NoteCache::onCloudUpdate(const CloudBatch& batch) {
    const bool isAhead = batch.kind == CloudBatch::Kind::ahead;
    semaphore.enter([this, root = batch.root, kind = batch.kind, description = describe(batch),
                     names = isAhead ? std::vector<NamedNote>() : namesOf(batch)]() mutable {
        base::logRoutine("onCloudUpdate - ", description);
        if (root == _root) {
            update(std::move(names), kind);
        } else if (_initialUpdateDone && isRootInUse(root)) {
            loadAll({});
        }
    });
}

// One that is not there is no reason to forget what is held.
bool NoteCache::isRootInUse(const std::string& root) const {
    const auto inUse = _tools.store.files().resolve(_tools.store.root());
    return inUse && *inUse == root;
}

void NoteCache::reread(NoteType type, std::string filename) {
    if (!isCached(type, filename)) {
        return;
    }
    semaphore.enter([this, name = NamedNote{type, std::move(filename)}] {
        update({name}, CloudBatch::Kind::later);
    });
}

void NoteCache::update(std::vector<NamedNote> names, CloudBatch::Kind kind) {
    const bool isAll = kind == CloudBatch::Kind::all;
    if (!_initialUpdateDone || (names.empty() && !isAll) || !_tools.store.files().resolve(_root)) {
        return;
    }
    recountIfNeeded();
    NoteUpdate update({_tools.store, _tools.executor, _settings, _root},
                      {_generalNotes.get(), _calendarNotes.get(), _strays.get()});
    const std::vector<NamedNote> ofConflicts = conflictsAmong(names);
    if (isAll) {
        update.lookAtAll(std::move(names));
    } else {
        update.lookAt(std::move(names), Expected::changed);
        update.mergeStrays();
        dispatchRepeats(update);
    }
    publish(update);
    rememberTexts(update, ofConflicts);
    _uncounted.add(update.changedTasks());
    if (!_uncounted.empty()) {
        semaphore.enter([this] { countNoteTasks(); });
    }
}

void NoteCache::dispatchRepeats(NoteUpdate& update) {
    if (!_tools.onRepeat) {
        return;
    }
    std::vector<NamedNote> changed;
    for (const FinishedRepeat& found : update.finishedRepeats()) {
        if (_tools.onRepeat(found)) {
            changed.push_back({found.type, found.filename});
        }
    }
    if (!changed.empty()) {
        update.lookAt(std::move(changed), Expected::changed);
    }
}

/// Those that are in conflict, or were.
std::vector<NamedNote> NoteCache::conflictsAmong(const std::vector<NamedNote>& names) const {
    std::vector<NamedNote> found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found), [this](const auto& name) {
        return name.hasConflicts || _inConflict.contains({name.type, name.filename});
    });
    return found;
}

// What others changed may turn out to have been changed elsewhere at the same time.
void NoteCache::rememberTexts(const NoteUpdate& update, const std::vector<NamedNote>& names) {
    if (!_tools.onConflict) {
        return;
    }
    const base::Instant now = _tools.clock.now();
    std::map<NoteUpdate::NoteId, base::SharedText> before;
    for (auto& [note, text] : update.textsBefore()) {
        _earlier.remember(note.first, note.second, text, now);
        before.emplace(note, text);
    }
    std::vector<HeldTexts> held;
    for (const NamedNote& name : names) {
        const NoteUpdate::NoteId note(name.type, name.filename);
        if (!name.hasConflicts) {
            _inConflict.erase(note);
            continue;
        }
        HeldTexts texts{name.type, name.filename, _earlier.take(name.type, name.filename)};
        const auto last = before.find(note);
        // In the middle of a burst it was not remembered.
        if (_inConflict.insert(note).second && last != before.end() &&
            (texts.texts.empty() || texts.texts.back().text.view() != last->second.view())) {
            texts.texts.push_back({last->second, now});
        }
        held.push_back(std::move(texts));
    }
    handOver(std::move(held));
}

void NoteCache::handOver(std::vector<HeldTexts> held) const {
    std::erase_if(held, [](const HeldTexts& texts) { return texts.texts.empty(); });
    if (_tools.onConflict && !held.empty()) {
        _tools.onConflict(held);
    }
}

// What the index holds of a note was read before this program was started.
std::vector<HeldTexts> NoteCache::differingTexts(const NoteIndex& index) const {
    std::vector<HeldTexts> held;
    std::set<std::string_view> originals;
    for (const ConflictCopy& copy : _report.get()->conflictCopies) {
        const std::size_t slash = copy.original.find('/');
        const NoteType type = base::noteTypeOfFolder(copy.original.substr(0, slash));
        if (slash == std::string::npos || !originals.insert(copy.original).second) {
            continue;
        }
        const std::string filename = copy.original.substr(slash + 1);
        const auto earlier = index.earlierBytes(type, filename);
        const auto known = knownText(type, filename);
        const auto text = earlier ? decodedText(*earlier) : std::nullopt;
        if (text && !text->empty() && (!known || known->text.view() != *text)) {
            held.push_back({type, filename, {{base::SharedText(std::string(*text)), {}}}});
        }
    }
    return held;
}

void NoteCache::publish(const NoteUpdate& update) {
    CacheChanges changes;
    for (auto& [type, filename] : update.changedNotes()) {
        changes.generalNotes |= type == NoteType::note;
        changes.notes.push_back({type, filename});
    }
    changes.calendarNotes = update.isCalendarChanged();
    if (const auto general = update.generalChanges(); !general.empty()) {
        setGeneralNotes(sharedConst(_generalNotes.get()->with(general)));
    }
    if (const auto days = update.calendarChanges(); !days.empty()) {
        setCalendarNotes(sharedConst(_calendarNotes.get()->with(days)));
    }
    if (auto strays = update.strays()) {
        _strays.set(std::move(strays));
    }
    TagDifferences atTags;
    TagDifferences hashTags;
    update.addTagDifferences(atTags, hashTags);
    changes.lineAtTags = atTags.any();
    changes.lineHashTags = hashTags.any();
    if (changes.lineAtTags || changes.lineHashTags) {
        setTags(sharedConst(atTags.appliedTo(*_lineAtTags.get())),
                sharedConst(hashTags.appliedTo(*_lineHashTags.get())));
    }
    tell(changes);
}

// A piece of work of its own, so that nobody waits for it who only wants to see the notes.
void NoteCache::countNoteTasks() {
    if (!_initialUpdateDone) {
        return;
    }
    std::vector<base::Day> days;
    const ChangedTasks changes = std::exchange(_uncounted, {});
    if (std::exchange(_areNoteTasksCounted, true)) {
        days = _noteTasks.replace(changes);
    } else {
        _noteTasks.build(*_generalNotes.get(), _tools.executor);
        days = daysToCount(_noteTasks, *_calendarNotes.get());
    }
    NoteUpdate update({_tools.store, _tools.executor, _settings, _root},
                      {_generalNotes.get(), _calendarNotes.get(), _strays.get()});
    update.countNoteTasksOf(_noteTasks, days);
    publish(update);
}

void NoteCache::settingsMayHaveChanged() {
    semaphore.enter([this] { recountIfNeeded(); });
}

void NoteCache::recountIfNeeded() {
    const CountSettings settings = _tools.countSettings();
    if (!_initialUpdateDone || isSame(settings, _settings)) {
        return;
    }
    const bool areMarkersSame = isSame(settings.markers, _settings.markers);
    _settings = settings;
    if (!areMarkersSame) {
        setGeneralNotes(recounted(*_generalNotes.get()));
        _areNoteTasksCounted = false;
    }
    setCalendarNotes(recounted(*_calendarNotes.get()));
    tell({!areMarkersSame, true, false, false, {}});
    countNoteTasks();
}

// The markers decide which dated lines are tasks, and nothing else of a general note.
std::shared_ptr<const GeneralNotes> NoteCache::recounted(const GeneralNotes& notes) const {
    return sharedConst(
        replaced(notes, _tools.executor, [this](const auto& item, grammar::NoteScanner& scanner) {
            const LoadedNote& held = item->note;
            if (held.isFolder) {
                return item;
            }
            auto note = generalNote(held.filename, held.content, item->stamp, _settings, scanner);
            return held.datedLines.empty() && note->note.datedLines.empty() ? item : note;
        }));
}

std::shared_ptr<const CalendarNotes> NoteCache::recounted(const CalendarNotes& notes) const {
    return sharedConst(
        replaced(notes, _tools.executor,
                 [this](const auto& item, grammar::NoteScanner& scanner) -> CalendarNotes::Pointer {
                     if (!item->stamp) {
                         return item;
                     }
                     CalendarNote note = *calendarNote(item->model.filename, item->content,
                                                       *item->stamp, _settings, scanner);
                     keepOthersCounts(note.model, item->model);
                     return std::make_shared<const CalendarNote>(std::move(note));
                 }));
}

}  // namespace tessaly::store
