// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "base/executor.h"
#include "platform/posix_cache_files.h"
#include "store/data_store.h"
#include "store/note_index.h"
#include "support/temp_folder.h"

namespace tessaly::tests {

/// The start-up indexes of a data folder that were written one after the other; all are kept.
class KeptIndexes {
public:
    /// `settled`: see `store::NoteIndexWriter`.
    KeptIndexes(const TempFolder& folder, const store::DataStore& store,
                std::chrono::milliseconds settled)
        : _folder(folder), _store(store), _settled(settled) {}

    /// Reads the notes and writes one more, taking over from the one before. One thread at a time.
    void write(base::Executor& executor);

    std::size_t size() const { return _names.size(); }

    /// The one that was written so many times ago; null: there is none, or it cannot be used.
    std::shared_ptr<const store::NoteIndex> open(std::size_t ago);

    /// Changes a byte of the newest; its place is that part of all, in thousandths.
    void damage(std::size_t place);

private:
    store::NoteIndex::Key key() const { return {_store.root(), {}}; }

    const TempFolder& _folder;
    const store::DataStore& _store;
    const std::chrono::milliseconds _settled;
    platform::PosixCacheFiles _files;
    std::vector<std::string> _names;  ///< of their files, the newest last
};

}  // namespace tessaly::tests
