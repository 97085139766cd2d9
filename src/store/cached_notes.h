// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/day.h"
#include "base/shared_text.h"
#include "grammar/line_scanner.h"
#include "ports/file_system.h"
#include "store/loaded_note.h"
#include "store/note_model.h"
#include "store/sorted_snapshot.h"

namespace tessaly::store {

/// A general note or folder in the cache, and the state of the file that it was read from.
struct GeneralNote {
    LoadedNote note;
    ports::FileStamp stamp;  ///< of a folder all zero
};

/// A day in the cache: its summary and its text. A day without a file is here when tasks of general
/// notes are scheduled to it.
struct CalendarNote {
    NoteModel model;
    base::SharedText content;               ///< as of a `LoadedNote`
    std::optional<ports::FileStamp> stamp;  ///< nothing: the day has no file
};

/// A note in the calendar folder whose name is no day.
struct StrayNote {
    base::SharedText content;  ///< as of a `LoadedNote`
    ports::FileStamp stamp;
};

/// What is held of a note, for who compares it with a file.
struct KnownText {
    base::SharedText text;     ///< as of a `LoadedNote`
    base::Instant modified{};  ///< the date of the file that it was read from
};

/// A tag and in how many notes it occurs.
struct TagCount {
    std::string tag;
    std::size_t notes = 0;
};

struct ByFilename {
    using Key = std::string_view;
    static Key keyOf(const GeneralNote& note) { return note.note.filename; }
};
struct ByDay {
    using Key = base::Day;
    static Key keyOf(const CalendarNote& note) { return *note.model.date; }
};
struct ByTag {
    using Key = std::string_view;
    static Key keyOf(const TagCount& count) { return count.tag; }
};

using GeneralNotes = SortedSnapshot<GeneralNote, ByFilename>;
using CalendarNotes = SortedSnapshot<CalendarNote, ByDay>;
using TagCounts = SortedSnapshot<TagCount, ByTag>;
using StrayNotes = std::map<std::string, StrayNote, std::less<>>;  ///< by file name

/// Items made of what was read. `filename` is relative to the kind's folder; that of a calendar
/// note must be a day's.
GeneralNotes::Pointer generalNote(std::string filename, base::SharedText content,
                                  const ports::FileStamp& stamp, const CountSettings& settings,
                                  grammar::NoteScanner& scanner);
GeneralNotes::Pointer folderOfNotes(std::string filename);
CalendarNotes::Pointer calendarNote(std::string filename, base::SharedText content,
                                    const ports::FileStamp& stamp, const CountSettings& settings,
                                    grammar::NoteScanner& scanner);

/// What a day's summary tells beside its own note's tasks and tags, taken over from another
/// version.
void keepOthersCounts(NoteModel& model, const NoteModel& before);

}  // namespace tessaly::store
