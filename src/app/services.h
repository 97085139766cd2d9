// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/note_moves.h"
#include "app/start_up_index.h"
#include "base/executor.h"
#include "base/locale_formats.h"
#include "grammar/date_string_helper.h"
#include "ports/background_job.h"
#include "ports/cache_files.h"
#include "ports/clock.h"
#include "ports/cloud_container.h"
#include "ports/cloud_downloads.h"
#include "ports/cloud_folders.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "ports/folder_locks.h"
#include "ports/followed_job.h"
#include "ports/main_queue.h"
#include "ports/metadata_query.h"
#include "ports/questions.h"
#include "ports/spelling.h"
#include "ports/standard_folders.h"
#include "ports/telling_stamps.h"
#include "ports/trash.h"
#include "ports/trash_return.h"
#include "ports/user_defaults.h"
#include "ports/user_locale.h"
#include "ports/watch_outlook.h"
#include "search/filter_helper.h"
#include "search/search_helper.h"
#include "settings/globals.h"
#include "store/data_store.h"
#include "store/history.h"
#include "store/note_cache.h"
#include "store/note_model.h"
#include "store/safe_files.h"
#include "sync/cloud_sync.h"
#include "sync/migration_offer.h"
#include "tasks/operation_journal.h"
#include "tasks/operation_runner.h"
#include "tasks/task_rewrites.h"

namespace tessaly::app {

inline constexpr char bundleIdentifier[] = "org.tessaly.tessaly";

/// The outside world as one program sees it. Everything outlives `Services`.
struct Ports {
    ports::FileSystem& files;
    ports::FileChanges& changes;
    ports::FolderLocks& locks;
    ports::UserDefaults& standardDefaults;
    ports::UserDefaults& groupDefaults;
    ports::Clock& clock;
    base::Executor& executor;
    ports::MetadataQuery& cloudQuery;
    ports::MainQueue& mainQueue;
    ports::CloudDownloads& downloads;
    ports::CacheFiles& cacheFiles;
    ports::Clock& fileClock;  ///< the time that files are dated by, whatever `clock` tells
    ports::TellingStamps tellingStamps;
    ports::BackgroundJob background;
    ports::CloudFolders cloudFolders;
    ports::WatchOutlooks watchOutlook;
    ports::StandardFolders folders;
    ports::UserLocale locale;
    ports::DropboxAuthorised dropboxAuthorised;
    ports::CloudContainer cloudContainer;
    ports::Trash trash;
    ports::Questions questions;
    std::optional<std::string> dataFolder;  ///< named by the user on the command line
    bool isTestMode = false;  ///< the environment holds "TEST_MODE": the folder is not watched
    ports::FollowedJobs followedJob = {};       ///< empty: nothing can be started and followed
    ports::TrashReturn trashReturn = {};        ///< empty: nothing comes back from the trash
    ports::SpellingDictionaries spelling = {};  ///< empty: there are no dictionaries
};

/// The shared instances of one program, each made on first use, on the main thread. Instances that
/// are made already may be asked for on any thread; what it hands out says for itself which threads
/// may use it.
class Services {
public:
    explicit Services(Ports ports);
    ~Services();

    const Ports& ports() const { return _ports; }
    settings::Globals& globals();
    store::DataStore& dataStore();
    store::History& history();
    store::SafeFiles& safeFiles();
    /// The operations on the tasks of the data folder in use now.
    std::unique_ptr<tasks::OperationJournal> operationJournal();
    tasks::OperationRunner operationRunner(tasks::OperationJournal& journal);
    StartUpIndex& startUpIndex();
    /// All notes; they are only held once the cache is told to load.
    store::NoteCache& noteCache();
    /// The watcher of the data folder, which does nothing until it is started.
    sync::CloudSync& cloudSync();
    /// Ends the watcher, once its batch in hand is done. The next one is made anew.
    void endCloudSync();
    sync::MigrationOffer& migrationOffer();
    NoteMoves& noteMoves() { return _noteMoves; }
    /// Searches the notes that the cache holds.
    search::SearchHelper& searchHelper();
    search::FilterHelper filterHelper();
    const grammar::DateStringHelper& dateStrings();

    /// Whether the settings name a cloud drive that cannot be used now, so that the notes shown are
    /// not those that the user expects.
    bool isCloudDriveMissing();

    /// What reading a note depends on, from the settings as they are now.
    grammar::MarkerSettings markerSettings();
    store::CountSettings countSettings();
    tasks::RewriteSettings rewriteSettings();

    base::Day today() { return _ports.clock.today(); }

private:
    Ports _ports;
    NoteMoves _noteMoves;
    // Each uses those above it, from other threads too.
    std::unique_ptr<grammar::DateStringHelper> _dateStrings;
    std::unique_ptr<settings::Globals> _globals;
    std::unique_ptr<store::History> _history;
    std::unique_ptr<store::SafeFiles> _safeFiles;
    std::unique_ptr<store::DataStore> _dataStore;
    std::unique_ptr<StartUpIndex> _startUpIndex;
    std::unique_ptr<store::NoteCache> _noteCache;
    std::unique_ptr<sync::CloudSync> _cloudSync;
    std::unique_ptr<sync::MigrationOffer> _migrationOffer;
    std::unique_ptr<search::SearchHelper> _searchHelper;
};

}  // namespace tessaly::app
