// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "store/loaded_note.h"
#include "store/note_model.h"
#include "store/note_reader.h"

namespace tessaly::store {

/// A calendar note: its summary and its text.
struct CalendarNote {
    NoteModel model;
    base::SharedText content;  ///< as of a `LoadedNote`
    ports::FileStamp stamp;
};

/// All notes of a data folder, as they were at one time. Each note is shared, so that a later set
/// takes over those that have not changed.
struct NoteSet {
    std::vector<std::shared_ptr<const LoadedNote>> generalNotes;  ///< and folders; by file name
    std::map<base::Day, std::shared_ptr<const CalendarNote>> calendarNotes;
    std::vector<std::string> strays;  ///< files in the calendar folder that name no day
    ReadReport report;
};

/// Reads and parses every note. `options.types` is ignored: calendar and general notes are read.
NoteSet loadNotes(const DataStore& store, base::Executor& executor, const CountSettings& settings,
                  NoteReader::Options options = {});

}  // namespace tessaly::store
