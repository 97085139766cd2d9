// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "app/note_address.h"

namespace tessaly::app {

/// "NOTE:LINE", taken apart but not looked up.
struct TaskName {
    std::string_view note;
    std::string_view line;  ///< its digits; empty: the note alone is named
};

/// Text that does not end in a colon and a number names the note alone.
TaskName readTaskName(std::string_view text);

/// A line of a note that a user named, or the note alone.
struct TaskAddress {
    NoteAddress note;
    std::optional<std::size_t> lineIndex;  ///< from 0
};

/// Looks lines up that one user named at once; no note is looked for twice. One thread.
class TaskFinder {
public:
    /// `services` outlives this object; `options` are for the look-up of titles.
    TaskFinder(Services& services, store::NoteReader::Options options);

    /// The line called `text`: "NOTE:LINE", NOTE as `findNote` takes it and LINE from 1. Failure:
    /// `findNote`'s; `malformed`, in words for the user, for line 0, numbers of more than nine
    /// digits and, behind a note's name, what is no number.
    base::Result<TaskAddress> find(std::string_view text);

private:
    const base::Result<NoteAddress>& noteCalled(std::string_view text);
    bool isLineMiswritten(std::string_view text);

    Services& _services;
    const store::NoteReader::Options _options;
    std::map<std::string, base::Result<NoteAddress>, std::less<>> _notes;
};

}  // namespace tessaly::app
