// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/failure.h"
#include "tasks/line_edit.h"
#include "tasks/operation.h"

namespace tessaly::tasks {

/// The bytes of a note's file; nothing: there is no file.
using NoteBytes = std::optional<std::string>;

/// As the steps name it: the SHA-256 of the bytes; empty when there is no file.
std::string hashOf(const NoteBytes& bytes);

/// `step` as its edits are to be made on `now`: with their places, hashes and change. A note that
/// is not there is made by a step that only appends and has not been prepared for one that is;
/// else `notFound`. Further failures: the edits' own; `malformed`: the note is not UTF-8. They tell
/// the note.
base::Result<NoteStep> located(const NoteStep& step, const NoteBytes& now, Strictness strictness);

/// The same for a step that has been prepared: where the note is what it was prepared for, that
/// very step.
base::Result<NoteStep> adapted(const NoteStep& step, const NoteBytes& now, Strictness strictness);

/// What a prepared step makes of the bytes that it was prepared for.
NoteBytes bytesAfter(const NoteStep& step, const NoteBytes& before);

/// The step that leads back from what a prepared step led to.
NoteStep inverse(const NoteStep& step);

inline bool isSameNote(const NoteStep& a, const NoteStep& b) {
    return a.type == b.type && a.filename == b.filename;
}

inline bool hasEffect(const NoteStep& step) {
    return step.hashBefore != step.hashAfter;
}

/// Whether a prepared step has been made, although others have changed the note since.
bool seemsMade(const NoteStep& step, std::string_view bytes);

/// The note's name in the data folder, kind's folder included.
std::string nameOf(const NoteStep& step);

}  // namespace tessaly::tasks
