// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/day.h"
#include "base/note_type.h"
#include "store/change_cause.h"
#include "tasks/line_edit.h"

namespace tessaly::tasks {

/// The one stretch of bytes in which two versions of a file differ.
struct ByteChange {
    std::size_t offset = 0;
    std::string removed;
    std::string inserted;

    bool operator==(const ByteChange&) const = default;
};

/// A change of one note, as part of an operation.
struct NoteStep {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder
    std::vector<LineEdit> edits;
    /// A copy that undoing cannot tell from other lines, as it has no link: it stays then.
    bool staysWhenUndone = false;

    // Known when the step is prepared.
    std::string hashBefore;  ///< SHA-256 of the file's bytes; empty: there was no file
    std::string hashAfter;
    ByteChange change;

    bool operator==(const NoteStep&) const = default;
};

/// A change of one or more notes that is made, and undone, as a whole. Steps are in the order in
/// which they are made: what is copied is written before its source is marked.
struct Operation {
    std::uint64_t number = 0;  ///< its place in the journal; 0: not there yet
    base::Instant time{};
    store::ChangeCause cause = store::ChangeCause::completed;
    std::optional<base::Day> day;  ///< that it schedules to; nothing: to several
    std::size_t tasks = 0;         ///< how many lines the user named
    /// What the first of them reads, without marker and box, cut for display.
    std::string title;
    std::vector<NoteStep> steps;
    /// The number of the operation that this one takes back.
    std::optional<std::uint64_t> undoes;
    /// How many steps, from the first, the journal knows to have been made; those behind may have.
    std::size_t stepsMade = 0;

    bool operator==(const Operation&) const = default;
};

}  // namespace tessaly::tasks
