// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/executor.h"
#include "base/failure.h"
#include "base/note_type.h"
#include "ports/file_system.h"
#include "store/data_store.h"
#include "store/foreign_names.h"
#include "store/note_index.h"

namespace tessaly::store {

/// A note file as it was read; all of it is valid during the call only.
struct NoteFile {
    base::NoteType type;
    std::string_view filename;  ///< relative to the kind's folder
    std::string_view bytes;     ///< as on disk
    const ports::FileStamp& stamp;
    /// What the start-up index keeps of it, instead of `bytes`, which then are none; given only
    /// where that is wanted.
    std::optional<std::string_view> record = std::nullopt;
};

/// A file or folder that was passed over, and why, in words for the user.
struct SkippedFile {
    std::string path;  ///< relative to the data folder
    base::Failure failure;
};

/// A version of a note that a sync client has set aside under a name of its own.
struct ConflictCopy {
    std::string path;      ///< relative to the data folder
    std::string original;  ///< of the note in the same folder that it is a version of, likewise;
                           ///< this may be missing
    std::string device;    ///< may be empty
    DeviceOf deviceOf;
    std::string_view client;
};

/// What a reading of many notes came to.
struct ReadReport {
    std::size_t files = 0;      ///< read
    std::size_t fromIndex = 0;  ///< of these, how many the start-up index knew
    std::uint64_t bytes = 0;
    std::vector<SkippedFile> skipped;          ///< by path
    std::vector<ConflictCopy> conflictCopies;  ///< by path
    /// Temporary files of ours, relative to the data folder, by path: of a change that was
    /// interrupted, or that some process makes at this moment.
    std::vector<std::string> temporaries;
    bool cancelled = false;
};

/// Reads all notes of some kinds, on all threads of an executor and the calling one. Files are
/// delivered in no order, each to one of `workers()` callers that may run at the same time.
class NoteReader {
public:
    /// `worker` is below `workers()`; two calls with the same worker never overlap, so each worker
    /// may fill a collection of its own without a lock.
    using Visit = std::function<void(std::size_t worker, const NoteFile& file)>;
    /// Told now and then how many files have been read so far, on worker 0's thread.
    using Progress = std::function<void(std::size_t files)>;
    /// A folder of notes, relative to the kind's folder, without a slash at its end.
    using VisitFolder =
        std::function<void(std::size_t worker, base::NoteType type, std::string_view folder)>;

    /// With an index, files that it knows are only looked at, and not opened.
    NoteReader(const DataStore& store, base::Executor& executor,
               std::shared_ptr<const NoteIndex> index = nullptr);

    std::size_t workers() const;

    /// What is to be known of a note: its text, or what `DayTasks` takes of it, which may be had
    /// without its text.
    enum class Wanted { text, dayTasks };
    /// What becomes of the index's pages whose notes have been delivered: who stays gives them back
    /// as it goes, for who is done then that is not worth the time.
    enum class SeenPages { givenBack, kept };

    struct Options {
        std::vector<base::NoteType> types{base::NoteType::calendar, base::NoteType::note};
        Wanted wanted = Wanted::text;
        SeenPages seenPages = SeenPages::givenBack;
        VisitFolder visitFolder;                       ///< sub-folders of the kinds; may be empty
        Progress progress;                             ///< may be empty
        const std::atomic<bool>* cancelled = nullptr;  ///< asked between files
    };

    /// Names that begin with "." or are "_attachments" are passed over without a word; of files,
    /// those that are notes by name are read. What cannot be read, what is no regular file but
    /// named like a note (a link, too), links to folders, names that are not UTF-8, and
    /// placeholders of notes that a sync client has not downloaded are in the report.
    ///
    /// A conflict copy whose original is a note in the same folder is not delivered but reported;
    /// without its original it is a note like any other, or, where its own name is no note's, is
    /// reported all the same. A kind whose folder is not there has no
    /// notes. A calendar note in a sub-folder, or with a name that is no day, is delivered all the
    /// same.
    ReadReport readAll(const Options& options, const Visit& visit);

private:
    const DataStore& _store;
    base::Executor& _executor;
    const std::shared_ptr<const NoteIndex> _index;
};

}  // namespace tessaly::store
