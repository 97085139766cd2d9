// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "base/failure.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"

namespace tessaly::store {

/// The texts of the history in their folder: each once, in a file named by its hash. Whoever
/// changes them holds the history's lock.
class HistoryTexts {
public:
    HistoryTexts(ports::FileSystem& files, ports::FileChanges& changes, std::string folder)
        : _files(files), _changes(changes), _folder(std::move(folder)) {}

    /// The bytes that have this hash. Failure `malformed`: what is stored has another one.
    base::Result<std::string> read(const std::string& hash) const;

    /// Whether these bytes are there, all of them.
    bool holds(const std::string& hash, std::string_view bytes) const;

    enum class Put { isNew, wasThere };
    base::Result<Put> put(const std::string& hash, std::string_view bytes,
                          ports::Durability durability);

    base::Result<base::Done> remove(const std::string& hash);

    /// Puts one on the disk that is there.
    base::Result<base::Done> sync(const std::string& hash) const;

    /// Removes all texts but these, and what interrupted writes left; goes on where one cannot be
    /// removed. Failure: the first.
    base::Result<base::Done> keepOnly(const std::unordered_set<std::string>& hashes);

private:
    base::Result<base::Done> renew(const std::string& file, std::string_view bytes,
                                   ports::Durability durability);
    std::string fileOf(const std::string& hash) const;

    ports::FileSystem& _files;
    ports::FileChanges& _changes;
    const std::string _folder;
};

}  // namespace tessaly::store
