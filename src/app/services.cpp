// SPDX-License-Identifier: MIT
#include "app/services.h"

#include <utility>

#include "app/held_texts.h"
#include "app/note_address.h"
#include "app/search_notes.h"
#include "app/task_changes.h"

namespace tessaly::app {

Services::Services(Ports ports) : _ports(std::move(ports)) {}

Services::~Services() = default;

settings::Globals& Services::globals() {
    if (!_globals) {
        _globals =
            std::make_unique<settings::Globals>(_ports.standardDefaults, _ports.groupDefaults,
                                                dateStrings().formats().firstDayOfWeek());
    }
    return *_globals;
}

store::DataStore& Services::dataStore() {
    if (!_dataStore) {
        _dataStore = std::make_unique<store::DataStore>(
            store::DataStore::Tools{_ports.files, _ports.changes, safeFiles(), _ports.trash,
                                    _ports.clock, _ports.executor},
            store::DataStore::Roots{_ports.folders, bundleIdentifier, _ports.dropboxAuthorised,
                                    _ports.cloudContainer, _ports.dataFolder});
    }
    return *_dataStore;
}

store::History& Services::history() {
    if (!_history) {
        _history = std::make_unique<store::History>(
            store::History::Tools{_ports.files, _ports.changes, _ports.locks, _ports.clock},
            _ports.folders.state + "/history");
    }
    return *_history;
}

store::SafeFiles& Services::safeFiles() {
    if (!_safeFiles) {
        _safeFiles = std::make_unique<store::SafeFiles>(
            store::SafeFiles::Tools{_ports.files, _ports.changes, _ports.locks, history()});
    }
    return *_safeFiles;
}

const grammar::DateStringHelper& Services::dateStrings() {
    if (!_dateStrings) {
        _dateStrings =
            std::make_unique<grammar::DateStringHelper>(base::LocaleFormats(_ports.locale.formats));
    }
    return *_dateStrings;
}

StartUpIndex& Services::startUpIndex() {
    if (!_startUpIndex) {
        // What other threads ask for must be there before.
        globals();
        dataStore();
        _startUpIndex = std::make_unique<StartUpIndex>(*this);
    }
    return *_startUpIndex;
}

store::NoteCache& Services::noteCache() {
    if (!_noteCache) {
        // What its threads ask for must be there before.
        dateStrings();
        globals();
        history();
        startUpIndex();
        _noteCache = std::make_unique<store::NoteCache>(store::NoteCache::Tools{
            dataStore(), _ports.executor, _ports.clock, [this] { return countSettings(); },
            [this](const store::FinishedRepeat& found) { return finishRepeat(*this, found); },
            [this] { return _startUpIndex->get(); },
            [this](const auto& held) { keepHeldTexts(*this, held); }});
    }
    return *_noteCache;
}

sync::CloudSync& Services::cloudSync() {
    if (!_cloudSync) {
        const store::NoteCache& cache = noteCache();
        _cloudSync = std::make_unique<sync::CloudSync>(
            sync::CloudSync::Tools{dataStore(), _ports.cloudQuery, _ports.mainQueue,
                                   _ports.downloads, _ports.clock, _ports.executor,
                                   [&cache](base::NoteType type, std::string_view filename) {
                                       return cache.knownText(type, filename);
                                   },
                                   _ports.isTestMode});
    }
    return *_cloudSync;
}

void Services::endCloudSync() {
    _cloudSync.reset();
}

sync::MigrationOffer& Services::migrationOffer() {
    if (!_migrationOffer) {
        _migrationOffer = std::make_unique<sync::MigrationOffer>(
            sync::MigrationOffer::Tools{_ports.questions, _ports.standardDefaults});
    }
    return *_migrationOffer;
}

search::SearchHelper& Services::searchHelper() {
    if (!_searchHelper) {
        const grammar::DateStringHelper& names = dateStrings();
        _searchHelper = std::make_unique<search::SearchHelper>(
            search::SearchHelper::Tools{noteCache(), _ports.executor, _ports.clock, names,
                                        [this] { return searchSettings(*this); },
                                        [this, &names](std::string_view text) {
                                            return parseDay(text, today(), names.formats());
                                        }});
    }
    return *_searchHelper;
}

search::FilterHelper Services::filterHelper() {
    return search::FilterHelper({dataStore(), safeFiles(), _ports.trash});
}

bool Services::isCloudDriveMissing() {
    return !_ports.dataFolder && !globals().cloudDriveContainer().empty() &&
           !dataStore().cloudRoot();
}

grammar::MarkerSettings Services::markerSettings() {
    settings::Globals& settings = globals();
    return {settings.isAsteriskTodo(), settings.isDashTodo(), settings.isNumbersTodo()};
}

tasks::RewriteSettings Services::rewriteSettings() {
    settings::Globals& settings = globals();
    return {markerSettings(), settings.isAppendCompletionLinks(), settings.isAppendScheduleLinks(),
            settings.isCopyScheduleGeneralNoteTodos(), dateStrings().formats().hourCycle()};
}

std::unique_ptr<tasks::OperationJournal> Services::operationJournal() {
    return std::make_unique<tasks::OperationJournal>(
        tasks::OperationJournal::Tools{_ports.files, _ports.changes, _ports.locks, _ports.clock},
        _ports.folders.state + "/undo", dataStore().root());
}

tasks::OperationRunner Services::operationRunner(tasks::OperationJournal& journal) {
    return {{_ports.files, _ports.changes, safeFiles()}, journal};
}

store::CountSettings Services::countSettings() {
    return {markerSettings(), globals().isIndentedTasksInCalendar()};
}

}  // namespace tessaly::app
