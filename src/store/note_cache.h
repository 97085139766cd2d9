// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/executor.h"
#include "base/failure.h"
#include "base/gate.h"
#include "base/published.h"
#include "base/serial_queue.h"
#include "ports/clock.h"
#include "store/cached_notes.h"
#include "store/cloud_note.h"
#include "store/data_store.h"
#include "store/earlier_texts.h"
#include "store/note_model.h"
#include "store/note_reader.h"
#include "store/note_task_counts.h"
#include "store/note_update.h"

namespace tessaly::store {

/// Which collections of the cache have changed.
struct CacheChanges {
    bool generalNotes = false;
    bool calendarNotes = false;
    bool lineAtTags = false;
    bool lineHashTags = false;
    /// The notes that came, went or changed, and the days whose counts did; empty when everything
    /// may have changed.
    struct Note {
        base::NoteType type;
        std::string filename;  ///< relative to the kind's folder
    };
    std::vector<Note> notes;

    bool any() const { return generalNotes || calendarNotes || lineAtTags || lineHashTags; }
};

/// Told about changes of the cache: once a batch, when its snapshots are published, and once more
/// when the days' counts of other notes' tasks that follow from it are. On the thread that did the
/// work, outside every queue. Views post on to the main queue.
class CacheListener {
public:
    virtual ~CacheListener() = default;
    virtual void cacheChanged(const CacheChanges& changes) = 0;
};

/// Told when a tag list has changed, before the listeners, on the same thread.
class TagUpdateDelegate {
public:
    virtual ~TagUpdateDelegate() = default;
    virtual void tagsChanged() = 0;
};

/// Looks after a completed repeat. True: the note's file has been changed, and is read again.
using RepeatHook = std::function<bool(const FinishedRepeat& found)>;

/// All notes in memory: every general note with its content and every folder of them, every
/// calendar note by its day, and how many notes hold each mention and hashtag. Filled once from the
/// data folder, kept current by the watcher's batches. Readers take a snapshot and never wait.
///
/// Each collection is changed only on a queue of its own (".NoteCache.GeneralNotes",
/// ".NoteCache.CalendarNotes", ".NoteCache.lineAtTags", ".NoteCache.lineHashTags"), one after the
/// other, once a batch and once for the counts that follow from it. First load, updates and
/// recounts hold `semaphore`, so none overlaps another. All operations may be called from any
/// thread unless they say else.
class NoteCache {
public:
    /// All outlive the cache.
    struct Tools {
        DataStore& store;
        base::Executor& executor;
        ports::Clock& clock;
        std::function<CountSettings()> countSettings;  ///< asked before each piece of work
        RepeatHook onRepeat;                           ///< may be empty
        /// Asked before files are read; may be empty or give nothing. Any thread.
        std::function<std::shared_ptr<const NoteIndex>()> index = {};
        /// Takes texts that notes held before others changed them, once they are in conflict, so
        /// that they are not forgotten; may be empty. On the thread that does the work, outside
        /// every queue.
        std::function<void(const std::vector<HeldTexts>& held)> onConflict = {};
    };

    explicit NoteCache(Tools tools);
    /// Waits for the piece of work in hand; what waits is dropped. Main thread.
    ~NoteCache();

    struct LoadOptions {
        NoteReader::Progress progress;                 ///< as of a reading
        const std::atomic<bool>* cancelled = nullptr;  ///< outlives the load
    };
    /// Starts the first full load and returns. The ten days from today are published before the
    /// rest is read. When all is in: `initialUpdateDone`, then `onHasLoaded`, then delegate and
    /// listeners. A load that is cancelled leaves the cache as not loaded, and can be started
    /// again. To be called once otherwise.
    void load(LoadOptions options);
    void load() { load(LoadOptions()); }

    bool initialUpdateDone() const;
    /// Called once, on the loading thread, when the first full load has finished; at once, on the
    /// calling thread, when it has already.
    void setOnHasLoaded(std::function<void()> hasLoaded);

    /// Snapshots. Never null.
    std::shared_ptr<const GeneralNotes> generalNotes() const { return _generalNotes.get(); }
    std::shared_ptr<const CalendarNotes> calendarNotes() const { return _calendarNotes.get(); }
    std::shared_ptr<const TagCounts> lineAtTags() const { return _lineAtTags.get(); }
    std::shared_ptr<const TagCounts> lineHashTags() const { return _lineHashTags.get(); }
    /// Nothing: there is no such note, or it has no file.
    std::optional<KnownText> knownText(base::NoteType type, std::string_view filename) const;
    /// Files among the calendar notes whose names are no day, relative to that folder, in order.
    std::vector<std::string> strays() const;

    /// What the first full load came to; nothing read before it.
    std::shared_ptr<const ReadReport> loadReport() const { return _report.get(); }

