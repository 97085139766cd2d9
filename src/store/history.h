// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/failure.h"
#include "ports/clock.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "ports/folder_locks.h"
#include "store/change_cause.h"
#include "store/history_entry.h"
#include "store/history_texts.h"
#include "store/known_index.h"

namespace tessaly::store {

/// Texts that files held before and after they were changed, so that none is gone for good. Below
/// its folder, which the owner alone can read, lie the texts as they were ("texts/ab/abcd…", named
/// by their hash, each once) and "index", a line for each entry: time, cause, hash, number of bytes
/// and path, separated by tabs, oldest first. A line that is torn or not understood is passed over,
/// and kept. Of what was typed in an editor, much is thinned out (`history_thinning.h`): those
/// lines are no entries. Entries older than 90 days go, and the oldest beyond 512 MB; the texts
/// with the last entry that names them. What is thinned out may leave its text until the next
/// pruning. A pruning that fails is no failure of what was kept. Any thread and
/// process: changes are made under the history's own lock, which may be taken while a data folder's
/// is held, never the other way round.
class History {
public:
    struct Tools {
        ports::FileSystem& files;
        ports::FileChanges& changes;
        ports::FolderLocks& locks;
        ports::Clock& clock;
    };

    History(Tools tools, std::string folder, const HistoryLimits& limits = {})
        : _tools(tools),
          _limits(limits),
          _folder(std::move(folder)),
          _texts(tools.files, tools.changes, _folder + "/texts"),
          _index(tools.files, tools.changes, _folder, indexName) {}

    const std::string& folder() const { return _folder; }

    /// Keeps the bytes that `file` holds now and is about to lose; on disk before it returns. Where
    /// the newest entry of `file` has these bytes, nothing is written (but put on the disk, when it
    /// is younger than a minute), unless half its time is over; `trashed` is an entry each time.
    /// Failure: they are not safe, and must not be replaced.
    base::Result<base::Done> keepOld(const std::string& file, std::string_view bytes,
                                     ChangeCause cause = ChangeCause::found);

    /// Keeps the bytes that `file` is about to get, so that another program that overwrites them
    /// at once does not destroy them. Always an entry of its own; on disk in the kernel's time.
    base::Result<base::Done> keepNew(const std::string& file, std::string_view bytes,
                                     ChangeCause cause);

    /// Keeps bytes that `file` held until `until`, unless an entry of it has them: a program that
    /// watches has seen them there. They are listed as of that time, behind those kept before.
    base::Result<base::Done> keepHeld(const std::string& file, std::string_view bytes,
                                      base::Instant until);

    /// Newest first; those of one file when `file` is given. No history: no entries.
    base::Result<std::vector<HistoryEntry>> entries(
        const std::optional<std::string>& file = std::nullopt) const;

    /// The newest entry whose hash begins with `prefix` (at least four digits). Failures, in words
    /// for the user: `notFound`; `malformed` for what is no prefix, or when several texts have it.
    base::Result<HistoryEntry> find(std::string_view prefix) const;

    /// The bytes of an entry. Failure `malformed`: what is stored no longer has that hash.
    base::Result<std::string> text(const HistoryEntry& entry) const;

    /// Forgets all entries, or those of one file, and the texts that no entry names any longer.
    /// Returns how many entries went.
    base::Result<std::size_t> clear(const std::optional<std::string>& file = std::nullopt);

private:
    static constexpr const char* indexName = "index";
    std::string indexFile() const { return _folder + "/" + indexName; }
    base::Result<ports::FileContents> readIndex() const;
    HistoryEntry entryOf(const std::string& file, std::string_view bytes, ChangeCause cause) const;
    base::Result<base::Done> add(const HistoryEntry& entry, std::string_view bytes,
                                 ports::Durability durability);
    base::Result<base::Done> sync(const HistoryEntry& entry);
    void removeThinned();
    void prune(const HistoryEntry& newest);
    base::Result<base::Done> removeUnnamed(std::string_view index);

    const Tools _tools;
    const HistoryLimits _limits;
    const std::string _folder;
    HistoryTexts _texts;
    std::mutex _mutex;  // of the index, which the lock guards too: taken after that
    KnownIndex _index;
};

}  // namespace tessaly::store
