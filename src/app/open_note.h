// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/note_address.h"
#include "app/services.h"
#include "base/failure.h"

namespace tessaly::app {

/// The note that is open in an editor: saves what the user types, and joins into the open text what
/// others write meanwhile. Of the texts, `text` is the editor's; the file's is asked for anew
/// before each save, and is only replaced while it is what was read. All texts are note contents:
/// UTF-8 without a byte-order mark, with the file's own line ends. Main thread; the disk is
/// waited for on a queue of its own, but for the first reading, `saveNow`, `keepCopy` and the end.
///
/// Nothing that was typed, and nothing that others wrote, is ever in none of these: the editor, the
/// file, the history.
class OpenNote {
public:
    enum class SaveState {
        saved,    ///< the file holds the editor's text
        unsaved,  ///< there is something that will be saved
        failed    ///< the last trial failed; it is tried again
    };
    /// All on the main thread, none from within the constructor. They may destroy the open note.
    struct Handlers {
        /// The editor's text as it is now. Never empty.
        std::function<std::string()> currentText;
        /// The editor is to show this text: what it holds with what others wrote. What the editor
        /// tells by `edited` meanwhile is not taken for the user's, but what it holds beyond this
        /// text afterwards is, and will be saved.
        std::function<void(const std::string& text)> onMerged;
        /// Also when it fails for another reason than before.
        std::function<void(SaveState state)> onSaveState;
        /// The file is gone, and nothing that the user typed is unsaved. Typing makes it again.
        std::function<void()> onGone;
    };
    /// Reads the note at once. `services` outlives it.
    OpenNote(Services& services, NoteAddress address, Handlers handlers);
    /// Does not save (see `saveNow`), but waits for a save that runs.
    ~OpenNote();
    OpenNote(const OpenNote&) = delete;
    OpenNote& operator=(const OpenNote&) = delete;

    const NoteAddress& address() const;
    /// What the file held when it was read last, or was joined with; of one that is gone, what it
    /// held; empty when there never was one.
    const std::string& text() const;
    bool exists() const;
    /// Why the note cannot be edited, in words for the user: it could not be read, is not UTF-8, or
    /// a sync client has not downloaded it. Nothing: it can. Where `reread` finds that it can be
    /// read by now, the editor is given its text by `onMerged`.
    const std::optional<base::Failure>& obstacle() const;

    SaveState saveState() const;
    /// Why the last trial failed, in words for the user. Logged as "Could not make a filename or
    /// write a note ", once for a row of trials that fail alike.
    const std::optional<base::Failure>& saveFailure() const;

    /// The user has changed the text; to be called before anything else is. It is saved when typing
    /// pauses for `pause`, and while it goes on, `longestUnsaved` after the first change that is
    /// not on the disk; not more often than each `longestUnsaved`.
    void edited();
    static constexpr std::chrono::milliseconds pause{300};
    static constexpr std::chrono::milliseconds longestUnsaved{800};
    static constexpr std::chrono::seconds retryInterval{5};

    /// Saves what is not saved yet and waits for it: before the note is left, the program ends, or
    /// an operation works on the file. Failure: as `saveFailure`; the text is in no file then.
    base::Result<base::Done> saveNow();
    /// Somebody may have written the file: reads it and joins.
    void reread();
    /// Keeps the editor's text outside the data folder, for the user who quits though it cannot be
    /// saved. Returns the path of the copy.
    base::Result<std::string> keepCopy();

private:
    class State;
    std::shared_ptr<State> _state;
};

}  // namespace tessaly::app
