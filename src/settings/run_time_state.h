// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"

namespace tessaly::settings {

/// A view that is shown again when the window comes back.
enum class RestoreView { calendar, notes, editor, sidebar, weekview };

/// What many parts of the running program look at, and none of them stores. Main thread only.
struct RunTimeState {
    /// A note by its file name and kind.
    using NoteReference = std::pair<std::string, base::NoteType>;

    int maxRecents = 20;  ///< notes in the list of recent ones
    bool isSearching = false;
    bool isEditingText = false;
    bool needsLightStatusBar = false;
    bool isEventsListExpanded = false;
    bool launchedBefore = false;
    std::optional<NoteReference> backwardNote;  ///< where "back" leads; nothing: nowhere
    std::optional<NoteReference> forwardNote;   ///< where "forward" leads; nothing: nowhere
    std::vector<RestoreView> restoreViews;
    std::string currentNoteTitle;
    std::string currentNoteUrl;
    base::Day selectedDate{};
    std::function<void(base::Day)> selectedDateChanged;  ///< told by `selectDate`; may be empty
    std::string locale;                                  ///< ICU name
    std::string editorTheme;

    void selectDate(base::Day day) {
        selectedDate = day;
        if (selectedDateChanged) {
            selectedDateChanged(day);
        }
    }
};

}  // namespace tessaly::settings
