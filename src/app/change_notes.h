// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "app/note_address.h"
#include "app/services.h"
#include "base/failure.h"
#include "base/write_mode.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// What became of a note.
enum class NoteChange {
    created,
    added,        ///< text was added to it
    overwritten,  ///< it holds the text alone
    unchanged,    ///< it is as it was wanted already
    restored,     ///< it holds an earlier text again
    trashed,      ///< it lies in the desktop's trash
    removed,      ///< there was no trash; its text is in the history
};

struct ChangedNote {
    NoteChange change = NoteChange::unchanged;
    NoteAddress note;
    std::string path;       ///< of the file, absolute
    std::string historyId;  ///< of a note that was removed: what the history knows its text by
};

/// Text that was given to us, as a note may hold it: without a byte-order mark. Failure, in words
/// for the user: it is not UTF-8 or holds NUL.
base::Result<std::string> acceptedText(std::string_view text);

/// A general note to be made.
struct NoteRequest {
    std::string title;   ///< line breaks become blanks; without one the text's first line counts
    std::string folder;  ///< of general notes, also with "Notes/" before it; empty: the topmost
    std::string text;    ///< stands below the title
};

/// Makes a general note whose first line is "# TITLE" (a title that begins with "#" stays as it
/// is), under a file name of its own. Failure, in words for the user.
base::Result<ChangedNote> newNote(Services& services, const NoteRequest& request);

struct AddRequest {
    std::string note;  ///< as `findNote` takes it
    std::string text;
    base::WriteMode mode = base::WriteMode::append;
};

/// Adds text to a note. That of a day is made when it is not there. Failure, in words for the user;
/// `findNote`'s, too.
base::Result<ChangedNote> addText(Services& services, const AddRequest& request,
                                  store::NoteReader::Options options = {});

/// Moves a note to the trash or, when there is none, into the history alone. Failure, in words for
/// the user; `findNote`'s, too.
base::Result<ChangedNote> trashNote(Services& services, std::string_view note,
                                    store::NoteReader::Options options = {});

/// In words for the user: there is no note of that day, or no file of that name.
base::Failure noNoteThere(const NoteAddress& note);

/// "Notes/Work/Plans.txt": how a note is named to the user.
std::string pathInDataFolder(const NoteAddress& note);

}  // namespace tessaly::app
