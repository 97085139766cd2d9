// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "base/note_type.h"
#include "ports/file_system.h"
#include "store/folder_listing.h"
#include "store/note_index.h"
#include "store/note_reader.h"
#include "store/seen_texts.h"

namespace tessaly::store {

/// Delivers the notes of one reading to its visitor, out of the index or their files, and gathers
/// the report. Each worker on one thread.
class NoteDelivery {
public:
    /// All outlive it; without an index there are no known notes.
    NoteDelivery(ports::FileSystem& files, const NoteIndex* index,
                 const NoteReader::Options& options, const NoteReader::Visit& visit,
                 std::size_t workers);

    /// Whether the reading was cancelled; if so, it is in the report.
    bool isCancelled(std::size_t worker);

    void takeKnown(std::size_t worker, const NoteFolder& folder, std::span<const KnownNote> notes);
    void readFiles(std::size_t worker, const NoteFolder& folder,
                   std::span<const ports::FolderEntry> files);

    void skip(std::size_t worker, base::NoteType type, std::string_view name,
              base::Failure failure);

    ReadReport& report(std::size_t worker) { return _workers[worker].report; }
    /// When all have ended.
    ReadReport wholeReport();

private:
    struct Worker {
        explicit Worker(const NoteIndex* index) : seen(index) {}
        ReadReport report;
        SeenTexts seen;
    };

    bool takeKnown(std::size_t worker, NoteFile file, NoteIndex::Entry entry);
    void deliver(std::size_t worker, const NoteFile& file, std::uint64_t bytes);

    ports::FileSystem& _files;
    const NoteIndex* const _index;
    const NoteReader::Options& _options;
    const NoteReader::Visit& _visit;
    std::deque<Worker> _workers;
    std::atomic<std::size_t> _filesRead = 0;
    std::size_t _nextTelling;  // worker 0's
};

}  // namespace tessaly::store
