// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "app/services.h"
#include "base/failure.h"
#include "ports/trash_return.h"
#include "store/history_entry.h"

namespace tessaly::app {

/// A general note, or a folder of them, that has just gone to the trash, and how it comes back.
struct TrashedItem {
    std::string name;                         ///< relative to the folder of general notes
    std::string path;                         ///< where it lay, absolute
    ports::TakeBack takeBack;                 ///< empty: the trash does not tell of it
    std::optional<store::HistoryEntry> text;  ///< of a note; nothing: the history does not have it

    bool canComeBack() const { return takeBack || text; }
};

/// To be asked right after it went. Blocks for the disk, as does the other; any thread.
TrashedItem trashedItem(Services& services, const std::string& name);

/// Puts it back to where it lay: out of the trash, or, where a note is no longer there, its text
/// out of the history. Nothing is overwritten: failure `exists`, in words for the user, where
/// something has its name by now. The cache is told.
base::Result<base::Done> bringBack(Services& services, const TrashedItem& item);

}  // namespace tessaly::app
