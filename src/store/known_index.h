// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/failure.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "store/history_entry.h"
#include "store/history_pruning.h"
#include "store/history_texts.h"

namespace tessaly::store {

/// The history's index in memory, so that a row of changes reads it once: it is read again when
/// its file is not as this object left it. Whoever uses it holds the history's lock. One thread at
/// a time.
class KnownIndex {
public:
    KnownIndex(ports::FileSystem& files, ports::FileChanges& changes, std::string folder,
               std::string name)
        : _files(files), _changes(changes), _folder(std::move(folder)), _name(std::move(name)) {}

    /// Makes `bytes` those of the file. No file: no bytes.
    base::Result<base::Done> refresh();
    const std::string& bytes() const { return _bytes; }

    /// The rest goes by what `refresh` has found.

    /// Whether it is time to prune when `entry` is added: see `history_pruning.h`. Also when many
    /// entries were thinned out.
    bool isPruningDue(const HistoryEntry& entry, const HistoryLimits& limits);

    /// Adds a line, of an entry whose text has been put so.
    base::Result<base::Done> append(const HistoryEntry& entry, HistoryTexts::Put put,
                                    ports::Durability durability);

    /// The hashes of texts that came with a line of ours, which has been thinned out since by
    /// another, and that no later line names. Each is told once. They may go when the index is on
    /// the disk.
    std::vector<std::string> takeThinned();

    /// The file was written by other means, and all that was thinned out went.
    void pruned();

private:
    void forget();
    std::optional<ports::FileStamp> stampOfFile() const;
    EntriesOfDay& entriesOfDay(base::Instant time);
    void noteThinnedBy(const HistoryEntry& entry);

    ports::FileSystem& _files;
    ports::FileChanges& _changes;
    const std::string _folder;
    const std::string _name;

    std::string _bytes;
    std::optional<ports::FileStamp> _stamp;  ///< with which the file holds `_bytes`
    std::optional<std::pair<std::chrono::sys_days, EntriesOfDay>> _ofDay;
    std::unordered_map<std::string, std::size_t>
        _brought;  ///< typed texts: the ends of their lines
    std::vector<std::pair<std::string, std::size_t>> _thinned;  ///< likewise
    std::size_t _thinnedLines = 0;                              ///< since the last pruning
};

}  // namespace tessaly::store
