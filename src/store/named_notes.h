// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/note_type.h"
#include "store/cached_notes.h"
#include "store/cloud_note.h"

namespace tessaly::store {

/// A note or folder of notes that is to be looked at.
struct NamedNote {
    base::NoteType type = base::NoteType::none;  ///< calendar or note
    std::string filename;                        ///< relative to the kind's folder
    /// What somebody has seen who has just looked. That it is gone, or a folder, is believed: when
    /// it is otherwise since, that will be named, too. What a file holds is looked at.
    enum class Seen { somehow, gone, folder };
    Seen seen = Seen::somehow;
    bool hasConflicts = false;  ///< as of a `CloudNote`
};

/// The collections as they are at one time.
struct CacheState {
    std::shared_ptr<const GeneralNotes> generalNotes;
    std::shared_ptr<const CalendarNotes> calendarNotes;
    std::shared_ptr<const StrayNotes> strays;
};

/// Whether a file or folder of that name may be in the collections.
bool isCached(base::NoteType type, std::string_view filename);

/// Those of a batch that may be in the collections.
std::vector<NamedNote> namesOf(const CloudBatch& batch);

/// Orders names by kind and file name, each once; the last of those that are equal counts.
void sortNames(std::vector<NamedNote>& names);

/// Of `names`, which are in order, those that are missing although something is held there.
std::vector<NamedNote> heldButNotNamed(const std::vector<NamedNote>& names, const CacheState& held);

}  // namespace tessaly::store
