// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "search/side_bar_rows.h"
#include "store/cached_notes.h"

namespace tessaly::search {

/// The folders and notes of the sidebar. The row of a folder is there when the cache has the folder
/// or anything lies in it. The folder "Archive" at the top is a fixed row, which always is there.
class SideBarFolders {
public:
    static constexpr std::string_view archiveFolder = "Archive";

    /// The rows outlive it; `notes` has an archive row.
    SideBarFolders(SideBarRows& rows, SideBarItem& notes, SideBarItem& archive)
        : _rows(rows), _notes(notes), _archive(archive) {}

    void update(const store::GeneralNotes& before, const store::GeneralNotes& after);
    /// After a change of what notes are sorted by.
    void sortNotes() { sortNotesBelow(_notes); }

    /// Null: there is no such row. `notes` are those of the last update.
    SideBarItem* folder(std::string_view path) const;
    SideBarItem* note(const store::GeneralNotes::Pointer& note) const;

private:
    /// A note that comes (nothing before), goes (nothing after), or is another now. Both lie in the
    /// snapshots, which stay for the update.
    struct Change {
        const store::GeneralNotes::Pointer* before = nullptr;
        const store::GeneralNotes::Pointer* after = nullptr;

        std::string_view filename() const {
            return (*(before != nullptr ? before : after))->note.filename;
        }
    };
    struct Changes;

    SideBarItem& madeFolder(std::string_view path);
    void apply(std::string_view folder, std::span<const Change> changes);
    void applyOne(SideBarItem& folder, const Change& change);
    void applyMany(SideBarItem& folder, std::span<const Change> changes);
    void count(SideBarItem& folder, std::span<const Change> changes);
    void removeIfEmpty(SideBarItem* folder);
    void sortNotesBelow(SideBarItem& folder);

    SideBarRows& _rows;
    SideBarItem& _notes;
    SideBarItem& _archive;
};

}  // namespace tessaly::search
