// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "base/day.h"
#include "base/executor.h"
#include "store/cached_notes.h"
#include "store/data_store.h"
#include "store/note_index.h"
#include "store/note_model.h"
#include "store/note_reader.h"

namespace tessaly::store {

/// All notes of a data folder, as they were at one time.
struct LoadedNotes {
    GeneralNotes generalNotes;
    CalendarNotes calendarNotes;
    TagCounts lineAtTags;
    TagCounts lineHashTags;
    StrayNotes strays;
    ReadReport report;
};

/// Reads and parses every calendar and general note, on all threads. `options.types` is ignored.
/// Texts lie in arenas, those of an index, too: those that are read together live together.
LoadedNotes loadNotes(const DataStore& store, base::Executor& executor,
                      const CountSettings& settings, NoteReader::Options options = {},
                      std::shared_ptr<const NoteIndex> index = nullptr);

/// The notes of `count` days from `first` on that can be read.
CalendarNotes loadDays(const DataStore& store, base::Day first, int count,
                       const CountSettings& settings);

}  // namespace tessaly::store
