// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "grammar/line_scanner.h"

namespace tessaly::store {

/// A task line that has to do with days: any of a calendar note, in another one with a schedule
/// tag.
struct DayTaskLine {
    std::string_view text;    ///< as `grammar::ScannedLine::text`
    std::uint32_t index = 0;  ///< from 0
    grammar::LineClass line;
    std::optional<base::Day> scheduledTo;
};

/// Those of one note. To be filled for one note after the other, which saves allocations.
struct DayTaskLines {
    std::optional<base::Day> noteDay;
    std::string title;
    std::vector<DayTaskLine> lines;  ///< in order; their texts lie in what they were read from
};

/// The day of a calendar note; nothing of another one, and where its name is no day.
std::optional<base::Day> dayOfNote(base::NoteType type, std::string_view filename);

/// Reads the bytes of a note's file; one that is not UTF-8 has no lines.
void scanDayTasks(base::NoteType type, std::string_view filename, std::string_view bytes,
                  const grammar::MarkerSettings& settings, grammar::NoteScanner& scanner,
                  DayTaskLines& found);

/// Title and lines of a note in few bytes, empty when it has no lines.
std::string recordOfDayTasks(const DayTaskLines& lines);

/// The reverse, for a note of the day `found.noteDay`. False: that is no record of such a note, and
/// `found` holds anything.
bool readDayTasks(std::string_view record, DayTaskLines& found);

}  // namespace tessaly::store
