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
#include "store/folder_listing.h"
#include "store/note_delivery.h"
#include "store/paths.h"
#include "store/work_queue.h"

namespace tessaly::store {
namespace {

using base::Failure;
using ports::FolderEntry;
using Kind = FolderEntry::Kind;

// So few that two threads end at about the same time, so many that a folder is opened seldom.
constexpr std::size_t chunkFiles = 32;

/// A folder to be listed; once it is, `listing` holds its notes.
struct Folder : NoteFolder {
    FolderListing listing = {};
};

/// Part of a folder's notes, or, without any, a folder to be listed.
struct Job {
    std::shared_ptr<Folder> folder;
    std::span<const KnownNote> known = {};
    std::span<const FolderEntry> files = {};
};

/// One reading of all notes, shared by its workers.
class Walk {
public:
    Walk(const DataStore& store, const NoteIndex* index, const NoteReader::Options& options,
         const NoteReader::Visit& visit, std::size_t workers)
        : _files(store.files()),
          _index(index),
          _options(options),
          _delivery(_files, index, options, visit, workers) {
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
            if (_delivery.isCancelled(worker)) {
                return;
            }
            if (job.files.empty() && job.known.empty()) {
                listFolder(worker, job.folder);
            } else {
                _delivery.takeKnown(worker, *job.folder, job.known);
                _delivery.readFiles(worker, *job.folder, job.files);
            }
        });
    }

    ReadReport report() { return _delivery.wholeReport(); }

private:
    void addKind(base::NoteType type, const std::string& path) {
        auto resolved = _files.resolve(path);
        if (!resolved) {
            if (resolved.failure().kind != Failure::Kind::notFound) {
                _delivery.skip(0, type, {}, resolved.failure());
            }
        } else if (!_resolvedRoot || !isInside(*resolved, *_resolvedRoot)) {
            _delivery.skip(0, type, {}, {Failure::Kind::outside, leadsOut()});
        } else {
            _queue.push(
                {std::make_shared<Folder>(Folder{{type, {}, std::move(resolved).value()}})});
        }
    }

    void listFolder(std::size_t worker, const std::shared_ptr<Folder>& folder) {
        auto listing = listNotes(_files, *folder, _index);
        if (!listing) {
            _delivery.skip(worker, folder->type, folder->name, listing.failure());
            return;
        }
        folder->listing = std::move(listing).value();
        auto& copies = folder->listing.conflictCopies;
        std::move(copies.begin(), copies.end(),
                  std::back_inserter(_delivery.report(worker).conflictCopies));
        for (const FolderEntry& entry : folder->listing.others) {
            handleOther(worker, *folder, entry);
        }
        const auto known = handOut<KnownNote>(folder, folder->listing.known, &Job::known);
        const auto files = handOut<FolderEntry>(folder, folder->listing.notes, &Job::files);
        _delivery.takeKnown(worker, *folder, known);
        _delivery.readFiles(worker, *folder, files);
    }

    // Makes jobs of all but the first notes, which are returned.
    template <class Note>
    std::span<const Note> handOut(const std::shared_ptr<Folder>& folder,
                                  std::span<const Note> notes, std::span<const Note> Job::*part) {
        while (notes.size() > chunkFiles) {
            Job job{folder};
            job.*part = notes.last(chunkFiles);
            _queue.push(std::move(job));
            notes = notes.first(notes.size() - chunkFiles);
        }
        return notes;
    }

    void handleOther(std::size_t worker, const Folder& folder, const FolderEntry& entry) {
        switch (entryRole(entry)) {
            case EntryRole::note: break;
            case EntryRole::folder: enterFolder(worker, folder, entry.name); break;
            case EntryRole::placeholder:
                _delivery.skip(worker, folder.type, joined(folder.name, entry.name),
                               {Failure::Kind::unavailable,
                                base::tr("the sync program has not downloaded it yet")});
                break;
            case EntryRole::unreadable:
                _delivery.skip(worker, folder.type, joined(folder.name, entry.name),
                               whyUnreadable(entry));
                break;
            case EntryRole::passedOver: handlePassedOver(worker, folder, entry); break;
        }
    }

    void enterFolder(std::size_t worker, const Folder& above, const std::string& own) {
        std::string name = joined(above.name, own);
        if (_options.visitFolder) {
            _options.visitFolder(worker, above.type, name);
        }
        _queue.push({std::make_shared<Folder>(
            Folder{{above.type, std::move(name), joined(above.path, own)}})});
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
            _delivery.report(worker).temporaries.push_back(
                pathInData(folder.type, joined(folder.name, entry.name)));
        } else if (entry.kind == Kind::link && isCoveredPath(entry.name)) {
            const auto kind = _files.kindOf(joined(folder.path, entry.name));
            if (kind && *kind == Kind::folder) {
                _delivery.skip(worker, folder.type, joined(folder.name, entry.name),
                               whyUnreadable(entry));
            }
        }
    }

    static std::string leadsOut() { return base::tr("leads out of the data folder"); }

    ports::FileSystem& _files;
    const NoteIndex* const _index;
    const NoteReader::Options& _options;
    NoteDelivery _delivery;
    std::optional<std::string> _resolvedRoot;
    WorkQueue<Job> _queue;
};

}  // namespace

NoteReader::NoteReader(const DataStore& store, base::Executor& executor,
                       std::shared_ptr<const NoteIndex> index)
    : _store(store), _executor(executor), _index(std::move(index)) {}

std::size_t NoteReader::workers() const {
    return _executor.width() + 1;
}

ReadReport NoteReader::readAll(const Options& options, const Visit& visit) {
    Walk walk(_store, _index.get(), options, visit, workers());
    base::parallelFor(_executor, workers(), [&](std::size_t worker) { walk.work(worker); });
    return walk.report();
}

}  // namespace tessaly::store
