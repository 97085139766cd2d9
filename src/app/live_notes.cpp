// SPDX-License-Identifier: MIT
#include "app/live_notes.h"

#include <utility>

#include "app/index_keeper.h"
#include "base/localisation.h"

namespace tessaly::app {

namespace {

using namespace std::chrono_literals;

/// An empty folder gives no batch to wait for.
constexpr auto readyInterval = 20ms;

}  // namespace

LiveNotes::LiveNotes(Services& services, Handlers handlers)
    : _services(services),
      _handlers(std::move(handlers)),
      _mainQueue(services.ports().mainQueue),
      _queue(std::string(bundleIdentifier) + ".LiveNotes", services.ports().executor) {
    services.safeFiles();  // what other threads ask for must be there before
}

LiveNotes::~LiveNotes() {
    _mainQueue.cancel(_readyTimer);
    _mainQueue.cancel(_settingsTimer);
    _mainQueue.cancel(_indexTimer);
    if (_migration) {
        _migration->cancel();
    }
    _services.endCloudSync();
    _queue.sync([] {});
    _services.noteCache().waitUntilIdle();
}

void LiveNotes::start(store::NoteCache::LoadOptions options) {
    store::NoteCache& cache = _services.noteCache();
    sync::CloudSync& sync = _services.cloudSync();
    sync.addListener([&cache](const store::CloudBatch& batch) { cache.onCloudUpdate(batch); });
    sync.addListener([this](const store::CloudBatch& batch) { receive(batch); });
    sync.setOnWatchingChanged([this] {
        if (_handlers.onWatchingChanged) {
            _handlers.onWatchingChanged();
        }
    });
    cache.load(std::move(options));
    sync.start();
    _readyTimer = _mainQueue.every(readyInterval, [this] { tellIfReady(); });
    _settingsTimer = _mainQueue.every(settingsInterval, [this] { lookAtSettings(); });
}

// All that is there is told once it is all of another folder, or of one that was away: what lay in
// the one before has been told as deleted.
bool LiveNotes::isNews(store::CloudBatch::Kind kind) {
    switch (kind) {
        case store::CloudBatch::Kind::ahead: return false;
        case store::CloudBatch::Kind::all: return _wasAllTold.exchange(true);
        case store::CloudBatch::Kind::later: break;
    }
    return true;
}

void LiveNotes::receive(const store::CloudBatch& batch) {
    if (!isNews(batch.kind) || batch.notes.empty() || !_handlers.onBatch) {
        return;
    }
    // The cache was told first; whoever hears of the batch may ask for what is in it.
    afterWork([this, batch] { _handlers.onBatch(batch); });
}

/// On the main queue, which does not wait for it.
void LiveNotes::afterWork(std::function<void()> told) {
    _services.noteCache().afterWork(
        [&mainQueue = _mainQueue, alive = std::weak_ptr(_alive), told = std::move(told)] {
            mainQueue.post([alive, told] {
                if (!alive.expired()) {
                    told();
                }
            });
        });
}

void LiveNotes::tellIfReady() {
    if (!_services.noteCache().initialUpdateDone() || !isWatched()) {
        return;
    }
    _mainQueue.cancel(std::exchange(_readyTimer, 0));
    // The first batches name what the load may have read before it was changed.
    afterWork([this] {
        _isReady = true;
        if (_handlers.onReady) {
            _handlers.onReady();
        }
        keepIndex();
        offer();
    });
}

/// What it returns is done on the main queue then.
void LiveNotes::inBackground(std::function<std::function<void()>()> work) {
    _queue.async([&mainQueue = _mainQueue, alive = std::weak_ptr(_alive), work = std::move(work)] {
        mainQueue.post([alive, then = work()] {
            if (!alive.expired()) {
                then();
            }
        });
    });
}

/// The notes are in memory from now on; the index is for who starts later.
void LiveNotes::keepIndex() {
    _services.startUpIndex().forget();
    if (!isIndexStale(*_services.noteCache().loadReport())) {
        return;
    }
    inBackground([this, &services = _services]() -> std::function<void()> {
        std::shared_ptr<ports::FollowedJob> job = refreshIndexFollowed(services);
        return [this, job] { followIndex(job); };
    });
}

/// How far it is, the process does not tell.
void LiveNotes::followIndex(std::shared_ptr<ports::FollowedJob> job) {
    if (!job) {
        return;
    }
    const auto work = std::make_shared<LongWork>(base::tr("Preparing the next start"),
                                                 LongWork::Cancel::possible, LongWork::Count::none);
    begin(work);
    _indexTimer = _mainQueue.every(indexInterval, [this, work, job, isAsked = false]() mutable {
        if (job->hasEnded()) {
            _mainQueue.cancel(std::exchange(_indexTimer, 0));
            end(work);
        } else if (work->cancelled() && !std::exchange(isAsked, true)) {
            job->end();
        }
    });
}

/// Or never will be, for now.
bool LiveNotes::isWatched() {
    sync::CloudSync& sync = _services.cloudSync();
    return _services.ports().isTestMode || !sync.isFirstLoad() ||
           sync.watching().state.cause == ports::WatchState::Cause::noRoot;
}

void LiveNotes::lookAtSettings() {
    _services.noteCache().settingsMayHaveChanged();
    offer();  // the cloud drive may have come
}

void LiveNotes::offer() {
    if (!_isReady) {
        return;
    }
    const auto answer = putMigrationOffer(_services);
    if (!answer) {
        return;
    }
    if (*answer && **answer == sync::MigrationAnswer::move) {
        migrateNotes();
    } else {
        tellOfMigration({*answer, std::nullopt});
    }
}

void LiveNotes::migrateNotes() {
    _migration = std::make_shared<LongWork>(base::tr("Moving notes to the cloud drive"),
                                            LongWork::Cancel::possible);
    begin(_migration);
    inBackground([this, &services = _services, work = _migration]() -> std::function<void()> {
        work->tellTotal(filesToMigrate(services));
        auto report = migrate(
            services, {[work](std::size_t files) { work->tell(files); }, &work->cancelled()});
        return [this, work, report = std::move(report)] { migrated(work, report); };
    });
}

void LiveNotes::migrated(const std::shared_ptr<LongWork>& work, const store::MoveReport& report) {
    _migration.reset();
    end(work);
    if (isWhole(report)) {
        _services.migrationOffer().tellOfMove();
    }
    tellOfMigration({sync::MigrationAnswer::move, report});
}

void LiveNotes::tellOfMigration(const OfferResult& result) {
    if (_handlers.onMigration) {
        _handlers.onMigration(result);
    }
}

void LiveNotes::begin(const std::shared_ptr<LongWork>& work) {
    if (_handlers.onWork) {
        _handlers.onWork(work);
    }
}

void LiveNotes::end(const std::shared_ptr<LongWork>& work) {
    if (_handlers.onWorkEnded) {
        _handlers.onWorkEnded(work);
    }
}

}  // namespace tessaly::app
