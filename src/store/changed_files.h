// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/executor.h"
#include "base/note_type.h"
#include "base/shared_text.h"
#include "ports/file_system.h"
#include "store/cached_notes.h"
#include "store/named_notes.h"

namespace tessaly::store {

/// What is held at a name: one of these, or nothing.
struct HeldNote {
    GeneralNotes::Pointer general;  ///< a note or a folder
    CalendarNotes::Pointer day;
    const StrayNote* stray = nullptr;

    bool isFolder() const { return general && general->note.isFolder; }
    /// Of the file that was read; nothing: none was.
    std::optional<ports::FileStamp> stamp() const;
    base::SharedText content() const;
};
/// Asked by several threads at a time.
using HeldNoteOf = std::function<HeldNote(base::NoteType type, std::string_view filename)>;

/// What was found at a name.
struct FoundNote {
    enum class What {
        nothing,  ///< looked, and there is none
        unknown,  ///< could not be looked at or read; what is held stays
        noNote,   ///< a placeholder, or a file that is not a note
        folder,
        sameNote,  ///< in the state that is held
        note,
    };
    NamedNote name;
    HeldNote held;
    What what = What::unknown;
    ports::FileStamp stamp;
    base::SharedText content;  ///< of a `note`; shares that which is held when it is the same
};

/// What is cheaper: to read what is named like a note at once, since it has changed, or to look
/// first, since most has not.
enum class Expected { changed, unchanged };

/// Looks at the files and folders named, and reads those in another state than the one that is
/// held, a folder's together, on all threads. The answer is in the order of `names`, which are by
/// kind and file name, none twice. `root` is resolved. Folders that a link leads to are not
/// entered.
std::vector<FoundNote> lookAtNotes(ports::FileSystem& files, base::Executor& executor,
                                   const std::string& root, std::vector<NamedNote> names,
                                   Expected expected, const HeldNoteOf& heldNoteOf);

}  // namespace tessaly::store
