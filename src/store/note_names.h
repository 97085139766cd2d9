// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/day.h"
#include "grammar/calendar_day.h"

namespace tessaly::store {

/// The extension that new notes get, without its dot.
inline constexpr std::string_view noteExtension = "txt";
/// The longest file name in bytes that Linux file systems take.
inline constexpr std::size_t maxFilenameBytes = 255;

/// Whether list markers and boxes are taken out of a title: for a title from a task or list line.
enum class StripListMarkers { no, yes };

/// "yyyyMMdd.txt".
std::string calendarFilename(base::Day day);

using grammar::dayOfCalendarFilename;

/// Whether a file name is a note's: it ends in ".txt" or ".md" and is an ordinary name: not hidden,
/// no other program's temporary file. A conflict copy's name is a note's, too.
bool isNoteFilename(std::string_view filename);

/// The file name without folders and without ".txt" or ".md".
std::string_view baseName(std::string_view filename);

/// A base name for a note with this title (a whole text may be given: the first line counts): at
/// most 100 user-perceived characters, none of `#/\?%*|"<>:.@`, white space collapsed, and short
/// enough that a counter and the extension fit `maxFilenameBytes`. Nothing when none is left.
/// When a pattern fails, logs "Couldn't find a good filename".
std::optional<std::string> filenameFromTitle(std::string_view title, StripListMarkers strip);

/// "Untitled - 05-Mar-2019 14-07-33": the base name when no title gives one. English month, ASCII
/// digits, everywhere.
std::string untitledName(const base::LocalTime& now);

}  // namespace tessaly::store
