// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/services.h"
#include "base/day.h"
#include "base/failure.h"
#include "base/note_type.h"
#include "ports/file_version.h"
#include "store/note_reader.h"

namespace tessaly::app {

/// A note and its versions, the current one first; a version's number for the user is its place
/// from 1. Of a note that is gone under its own name, all versions have `isConflict`.
struct ConflictedNote {
    base::NoteType type = base::NoteType::none;
    std::string filename;  ///< relative to its kind's folder
    std::string path;      ///< of its file, absolute
    std::vector<ports::FileVersion> versions;

    bool isInConflict() const { return !versions.empty() && versions.back().isConflict; }
};

struct Conflicts {
    std::vector<ConflictedNote> notes;  ///< by path
    store::ReadReport report;
};

/// Every note in conflict. What the start-up index knows is not read for it.
Conflicts listConflicts(Services& services, store::NoteReader::Options options = {});

/// The versions of one note, as `findNote` takes it; a conflict copy's name means its note, and a
/// file name also one of which there are only conflict copies left. Failure, in words for the user;
/// `cancelled`, without words. A note without conflict has one version.
base::Result<ConflictedNote> conflictOf(Services& services, std::string_view note,
                                        store::NoteReader::Options options = {});

/// What resolving came to.
struct Resolved {
    ConflictedNote note;      ///< as it was before
    bool isResolved = false;  ///< no other version is left
    std::size_t kept = 0;     ///< the number of the version that was kept; 0: a merged text
    /// Of a merge: when the note held the newest text that the versions were merged from; nothing:
    /// none is known, so that every line of every version was kept.
    std::optional<base::Instant> baseTime;
    /// Of a merge: lines that a version had, and the merged text does not, since another version
    /// had deleted or changed them.
    std::size_t linesTaken = 0;
};

/// Keeps the version with that number, the bytes of all others being in the note's history. The log
/// tells why a version is left. Failure, in words for the user: there is no such version, the note
/// is not in conflict, its versions are others by now, or one that it takes cannot be read; nothing
/// has changed then.
base::Result<Resolved> keepVersion(Services& services, const ConflictedNote& note,
                                   std::size_t number);

/// Puts one text in the place of all versions, joined by line from what the history and the
/// start-up index tell of earlier texts (`store::mergeBase`). Failures as above; `malformed`: a
/// version is not UTF-8.
base::Result<Resolved> mergeVersions(Services& services, const ConflictedNote& note);

}  // namespace tessaly::app
