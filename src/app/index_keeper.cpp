// SPDX-License-Identifier: MIT
#include "app/index_keeper.h"

#include <chrono>
#include <utility>
#include <vector>

#include "app/start_up_index.h"
#include "base/localisation.h"
#include "base/log.h"
#include "grammar/line_scanner.h"
#include "store/day_tasks.h"
#include "store/note_index_writer.h"

namespace tessaly::app {

using base::Failure;

namespace {

using namespace std::chrono_literals;

constexpr std::size_t fewestRead = 1000;
constexpr std::size_t shareRead = 20;  // one in so many
constexpr auto shortestPause = 1min;
constexpr auto longestUnwritten = 90 * 24h;

std::pair<std::string, std::string> folderAndName(const std::string& file) {
    const auto slash = file.rfind('/');
    return {file.substr(0, slash), file.substr(slash + 1)};
}

// Where states tell nothing yet, say since the clock was set back, each start would begin anew.
bool wasJustWritten(Services& services, const std::string& file) {
    const auto [folder, name] = folderAndName(file);
    const auto found = services.ports().files.surveyNames(folder, {&name, 1});
    if (!found || !found->front()) {
        return false;
    }
    const auto age = services.ports().fileClock.now() - found->front()->stamp.modified;
    return age >= 0s && age < shortestPause;
}

/// Data folders that are gone leave their index behind.
void removeForgotten(Services& services, const std::string& file) {
    const auto [folder, own] = folderAndName(file);
    const auto found = services.ports().files.survey(folder);
    if (!found) {
        return;
    }
    const base::Instant oldest = services.ports().fileClock.now() - longestUnwritten;
    for (const ports::SurveyedEntry& entry : *found) {
        if (entry.kind == ports::FolderEntry::Kind::file && entry.stamp.modified < oldest) {
            (void)services.ports().cacheFiles.remove(folder + "/" + entry.name);
        }
    }
}

/// Adds every note that is read.
store::ReadReport addNotes(Services& services, const store::NoteReader::Options& options,
                           const grammar::MarkerSettings& markers, store::NoteIndexWriter& writer) {
    store::NoteReader reader(services.dataStore(), services.ports().executor,
                             services.startUpIndex().get());
    std::vector<grammar::NoteScanner> scanners(reader.workers());
    return reader.readAll(options, [&](std::size_t worker, const store::NoteFile& file) {
        const std::string record = store::DayTasks::record(file.type, file.filename, file.bytes,
                                                           markers, scanners[worker]);
        writer.add({file.type, file.filename, file.bytes, file.stamp, record});
    });
}

bool isIndexDue(Services& services) {
    const auto place = indexPlace(services);
    return place && place->whyNot.empty() && !wasJustWritten(services, place->file);
}

std::vector<std::string> indexCommand(Services& services) {
    return {"--root", services.dataStore().root(), "index"};
}

void tellNotStarted(const Failure& failure) {
    base::log("could not start writing the start-up index: ", failure.description);
}

}  // namespace

IndexState indexState(Services& services) {
    const auto place = indexPlace(services);
    if (!place) {
        return {{}, true, 0, place.failure()};
    }
    IndexState state{place->file, place->whyNot.empty(), 0, std::nullopt};
    if (!state.isWanted) {
        state.failure = Failure{Failure::Kind::unavailable, place->whyNot};
        return state;
    }
    const auto index = store::NoteIndex::open(services.ports().cacheFiles, place->file, place->key);
    if (index) {
        state.notes = (*index)->size();
    } else {
        state.failure = index.failure();
    }
    return state;
}

bool isIndexStale(const store::ReadReport& report) {
    const std::size_t opened = report.files - report.fromIndex;
    return !report.cancelled && opened >= fewestRead && opened * shareRead >= report.files;
}

base::Result<WrittenIndex> writeIndex(Services& services, store::NoteReader::Options options) {
    const auto place = indexPlace(services);
    if (!place) {
        return place.failure();
    }
    if (!place->whyNot.empty()) {
        return Failure{Failure::Kind::unavailable, place->whyNot};
    }
    const auto writer = store::NoteIndexWriter::begin(services.ports().cacheFiles, place->file,
                                                      place->key, services.ports().fileClock.now());
    if (!writer) {
        return writer.failure();
    }
    options.types = {base::NoteType::calendar, base::NoteType::note};
    options.wanted = store::NoteReader::Wanted::text;
    const auto report = addNotes(services, options, place->key.markers, **writer);
    if (report.cancelled) {
        return Failure{Failure::Kind::cancelled, place->file};
    }
    if (const auto finished = (*writer)->finish(); !finished) {
        return finished.failure();
    }
    services.startUpIndex().forget();
    removeForgotten(services, place->file);
    const std::size_t notes = (*writer)->size();
    return WrittenIndex{place->file, notes, report.files - notes};
}

void refreshIndexLater(Services& services) {
    if (!isIndexDue(services)) {
        return;
    }
    if (const auto started = services.ports().background(indexCommand(services)); !started) {
        tellNotStarted(started.failure());
    }
}

std::unique_ptr<ports::FollowedJob> refreshIndexFollowed(Services& services) {
    if (!services.ports().followedJob || !isIndexDue(services)) {
        return nullptr;
    }
    auto started = services.ports().followedJob(indexCommand(services));
    if (!started) {
        tellNotStarted(started.failure());
        return nullptr;
    }
    return std::move(started).value();
}

}  // namespace tessaly::app
