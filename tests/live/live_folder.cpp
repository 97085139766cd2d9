// SPDX-License-Identifier: MIT
#include "live/live_folder.h"

#include <utility>

#include "live/cache_text.h"
#include "store/note_names.h"

namespace tessaly::tests {
namespace {

constexpr std::chrono::seconds longerThanAnyPause{120};
// A look that seems to take long is not repeated for long, so little time may pass while it lasts.
constexpr std::chrono::milliseconds step{50};

/// There is no sync client.
class NoDownloads final : public ports::CloudDownloads {
public:
    base::Result<ports::DownloadState> state(const std::string& file) override {
        return unavailable(file);
    }
    base::Result<base::Done> request(const std::string& file) override { return unavailable(file); }

private:
    static base::Failure unavailable(const std::string& file) {
        return {base::Failure::Kind::unavailable, file + ": no client"};
    }
};
NoDownloads noDownloads;

}  // namespace

LiveFolder::LiveFolder(platform::WatchOptions options) : _inotify(options) {
    folder().mkdir("data/Notes");
    folder().mkdir("data/Calendar");
    folder().mkdir("data/.Trash");
    folder().mkdir("outside");
    make(nullptr);
}

void LiveFolder::make(std::shared_ptr<const store::NoteIndex> index) {
    _cache = std::make_unique<store::NoteCache>(cacheTools(std::move(index)));
    _sync = std::make_unique<sync::CloudSync>(sync::CloudSync::Tools{
        .store = _store.store,
        .cloudQuery = _query,
        .mainQueue = _mainQueue,
        .downloads = noDownloads,
        .clock = _clock,
        .executor = _executor,
        .knownText = [this](auto type, auto name) { return _cache->knownText(type, name); }});
    _sync->addListener([this](const store::CloudBatch& batch) {
        _told.hear(batch);
        _cache->onCloudUpdate(batch);
    });
}

LiveFolder::~LiveFolder() {
    _sync.reset();
    _cache.reset();
}

void LiveFolder::restart(std::shared_ptr<const store::NoteIndex> index) {
    _sync.reset();
    _cache.reset();
    _told.forget();
    make(std::move(index));
}

store::NoteCache::Tools LiveFolder::cacheTools(std::shared_ptr<const store::NoteIndex> index) {
    return {.store = _store.store,
            .executor = _executor,
            .clock = _clock,
            .countSettings = [] { return store::CountSettings{}; },
            .onRepeat = {},
            .index = [index = std::move(index)] { return index; }};
}

bool LiveFolder::load() {
    _cache->load();
    return _executor.waitUntilIdle();
}

bool LiveFolder::watch() {
    _sync->start();
    return _query.waitForUpdate() && work(2 * sync::CloudSync::quietTime);
}

void LiveFolder::begin() {
    _executor.waitUntilIdle();
    for (int i = 0; i < 2 * sync::CloudSync::quietTime / step && _executor.isIdle(); ++i) {
        _mainQueue.advance(step);
    }
}

bool LiveFolder::work(std::chrono::nanoseconds time) {
    bool isIdle = true;
    for (; isIdle && time > step.zero(); time -= step) {
        _mainQueue.advance(step);
        isIdle = _executor.waitUntilIdle();
    }
    return isIdle;
}

// In the trash, since a look at the whole of another folder might see it before the events of
// earlier changes have been read.
void LiveFolder::mark() {
    _mark = folder().write("data/.Trash/mark " + std::to_string(++_marks) + ".txt", "");
}

bool LiveFolder::isMarkTold() const {
    return _told.knows(_mark);
}

bool LiveFolder::settle() {
    // A look at everything that has begun might see the mark, and not all that was changed before
    // it.
    if (!_executor.waitUntilIdle()) {
        return false;
    }
    mark();
    while (!isMarkTold()) {
        // The refresh may ask for an update of its own meanwhile, and so put this one off.
        if (!_query.waitForUpdate() || !work(2 * sync::CloudSync::quietTime)) {
            return false;
        }
    }
    return _executor.waitUntilIdle();
}

bool LiveFolder::settleByLooking() {
    if (!_executor.waitUntilIdle()) {
        return false;
    }
    mark();
    return work(longerThanAnyPause) && isMarkTold();
}

std::string LiveFolder::cacheDifferenceFromDisk() {
    store::NoteCache fresh(cacheTools());
    fresh.load();
    fresh.waitUntilIdle();
    return difference(everythingIn(*_cache), everythingIn(fresh));
}

std::string LiveFolder::differenceFromDisk() {
    store::NoteCache fresh(cacheTools());
    fresh.load();
    fresh.waitUntilIdle();
    std::map<std::string, std::string> onDisk;
    fresh.generalNotes()->forEach([&](const auto& item) {
        onDisk[_store.root + "/Notes/" + item->note.filename + (item->note.isFolder ? "/" : "")];
    });
    return difference(everythingIn(*_cache), everythingIn(fresh)) +
           difference(_told.generalNotes(), onDisk) + _told.contradictions();
}

}  // namespace tessaly::tests
