// SPDX-License-Identifier: MIT
#include "store/note_delivery.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace tessaly::store {
namespace {

using base::Failure;
using ports::FolderEntry;

constexpr std::size_t filesBetweenTellings = 512;

template <class Items>
void append(Items& items, Items&& more) {
    std::move(more.begin(), more.end(), std::back_inserter(items));
}

/// A folder's notes, one after the other by their paths relative to the kind's folder.
class PathInFolder {
public:
    explicit PathInFolder(const NoteFolder& folder) : _path(folder.name) {
        if (!_path.empty()) {
            _path += '/';
        }
        _prefix = _path.size();
    }

    const std::string& of(std::string_view name) {
        _path.resize(_prefix);
        return _path.append(name);
    }

private:
    std::string _path;
    std::size_t _prefix;
};

}  // namespace

NoteDelivery::NoteDelivery(ports::FileSystem& files, const NoteIndex* index,
                           const NoteReader::Options& options, const NoteReader::Visit& visit,
                           std::size_t workers)
    : _files(files),
      _index(index),
      _options(options),
      _visit(visit),
      _nextTelling(filesBetweenTellings) {
    const bool areKept = options.seenPages == NoteReader::SeenPages::kept;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        _workers.emplace_back(areKept ? nullptr : index);
    }
}

bool NoteDelivery::isCancelled(std::size_t worker) {
    const bool isCancelled = _options.cancelled && *_options.cancelled;
    report(worker).cancelled |= isCancelled;
    return isCancelled;
}

ReadReport NoteDelivery::wholeReport() {
    ReadReport whole;
    for (Worker& worker : _workers) {
        ReadReport& part = worker.report;
        whole.files += part.files;
        whole.fromIndex += part.fromIndex;
        whole.bytes += part.bytes;
        whole.cancelled |= part.cancelled;
        append(whole.skipped, std::move(part.skipped));
        append(whole.conflictCopies, std::move(part.conflictCopies));
        append(whole.temporaries, std::move(part.temporaries));
    }
    const auto byPath = [](const auto& a, const auto& b) { return a.path < b.path; };
    std::sort(whole.skipped.begin(), whole.skipped.end(), byPath);
    std::sort(whole.conflictCopies.begin(), whole.conflictCopies.end(), byPath);
    std::sort(whole.temporaries.begin(), whole.temporaries.end());
    return whole;
}

void NoteDelivery::takeKnown(std::size_t worker, const NoteFolder& folder,
                             std::span<const KnownNote> notes) {
    PathInFolder path(folder);
    std::vector<FolderEntry> damaged;
    for (const KnownNote& note : notes) {
        if (isCancelled(worker)) {
            return;
        }
        if (!takeKnown(worker, {folder.type, path.of(note.name), {}, note.stamp}, note.entry)) {
            damaged.push_back({note.name, FolderEntry::Kind::file});
        }
    }
    readFiles(worker, folder, damaged);
}

// False: the index has lost what it knew.
bool NoteDelivery::takeKnown(std::size_t worker, NoteFile file, NoteIndex::Entry entry) {
    if (_options.wanted == NoteReader::Wanted::dayTasks) {
        file.record = _index->record(entry);
    }
    if (!file.record) {
        const auto bytes = _index->bytes(entry);
        if (!bytes) {
            return false;
        }
        file.bytes = *bytes;
    }
    deliver(worker, file, file.stamp.size);
    ++report(worker).fromIndex;
    if (!file.record && _options.seenPages == NoteReader::SeenPages::givenBack) {
        _workers[worker].seen.add(file.bytes);
    }
    return true;
}

void NoteDelivery::readFiles(std::size_t worker, const NoteFolder& folder,
                             std::span<const FolderEntry> files) {
    if (files.empty()) {
        return;
    }
    PathInFolder path(folder);
    const auto done = _files.readEach(folder.path, files, [&](const ports::FileRead& file) {
        const std::string& name = path.of(files[file.index].name);
        if (isCancelled(worker)) {
            return;
        }
        if (file.failure) {
            skip(worker, folder.type, name, *file.failure);
        } else {
            deliver(worker, {folder.type, name, file.bytes, *file.stamp}, file.bytes.size());
        }
    });
    if (!done) {
        skip(worker, folder.type, folder.name, done.failure());
    }
}

void NoteDelivery::deliver(std::size_t worker, const NoteFile& file, std::uint64_t bytes) {
    _visit(worker, file);
    ++report(worker).files;
    report(worker).bytes += bytes;
    const std::size_t read = ++_filesRead;
    if (worker == 0 && _options.progress && read >= _nextTelling) {
        _nextTelling = read + filesBetweenTellings;
        _options.progress(read);
    }
}

void NoteDelivery::skip(std::size_t worker, base::NoteType type, std::string_view name,
                        Failure failure) {
    report(worker).skipped.push_back({pathInData(type, name), std::move(failure)});
}

}  // namespace tessaly::store
