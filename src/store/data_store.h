// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/executor.h"
#include "base/failure.h"
#include "base/note_type.h"
#include "base/serial_queue.h"
#include "base/text_range.h"
#include "base/write_mode.h"
#include "ports/clock.h"
#include "ports/cloud_container.h"
#include "ports/file_changes.h"
#include "ports/file_system.h"
#include "ports/standard_folders.h"
#include "ports/trash.h"
#include "store/note_names.h"
#include "store/safe_files.h"
#include "store/taken_names.h"

namespace tessaly::store {

/// A note to be written.
struct NewNote {
    base::NoteType type = base::NoteType::note;
    std::string text;
    std::optional<base::Day> day;  ///< of a calendar note
    std::string folder;            ///< of a general note, relative to its kind's; empty: that one
    std::string title;             ///< gives a general note its name; empty: the text's first line
    StripListMarkers strip = StripListMarkers::no;
};

/// Where a note that was trashed has gone.
enum class Trashed { toSystemTrash, toHistory };
/// Whether a note that is deleted lies in the data folder's own trash.
enum class FromTrash { no, yes };

struct MoveOptions {
    std::function<void(std::size_t files)> progress;  ///< told after each file; may be empty
    const std::atomic<bool>* cancelled = nullptr;     ///< asked before each file
};

/// What moving a data folder came to. Paths are relative to the data folder.
struct MoveReport {
    struct Renamed {
        std::string from;
        std::string to;
    };
    struct Failed {
        std::string path;
        base::Failure failure;
    };
    std::size_t moved = 0;         ///< those that were there already included
    std::vector<Renamed> renamed;  ///< of those moved: whose name was taken
    std::vector<Failed> failed;    ///< still where they were
    bool cancelled = false;
};

/// The single owner of the data folder: where it lies, what is in it, how files are called. The
/// root is chosen anew on each look-up, so linking Dropbox or losing the cloud drive shows at once.
///
/// Any thread, main included. Look-ups (the const operations) hold no state and take no turn: they
/// tell what is so at that moment. What changes files takes turns on a serial queue, each operation
/// with the root that was in use when it began, and blocks its caller for as long as the disk does.
/// `completion` and `progress` are called by the calling thread when it has left the queue.
class DataStore {
public:
    /// What the choice of root depends on. `dataFolder` names the data folder outright and goes
    /// before all else.
    struct Roots {
        ports::StandardFolders folders;
        std::string bundleIdentifier;
        ports::DropboxAuthorised dropboxAuthorised;
        ports::CloudContainer cloudContainer;
        std::optional<std::string> dataFolder;
    };

    /// What its work is done with; all of it outlives the store.
    struct Tools {
        ports::FileSystem& files;
        ports::FileChanges& changes;
        SafeFiles& safeFiles;
        ports::Trash trash;
        ports::Clock& clock;
        base::Executor& executor;
    };

    DataStore(Tools tools, Roots roots);

    /// CONTAINER/Documents. Nothing while a Dropbox account is linked (the container is then not
    /// even asked for), or without a container.
    std::optional<std::string> cloudRoot() const;
    /// The folder named after the bundle identifier in the user's data folder.
    std::string localRoot() const;
    /// The data folder in use: the one that was named outright, else the cloud root, else the
    /// local one.
    std::string root() const;

    /// The folder of a kind under each root; the cloud one is absent with the cloud root. The kind
    /// `none` has no folder of its own and names the root.
    std::optional<std::string> cloudFolder(base::NoteType type) const;
    std::string localFolder(base::NoteType type) const;
    std::string folder(base::NoteType type) const;

    /// Whether the local data folder is there. A failure other than its absence is logged as
    /// "error in localFolderExists(): " and answers no.
    bool localFolderExists() const;

    /// Makes a folder with those above it unless something is at its path already. Failure: logged
    /// as "Error createFolderIfNonExisting: ", and nothing was made.
    bool createFolderIfNonExisting(const std::string& folder);

    /// A base name that no entry of `folder` has with `extension`: `base` itself, else "base 2",
    /// "base 3" …, cut where that would not fit a file name. Names collide when they are the same
    /// in composed form after case folding; a file that a sync client has not downloaded has its
    /// name. When the folder cannot be listed: logs "error in
    /// uniqueFilename(): " and returns `base`; a folder that is not there has no entries.
    std::string uniqueFilename(const std::string& base, std::string_view extension,
                               const std::string& folder) const;

    /// The path of a file by its kind and its name relative to the kind's folder. The name may come
    /// from outside: one with "..", an absolute one, one that is empty or holds NUL, and one that a
    /// link leads out of the data folder, are refused with `outside`. The file need not exist.
    base::Result<std::string> pathOf(base::NoteType type, std::string_view filename) const;

    /// Writes a note whose name is given, making its folder. Failures: `exists`: there is one, and
    /// it is untouched; `unavailable`: a sync client has one, but has not downloaded it. A folder
    /// that was made is logged ("Created directories: "); failures are logged
    /// ("could not create a local folder for saving the notes (very first note?), error " or "Could
    /// not make a filename or write a note ") and returned.
    base::Result<base::Done> createNote(base::NoteType type, std::string_view filename,
                                        std::string_view text);

