// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/day.h"
#include "base/failure.h"
#include "ports/file_system.h"
#include "tasks/task_outcome.h"

namespace tessaly::tasks {

/// The day that a note belongs to; nothing for one that is no day's.
std::optional<base::Day> dayOf(const NoteName& note);
NoteName calendarNote(base::Day day);

/// The lines of a text without a byte-order mark, without "\n" and without a "\r" at their ends.
/// What stands behind the last line break is a line unless it is empty.
std::vector<std::string> linesOf(std::string_view text);

/// The notes of a data folder as they are when they are first asked for. One thread.
class NoteTexts {
public:
    NoteTexts(ports::FileSystem& files, const std::string& root) : _files(files), _root(root) {}

    using Lines = std::vector<std::string>;

    /// The lines of a note. Failure, in words for the user: it is not there, or cannot be read.
    const base::Result<Lines>& lines(const NoteName& note);

    /// As above, but a note that is not there has no lines.
    const base::Result<Lines>& linesIfAny(const NoteName& note);

    /// The days that have a note, in order.
    const std::vector<base::Day>& days();

    /// Logs what went wrong so far: "couldn't create the url", "file does not exist", "Could not
    /// read and write into the note: ", each once for a note.
    void logTroubles() const;

private:
    base::Result<Lines> read(const NoteName& note, const std::string& path);
    const base::Result<Lines>& known(const NoteName& note);

    ports::FileSystem& _files;
    const std::string& _root;
    std::map<NoteName, base::Result<Lines>> _notes;
    std::optional<std::vector<base::Day>> _days;
    std::map<NoteName, std::pair<std::string_view, std::string>> _troubles;  // text and subject
};

}  // namespace tessaly::tasks