    /// Listeners are told in the order in which they were added. One that is removed may be told
    /// once more if it is being told at that moment; not from within a listener.
    void addListener(CacheListener& listener);
    void removeListener(CacheListener& listener);
    void setTagUpdateDelegate(TagUpdateDelegate* delegate);

    /// The watcher's listener. Returns at once; the work is done on the executor when the first
    /// load and earlier updates have ended. Logs "onCloudUpdate - " and a description. Each file
    /// that is named is looked at: if its state is not the one that is held, it is read, and
    /// compared by content and date; what is the same is not told. A file that cannot be read for
    /// another reason than that it is gone keeps its last text.
    ///
    /// A stray calendar file that arrives (not one of a first batch or that lay there at the load)
    /// is logged as "found an invalid calendar file: " NAME ", attempt to merge it." and merged
    /// into its day's note; a completed repeat in a note that arrives is handed to the hook.
    void onCloudUpdate(const CloudBatch& batch);

    /// Reads one note again, as an update that names it: for who has just written it.
    void reread(base::NoteType type, std::string filename);

    /// To be called when a setting may have changed: where one did that notes are counted by, all
    /// notes are counted anew.
    void settingsMayHaveChanged();

    /// Returns when no work runs or waits. Not from a pool's job.
    void waitUntilIdle();
    /// Runs `job` on the executor when the work that runs and waits now has ended, ahead of what
    /// comes later; not at all when the cache goes before that. For who must not wait.
    void afterWork(base::Job job);

    /// Delivers every note as `NoteReader::readAll` does: out of memory once all is loaded, where
    /// the bytes are the text without a byte-order mark (none of a note that is not UTF-8) and the
    /// report is that of the load; else by reading the files, which are not kept. `Options::types`
    /// and `cancelled` count in both, `visitFolder` too.
    ReadReport visit(const NoteReader::Options& options, const NoteReader::Visit& visit) const;
    /// How many callers `visit` has at most.
    std::size_t workers() const;

private:
    // Pieces of work, each under the gate.
    void loadAll(const LoadOptions& options);
    void showNextDays();
    void countNoteTasks();
    void update(std::vector<NamedNote> names, CloudBatch::Kind kind);
    void recountIfNeeded();

    std::string resolvedRoot() const;
    bool isRootInUse(const std::string& root) const;
    std::shared_ptr<const CalendarNotes> recounted(const CalendarNotes& notes) const;
    std::shared_ptr<const GeneralNotes> recounted(const GeneralNotes& notes) const;
    void dispatchRepeats(NoteUpdate& update);
    std::vector<NamedNote> conflictsAmong(const std::vector<NamedNote>& names) const;
    void rememberTexts(const NoteUpdate& update, const std::vector<NamedNote>& names);
    void handOver(std::vector<HeldTexts> held) const;
    std::vector<HeldTexts> differingTexts(const NoteIndex& index) const;
    void publish(const NoteUpdate& update);
    void finishLoading();
    void tell(const CacheChanges& changes);
    void setGeneralNotes(std::shared_ptr<const GeneralNotes> notes);
    void setCalendarNotes(std::shared_ptr<const CalendarNotes> notes);
    void setTags(std::shared_ptr<const TagCounts> atTags,
                 std::shared_ptr<const TagCounts> hashTags);
    ReadReport visitMemory(const NoteReader::Options& options,
                           const NoteReader::Visit& visit) const;

    const Tools _tools;

    // Any thread.
    base::Published<GeneralNotes> _generalNotes;
    base::Published<CalendarNotes> _calendarNotes;
    base::Published<TagCounts> _lineAtTags;
    base::Published<TagCounts> _lineHashTags;
    base::Published<StrayNotes> _strays;
    base::Published<ReadReport> _report;
    std::atomic<bool> _initialUpdateDone = false;

    mutable std::mutex _mutex;  ///< guards what follows
    std::condition_variable _hasTold;
    std::vector<CacheListener*> listeners;
    TagUpdateDelegate* tagUpdateDelegate = nullptr;
    bool _isTelling = false;
    std::function<void()> onHasLoaded;

    // Whose turn it is to change what is published.
    base::SerialQueue generalNotesQueue;
    base::SerialQueue calendarNotesQueue;
    base::SerialQueue lineAtTagsQueue;
    base::SerialQueue lineHashTagsQueue;

    // Who holds the gate.
    CountSettings _settings;  ///< that the notes were counted by
    std::string _root;        ///< resolved
    NoteTaskCounts _noteTasks;
    bool _areNoteTasksCounted = false;
    ChangedTasks _uncounted;  ///< since `_noteTasks` was brought up to date
    EarlierTexts _earlier;
    std::set<NoteUpdate::NoteId> _inConflict;  ///< as the batches told

    base::Gate semaphore;  ///< the last member: its end waits for the work in hand
};

}  // namespace tessaly::store