    /// Writes a new note under a name of its own and returns that, relative to its kind's folder. A
    /// calendar note has its day's name (`exists` when there is one); a general note that of its
    /// title, made unique, or one of the present time when no name is left of the title. When
    /// another program takes that name meanwhile, it gets the next; with a folder that cannot be
    /// listed, that is a failure. Logs as `createNote`. The root in use is the cloud drive's
    /// already where there is one; only a note that was written to the local folder while the cloud
    /// drive came is pushed there, and stays where it is when that fails.
    base::Result<std::string> writeNewNote(const NewNote& note);

    /// Moves a note's file to the system's trash; where that fails, removes it, its bytes being in
    /// the history. Logs "Deleted: ", with `deleteNote` also ", fromTrash: true" or "false"; a
    /// trial that failed as "Failed to trash note in first trial " and "Failed to trash note in
    /// second trial ". No file: nothing is done (`notFound` is returned and nothing logged), as for
    /// a refused name.
    base::Result<Trashed> trashNote(base::NoteType type, std::string_view filename);
    base::Result<Trashed> deleteNote(base::NoteType type, std::string_view filename,
                                     FromTrash fromTrash);

    /// Moves one file from the local folder of its kind to the cloud drive's, under the same
    /// relative path; when that is taken, under a unique name with the same extension (a second
    /// calendar note becomes a stray of its day). A file that is there already with the same bytes
    /// is not doubled: the local one is removed, its bytes in the history. Returns the name that it
    /// has there, relative to the kind's folder. Moves under both folders' locks, removes under the
    /// local one's. Failures are logged: "Could not create the iCloud Drive directories" or
    /// "Could not push file from local to iCloud Drive, error = ".
    base::Result<std::string> pushToCloudDrive(base::NoteType type, std::string_view filename);

    /// Moves everything in the local data folder to the cloud drive, as `pushToCloudDrive` does,
    /// and the folders that are empty then, whatever they are called; each file takes a turn of its
    /// own. Temporary files of ours, links and what else is no file stay, and are reported as
    /// failed without a log line. Interrupted and called again, it goes on where it was. A local
    /// folder that cannot be listed, no cloud drive, and one that lies within the local folder are
    /// logged: "Failed to move all files to cloud: ", and reported with the path that they are
    /// about, empty for the data folder.
    MoveReport moveAllToCloudDrive(const MoveOptions& options = {});

    /// Adds text to a note (see `withTextAdded`); a note that is not there is written new, with the
    /// text alone, unless that is empty. Calls `completion` after the save, on the calling thread,
    /// outside the queue, also when there was nothing to change. True: the note's bytes changed.
    /// Failures are logged as `createNote` does: "Content empty" (`malformed`) for a note that is
    /// not UTF-8, which stays as it is; `unavailable`: a sync client has not downloaded the note,
    /// or another program keeps changing it; those of the disk.
    base::Result<bool> addText(std::string_view text, base::NoteType type,
                               std::string_view filename, base::WriteMode mode,
                               const std::function<void()>& completion = {});

    /// Removes a range of the text that `content` of a `NoteDocument` is; see `withoutRange`. Any
    /// failure is logged: "Failed to delete range: '{12, 30}' in 20190305.txt. Error = …".
    base::Result<base::Done> deleteRange(base::NoteType type, std::string_view filename,
                                         base::TextRange range,
                                         const std::optional<std::string>& expected = std::nullopt);

    /// Moves the text of a stray calendar file, of the root in use, to the end of its day's note
    /// and removes the file if it still holds that text; when the day has no note, the file is
    /// renamed. A text that stands in the note already, since an earlier merge was interrupted, is
    /// not added again. Returns the day. `malformed`, not logged: the name is no stray's. Logs
    /// "seems its possible to merge it and it belongs to: ", "could not delete the extra note: "
    /// and "Could not merge disconnected calendar notes: ".
    base::Result<base::Day> mergeDisconnectedCalendarNote(std::string_view filename);

    ports::FileSystem& files() const { return _tools.files; }
    const std::string& bundleIdentifier() const { return _roots.bundleIdentifier; }

private:
    base::Result<std::string> pathIn(const std::string& rootFolder, base::NoteType type,
                                     std::string_view filename) const;
    std::optional<TakenNames> listForUniqueName(const std::string& folder) const;

    // Within a turn on the queue.
    base::Result<base::Done> createIn(const std::string& rootFolder, base::NoteType type,
                                      std::string_view filename, std::string_view text);
    base::Result<std::string> writeCalendarNote(const std::string& rootFolder, const NewNote& note);
    base::Result<std::string> writeGeneralNote(const std::string& rootFolder, const NewNote& note);

    base::Result<Trashed> discard(base::NoteType type, std::string_view filename,
                                  std::string_view suffix);

    Tools _tools;
    const Roots _roots;
    base::SerialQueue _files;  ///< ".DataStore.files": one file operation at a time
};

}  // namespace tessaly::store
