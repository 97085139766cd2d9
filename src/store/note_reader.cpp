// SPDX-License-Identifier: MIT
#include "store/note_reader.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "base/localisation.h"
#include "base/temporary_name.h"
#include "base/utf8.h"
#include "store/entry_role.h"
#include "store/notes_by_name.h"
#include "store/paths.h"
#include "store/work_queue.h"

namespace tessaly::store {
namespace {

using base::Failure;
using ports::FolderEntry;
using Kind = FolderEntry::Kind;

// So few that two threads end at about the same time, so many that a folder is opened seldom.
constexpr std::size_t chunkFiles = 32;
constexpr std::size_t filesBetweenTellings = 512;

/// A folder to be listed; once it is, its note files stand at the front of `entries`.
struct Folder {
    base::NoteType type;
    std::string name;  ///< relative to the kind's folder; empty for that itself
    std::string path;
    std::vector<FolderEntry> entries;
};

/// Part of a folder's files to be read, or, without any, a folder to be listed.
struct Job {
    std::shared_ptr<Folder> folder;
    std::span<const FolderEntry> files;
};

bool isNoteFile(const FolderEntry& entry) {
    return entryRole(entry) == EntryRole::note;
}

template <class Items>
void append(Items& items, Items&& more) {
    std::move(more.begin(), more.end(), std::back_inserter(items));
}

/// One reading of all notes, shared by its workers.
class Walk {
public:
    Walk(const DataStore& store, const NoteReader::Options& options, const NoteReader::Visit& visit,
         std::size_t workers)
        : _files(store.files()), _options(options), _visit(visit), _reports(workers) {
        const std::string root = store.root();
        if (auto resolved = _files.resolve(root)) {
            _resolvedRoot = std::move(resolved).value();
        }
        for (const base::NoteType type : options.types) {
            addKind(type, joined(root, base::folderName(type)));
        }
    }

    /// Works until all is read. Each worker once, on one thread.
    void work(std::size_t worker) {
        _queue.drain([&](const Job& job) {
            if (isCancelled()) {
                _reports[worker].cancelled = true;
            } else if (job.files.empty()) {
                listFolder(worker, job.folder);
            } else {
                readFiles(worker, *job.folder, job.files);
            }
        });
    }

