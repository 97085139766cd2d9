// SPDX-License-Identifier: MIT
#include "live_folder.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "base/log.h"
#include "store/note_names.h"
#include "store/paths.h"

namespace tessaly::bench {

namespace {

using namespace std::chrono_literals;

constexpr auto longEnough = 30s;

// The main thread only waits.
std::size_t poolThreads() {
    return std::max(2U, std::thread::hardware_concurrency());
}

}  // namespace

base::Result<ports::DownloadState> LiveFolder::NoClient::state(const std::string&) {
    return base::Failure{base::Failure::Kind::unavailable, "no sync client"};
}

base::Result<base::Done> LiveFolder::NoClient::request(const std::string&) {
    return base::Failure{base::Failure::Kind::unavailable, "no sync client"};
}

LiveFolder::LiveFolder(const std::string& root)
    : _executor(poolThreads()),
      _folder(root, _files, _executor),
      _cache(
          {_folder.dataStore, _executor, _folder.clock, [] { return store::CountSettings{}; }, {}}),
      _sync(syncTools()) {
    base::setRoutineLog(false);
    _cache.addListener(*this);
    _sync.addListener([this](const store::CloudBatch& batch) { _cache.onCloudUpdate(batch); });
    _cache.load();
    _sync.start();
    while (!_query.state().isReady || !_cache.initialUpdateDone()) {
        std::this_thread::sleep_for(5ms);
    }
    while (_sync.isFirstLoad()) {
        fire();
        settle();
    }
    fire();  // what the query has put in store since
    settle();
}

LiveFolder::~LiveFolder() {
    settle();
    _query.stop();
}

sync::CloudSync::Tools LiveFolder::syncTools() {
    return {.store = _folder.dataStore,
            .cloudQuery = _query,
            .mainQueue = _mainQueue,
            .downloads = _downloads,
            .clock = _folder.clock,
            .executor = _executor,
            .knownText = [this](base::NoteType type, std::string_view filename) {
                return _cache.knownText(type, filename);
            }};
}

std::string LiveFolder::pathOf(std::string_view filename) const {
    return store::joined(_folder.dataStore.folder(base::NoteType::note), filename);
}

void LiveFolder::expect(std::set<std::string> filenames) {
    const std::scoped_lock lock(_mutex);
    _expected = std::move(filenames);
}

void LiveFolder::cacheChanged(const store::CacheChanges& changes) {
    const std::scoped_lock lock(_mutex);
    for (const auto& note : changes.notes) {
        if (note.type == base::NoteType::note) {
            _expected.erase(note.filename);
        }
    }
    if (_expected.empty()) {
        _changed.notify_all();
    }
}

void LiveFolder::waitUntilNoticed(std::chrono::milliseconds quiet) {
    if (!_mainQueue.waitForJob(longEnough)) {
        return;
    }
    do {
        _mainQueue.runDue();
    } while (_mainQueue.waitForJob(quiet));
}

void LiveFolder::fire() {
    const std::size_t before = _executor.taken();
    _mainQueue.runDue();
    for (int tries = 0; tries < 20 && _executor.taken() == before; ++tries) {
        _mainQueue.skip(sync::CloudSync::quietTime);
        _mainQueue.runDue();
    }
}

std::optional<Taken> LiveFolder::batch() {
    fire();
    std::unique_lock lock(_mutex);
    if (!_changed.wait_for(lock, longEnough, [this] { return _expected.empty(); })) {
        return std::nullopt;
    }
    lock.unlock();
    const auto seen = _cache.generalNotes();
    return Moment::now() - _executor.busySince();
}

Taken LiveFolder::rescan() {
    _mainQueue.skip(24h);
    fire();
    const auto ended = _executor.waitUntilIdle();
    return ended - _executor.busySince();
}

void LiveFolder::settle() {
    do {
        _mainQueue.runDue();
        _executor.waitUntilIdle();
    } while (_mainQueue.waitForJob(20ms));
}

}  // namespace tessaly::bench
