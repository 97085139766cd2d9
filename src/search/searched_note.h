// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "base/day.h"
#include "base/note_type.h"
#include "search/task_places.h"

namespace tessaly::search {

/// A note as it is searched; all of it lives as long as the note.
struct SearchedNote {
    base::NoteType type = base::NoteType::none;
    std::string_view filename;  ///< relative to its kind's folder
    std::string_view title;     ///< as lists show it
    std::string_view foldedTitle;
    std::string_view foldedFolder;  ///< "Notes/work": as `isInFolder` takes it
    std::optional<base::Day> day;   ///< of a calendar note
    base::Day changedDay{};         ///< the local day of its last change
    std::string_view text;          ///< without a byte-order mark
    std::string_view foldedText;    ///< `folded(text)`, or `text` itself where it needs no folding
    std::span<const TaskPlace> tasks;
};

}  // namespace tessaly::search
