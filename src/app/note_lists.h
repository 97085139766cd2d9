// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/services.h"
#include "base/sort_type.h"
#include "store/day_tasks.h"
#include "store/loaded_note.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// A note as a list shows it.
struct NoteRow {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder
    std::string title;     ///< a calendar note's is its day's name, "today", "Tue, 5 Mar"
    base::Instant changed{};
    base::Instant created{};
    store::NoteModel model;  ///< counters and tags
};

struct NoteRows {
    std::vector<NoteRow> rows;
    store::ReadReport report;
};

/// Which notes a list holds.
enum class NoteScope { general, calendar, all };

/// Notes in the order of the setting `sortBy`: titles in lower case, behind them calendar notes by
/// their days; dates newest first. `folder` keeps those below one folder of general notes; empty
/// for all.
NoteRows listNotes(Services& services, NoteScope scope, std::string_view folder,
                   store::NoteReader::Options options = {});

struct TaskRows {
    std::vector<store::NoteTask> tasks;  ///< by kind, file and line
    store::ReadReport report;
};

/// Every task of the notes in `scope` whose type is one of `types` (all four task kinds when
/// empty).
TaskRows listTasks(Services& services, NoteScope scope, const std::vector<grammar::TodoType>& types,
                   store::NoteReader::Options options = {});

/// A tag and in how many notes it occurs.
struct TagRow {
    std::string tag;
    std::size_t notes = 0;
};
enum class TagKind { hashtags, mentions };
struct TagRows {
    std::vector<TagRow> rows;  ///< by name
    store::ReadReport report;
};
TagRows listTags(Services& services, TagKind kind, store::NoteReader::Options options = {});

}  // namespace tessaly::app
