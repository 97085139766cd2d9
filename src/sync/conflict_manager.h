// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/failure.h"
#include "base/locale_formats.h"
#include "ports/clock.h"
#include "ports/file_version.h"
#include "sync/file_versions.h"

namespace tessaly::sync {

/// What the bar above the editor says of the version that is shown.
struct ConflictBar {
    std::string showOtherVersionTitle;  ///< "2/3": its place from 1, and how many there are
    /// "Modified Mar 5, 2019, 2:07:33 PM on:", in the user's words.
    std::string modificationDate;
    std::string deviceName;  ///< may be empty
};

/// Told what to show; the editor is one. On the thread that called the manager.
class ConflictManagerDelegate {
public:
    virtual ~ConflictManagerDelegate() = default;
    /// `text`: the version's bytes, as on disk, or why they could not be read.
    virtual void showVersion(const ConflictBar& bar, const base::Result<std::string>& text) = 0;
    virtual void hideConflictBar() = 0;
};

/// Goes through the versions of one note that is in conflict, and resolves the conflict by keeping
/// one of them, or what is made of all.
///
/// What is kept and what is removed is what was read when the conflict was looked at. If the note
/// holds something else by then, or if it or the version that is to be kept could not be read,
/// nothing is changed. A copy that holds something else by then, or could not be read, stays, and
/// is in conflict still. What goes is in the history. When resolving is cut off in the middle, it
/// can be done again. Blocks for the disk. One thread.
class ConflictManager {
public:
    /// All outlive the manager.
    struct Tools {
        FileVersions& versions;
        const base::LocaleFormats& formats;
        ports::Clock& clock;  ///< for the user's zone
    };

    explicit ConflictManager(Tools tools) : _tools(tools) {}

    /// The delegate outlives the manager, or is taken away; null: none.
    void setDelegate(ConflictManagerDelegate* delegate) { _delegate = delegate; }

    /// The note whose conflicts are looked at; nothing: none. Absolute path. Checks nothing, but
    /// forgets what was found for the note before.
    void setSelectedNoteUrl(std::optional<std::string> url);
    const std::optional<std::string>& selectedNoteUrl() const { return _selectedNoteUrl; }

    /// The current version first, then each conflict copy; empty without a conflict. Of a note that
    /// is gone under its own name there are only copies: then the first has `isConflict`.
    const std::vector<ports::FileVersion>& conflictedNotes() const { return _conflictedNotes; }
    int conflictedVersionSelectionIndex() const { return _conflictedVersionSelectionIndex; }

    /// Looks for versions of the selected note. Logs "checking for conflicts again". With none (or
    /// no selected note) the list becomes empty, the index 0, and the delegate hides the bar. Else
    /// the bar is shown for index 0. A failure counts as none and is logged as "error while
    /// resolving conflicts " and its description.
    void checkForConflicts();

    /// Shows the selected version to the delegate; nothing when there is no conflict or the index
    /// is outside the list. Logs "update version selection isconflict: true" or "false".
    void updateVersionSelection(bool isConflict);

    /// The next version; behind the last one the first again.
    void showOtherVersion();

    /// Keeps the version that is shown. Logs "Resolving current version" or "Resolving other
    /// version"; each failure as "error while resolving conflicts " and its description. Conflicts
    /// are looked for again afterwards. True: nothing failed, and none is left. Where none was
    /// found before, it only looks.
    bool chooseThisVersion();

    /// Puts `text` in the place of all versions that could be read. Logs as choosing another
    /// version does.
    bool chooseText(std::string_view text);

    /// The bytes that a version held when the conflict was looked at, by its place in
    /// `conflictedNotes`, or why they could not be read.
    const base::Result<std::string>& textOf(std::size_t index) const { return _texts[index]; }

private:
    bool look();
    base::Result<ItemVersions> versionsOfSelected() const;
    ConflictBar bar() const;
    bool resolve(std::string_view text);
    bool replaceCurrent(std::string_view text);
    bool removeOthers();

    const Tools _tools;
    int _conflictedVersionSelectionIndex = 0;
    std::optional<std::string> _selectedNoteUrl;
    std::vector<ports::FileVersion> _conflictedNotes;
    ConflictManagerDelegate* _delegate = nullptr;
    std::vector<base::Result<std::string>> _texts;  ///< of `_conflictedNotes`
};

}  // namespace tessaly::sync
