// SPDX-License-Identifier: MIT
#include "store/note_cache.h"

#include <string>
#include <string_view>
#include <utility>

#include "store/note_loading.h"
#include "store/note_names.h"
#include "store/shared_const.h"

namespace tessaly::store {
namespace {

constexpr int daysAhead = 10;

std::string queueLabel(const DataStore& store, std::string_view collection) {
    return std::string(store.bundleIdentifier()).append(".NoteCache.").append(collection);
}

}  // namespace

NoteCache::NoteCache(Tools tools)
    : _tools(std::move(tools)),
      generalNotesQueue(queueLabel(_tools.store, "GeneralNotes"), _tools.executor),
      calendarNotesQueue(queueLabel(_tools.store, "CalendarNotes"), _tools.executor),
      lineAtTagsQueue(queueLabel(_tools.store, "lineAtTags"), _tools.executor),
      lineHashTagsQueue(queueLabel(_tools.store, "lineHashTags"), _tools.executor),
      semaphore(_tools.executor) {}

NoteCache::~NoteCache() = default;

bool NoteCache::initialUpdateDone() const {
    return _initialUpdateDone;
}

void NoteCache::load(LoadOptions options) {
    semaphore.enter([this, options = std::move(options)] { loadAll(options); });
}

void NoteCache::loadAll(const LoadOptions& options) {
    _settings = _tools.countSettings();
    _root = resolvedRoot();
    if (!_initialUpdateDone) {
        showNextDays();
    }
    NoteReader::Options reading;
    reading.progress = options.progress;
    reading.cancelled = options.cancelled;
    const auto index = _tools.index ? _tools.index() : nullptr;
    LoadedNotes notes =
        loadNotes(_tools.store, _tools.executor, _settings, std::move(reading), index);
    if (notes.report.cancelled) {
        setCalendarNotes(sharedConst(CalendarNotes()));  // only a first load is cancelled
        return;
    }
    setGeneralNotes(sharedConst(std::move(notes.generalNotes)));
    setCalendarNotes(sharedConst(std::move(notes.calendarNotes)));
    setTags(sharedConst(std::move(notes.lineAtTags)), sharedConst(std::move(notes.lineHashTags)));
    _strays.set(sharedConst(std::move(notes.strays)));
    _report.set(sharedConst(std::move(notes.report)));
    _areNoteTasksCounted = false;
    _earlier = EarlierTexts();
    _inConflict.clear();
    semaphore.enter([this] { countNoteTasks(); });
    finishLoading();
    if (index) {
        handOver(differingTexts(*index));
    }
}

void NoteCache::showNextDays() {
    CalendarNotes days = loadDays(_tools.store, _tools.clock.today(), daysAhead, _settings);
    CacheChanges changes;
    days.forEach([&changes](const CalendarNotes::Pointer& note) {
        changes.notes.push_back({base::NoteType::calendar, note->model.filename});
    });
    changes.calendarNotes = !days.empty();
    setCalendarNotes(sharedConst(std::move(days)));
    tell(changes);
}

std::string NoteCache::resolvedRoot() const {
    std::string root = _tools.store.root();
    auto resolved = _tools.store.files().resolve(root);
    return resolved ? *std::move(resolved) : root;
}

void NoteCache::finishLoading() {
    std::function<void()> hasLoaded;
    {
        const std::scoped_lock lock(_mutex);
        _initialUpdateDone = true;
        hasLoaded = std::exchange(onHasLoaded, nullptr);
    }
    if (hasLoaded) {
        hasLoaded();
    }
    tell({true, true, true, true, {}});
}

void NoteCache::setOnHasLoaded(std::function<void()> hasLoaded) {
    {
        const std::scoped_lock lock(_mutex);
        if (!_initialUpdateDone) {
            onHasLoaded = std::move(hasLoaded);
            return;
        }
    }
    if (hasLoaded) {
        hasLoaded();
    }
}

void NoteCache::setGeneralNotes(std::shared_ptr<const GeneralNotes> notes) {
    generalNotesQueue.sync([&] { _generalNotes.set(std::move(notes)); });
}

void NoteCache::setCalendarNotes(std::shared_ptr<const CalendarNotes> notes) {
    calendarNotesQueue.sync([&] { _calendarNotes.set(std::move(notes)); });
}

void NoteCache::setTags(std::shared_ptr<const TagCounts> atTags,
                        std::shared_ptr<const TagCounts> hashTags) {
    lineAtTagsQueue.sync([&] { _lineAtTags.set(std::move(atTags)); });
    lineHashTagsQueue.sync([&] { _lineHashTags.set(std::move(hashTags)); });
}

std::optional<KnownText> NoteCache::knownText(base::NoteType type,
                                              std::string_view filename) const {
    if (type == base::NoteType::note) {
        const auto held = _generalNotes.get()->find(filename);
        return held && !held->note.isFolder
                   ? std::optional(KnownText{held->note.content, held->note.contentChangedDate})
                   : std::nullopt;
    }
    if (type != base::NoteType::calendar) {
        return std::nullopt;
    }
    if (const auto day = dayOfCalendarFilename(filename)) {
        const auto held = _calendarNotes.get()->find(*day);
        return held && held->stamp ? std::optional(KnownText{held->content, held->stamp->modified})
                                   : std::nullopt;
    }
    const auto strays = _strays.get();
    const auto held = strays->find(filename);
    return held != strays->end()
               ? std::optional(KnownText{held->second.content, held->second.stamp.modified})
               : std::nullopt;
}

std::vector<std::string> NoteCache::strays() const {
    std::vector<std::string> names;
    for (const auto& [filename, stray] : *_strays.get()) {
        names.push_back(filename);
    }
    return names;
}

void NoteCache::addListener(CacheListener& listener) {
    const std::scoped_lock lock(_mutex);
    listeners.push_back(&listener);
}

void NoteCache::removeListener(CacheListener& listener) {
    std::unique_lock lock(_mutex);
    std::erase(listeners, &listener);
    _hasTold.wait(lock, [this] { return !_isTelling; });
}

void NoteCache::setTagUpdateDelegate(TagUpdateDelegate* delegate) {
    std::unique_lock lock(_mutex);
    tagUpdateDelegate = delegate;
    _hasTold.wait(lock, [this] { return !_isTelling; });
}

void NoteCache::tell(const CacheChanges& changes) {
    if (!changes.any()) {
        return;
    }
    std::vector<CacheListener*> told;
    TagUpdateDelegate* delegate = nullptr;
    {
        const std::scoped_lock lock(_mutex);
        told = listeners;
        delegate = changes.lineAtTags || changes.lineHashTags ? tagUpdateDelegate : nullptr;
        _isTelling = true;
    }
    if (delegate != nullptr) {
        delegate->tagsChanged();
    }
    for (CacheListener* listener : told) {
        listener->cacheChanged(changes);
    }
    const std::scoped_lock lock(_mutex);
    _isTelling = false;
    _hasTold.notify_all();
}

void NoteCache::waitUntilIdle() {
    semaphore.waitUntilFree();
}

void NoteCache::afterWork(base::Job job) {
    semaphore.enter(std::move(job));
}

}  // namespace tessaly::store