    ReadReport report() {
        ReadReport whole = std::move(_reports.front());
        for (ReadReport& part : std::span(_reports).subspan(1)) {
            whole.files += part.files;
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

private:
    void addKind(base::NoteType type, const std::string& path) {
        auto resolved = _files.resolve(path);
        if (!resolved) {
            if (resolved.failure().kind != Failure::Kind::notFound) {
                skip(0, type, {}, resolved.failure());
            }
        } else if (!_resolvedRoot || !isInside(*resolved, *_resolvedRoot)) {
            skip(0, type, {}, {Failure::Kind::outside, leadsOut()});
        } else {
            auto folder =
                std::make_shared<Folder>(Folder{type, {}, std::move(resolved).value(), {}});
            _queue.push({std::move(folder), {}});
        }
    }

    void listFolder(std::size_t worker, const std::shared_ptr<Folder>& folder) {
        auto entries = _files.list(folder->path);
        if (!entries) {
            skip(worker, folder->type, folder->name, entries.failure());
            return;
        }
        folder->entries = std::move(entries).value();
        setCopiesAside(worker, *folder);
        const auto rest =
            std::partition(folder->entries.begin(), folder->entries.end(), isNoteFile);
        std::for_each(rest, folder->entries.end(),
                      [&](const FolderEntry& entry) { handleOther(worker, *folder, entry); });
        std::span<const FolderEntry> files(folder->entries.begin(), rest);
        while (files.size() > chunkFiles) {
            _queue.push({folder, files.last(chunkFiles)});
            files = files.first(files.size() - chunkFiles);
        }
        readFiles(worker, *folder, files);
    }

    // Takes the conflict copies out of a folder's entries.
    void setCopiesAside(std::size_t worker, Folder& folder) {
        if (std::none_of(folder.entries.begin(), folder.entries.end(), mayBeConflictCopy)) {
            return;
        }
        NotesByName notes;
        for (const FolderEntry& entry : folder.entries) {
            if (isNoteFile(entry)) {
                notes.add(entry.name);
            }
        }
        std::erase_if(folder.entries, [&](const FolderEntry& entry) {
            if (!mayBeConflictCopy(entry)) {
                return false;
            }
            const auto copy = notes.conflictCopy(entry.name);
            if (copy) {
                _reports[worker].conflictCopies.push_back(
                    {pathInData(folder, entry.name), pathInData(folder, copy->original),
                     copy->device, copy->deviceOf, copy->client});
            }
            return copy.has_value();
        });
    }

    void handleOther(std::size_t worker, const Folder& folder, const FolderEntry& entry) {
        switch (entryRole(entry)) {
            case EntryRole::note: break;
            case EntryRole::folder: enterFolder(worker, folder, entry.name); break;
            case EntryRole::placeholder:
                skip(worker, folder.type, joined(folder.name, entry.name),
                     {Failure::Kind::unavailable,
                      base::tr("the sync program has not downloaded it yet")});
                break;
            case EntryRole::unreadable:
                skip(worker, folder.type, joined(folder.name, entry.name), whyUnreadable(entry));
                break;
            case EntryRole::passedOver: handlePassedOver(worker, folder, entry); break;
        }
    }

    void enterFolder(std::size_t worker, const Folder& above, const std::string& own) {
        std::string name = joined(above.name, own);
        if (_options.visitFolder) {
            _options.visitFolder(worker, above.type, name);
        }
        auto below = std::make_shared<Folder>(
            Folder{above.type, std::move(name), joined(above.path, own), {}});
        _queue.push({std::move(below), {}});
    }

    // What a link inside the data folder leads to is read where it lies; what lies outside is not
    // ours.
    static Failure whyUnreadable(const FolderEntry& entry) {
        if (entry.kind == Kind::link) {
            return {Failure::Kind::notAFile, base::tr("links are not followed")};
        }
        if (!base::isUtf8(entry.name)) {
            return {Failure::Kind::malformed, base::tr("its name is not UTF-8")};
        }
        return {Failure::Kind::notAFile, base::tr("not a regular file")};
    }

    void handlePassedOver(std::size_t worker, const Folder& folder, const FolderEntry& entry) {
        if (entry.kind == Kind::file && base::nameOfTemporary(entry.name)) {
            _reports[worker].temporaries.push_back(pathInData(folder, entry.name));
        } else if (entry.kind == Kind::link && isCoveredPath(entry.name)) {
            const auto kind = _files.kindOf(joined(folder.path, entry.name));
            if (kind && *kind == Kind::folder) {
                skip(worker, folder.type, joined(folder.name, entry.name), whyUnreadable(entry));
            }
        }
    }

    void readFiles(std::size_t worker, const Folder& folder, std::span<const FolderEntry> files) {
        if (files.empty()) {
            return;
        }
        std::string name = folder.name;
        if (!name.empty()) {
            name += '/';
        }
        const std::size_t prefix = name.size();
        const auto done = _files.readEach(folder.path, files, [&](const ports::FileRead& file) {
            name.resize(prefix);
            name += files[file.index].name;
            if (isCancelled()) {
                _reports[worker].cancelled = true;
            } else if (file.failure) {
                skip(worker, folder.type, name, *file.failure);
            } else {
                deliver(worker, {folder.type, name, file.bytes, *file.stamp});
            }
        });
        if (!done) {
            skip(worker, folder.type, folder.name, done.failure());
        }
    }

    void deliver(std::size_t worker, const NoteFile& file) {
        _visit(worker, file);
        ++_reports[worker].files;
        _reports[worker].bytes += file.bytes.size();
        const std::size_t read = ++_filesRead;
        if (worker == 0 && _options.progress && read >= _nextTelling) {
            _nextTelling = read + filesBetweenTellings;
            _options.progress(read);
        }
    }

    void skip(std::size_t worker, base::NoteType type, std::string_view name, Failure failure) {
        _reports[worker].skipped.push_back({pathInData(type, name), std::move(failure)});
    }

    static std::string pathInData(base::NoteType type, std::string_view name) {
        std::string path = joined(base::folderName(type), name);
        return base::isUtf8(path) ? path : base::toUtf8(base::toUtf16(path));
    }
    static std::string pathInData(const Folder& folder, std::string_view name) {
        return pathInData(folder.type, joined(folder.name, name));
    }

    bool isCancelled() const { return _options.cancelled && *_options.cancelled; }

    static std::string leadsOut() { return base::tr("leads out of the data folder"); }

    ports::FileSystem& _files;
    const NoteReader::Options& _options;
    const NoteReader::Visit& _visit;
    std::optional<std::string> _resolvedRoot;
    WorkQueue<Job> _queue;
    std::vector<ReadReport> _reports;  // by worker
    std::atomic<std::size_t> _filesRead = 0;
    std::size_t _nextTelling = filesBetweenTellings;  // worker 0's
};

}  // namespace

NoteReader::NoteReader(const DataStore& store, base::Executor& executor)
    : _store(store), _executor(executor) {}

std::size_t NoteReader::workers() const {
    return _executor.width() + 1;
}

ReadReport NoteReader::readAll(const Options& options, const Visit& visit) {
    Walk walk(_store, options, visit, workers());
    base::parallelFor(_executor, workers(), [&](std::size_t worker) { walk.work(worker); });
    return walk.report();
}

}  // namespace tessaly::store
