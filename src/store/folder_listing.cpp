// SPDX-License-Identifier: MIT
#include "store/folder_listing.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/utf8.h"
#include "store/entry_role.h"
#include "store/foreign_names.h"
#include "store/note_names.h"
#include "store/notes_by_name.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using ports::FolderEntry;
using ports::SurveyedEntry;

bool isNoteFile(const FolderEntry& entry) {
    return entryRole(entry) == EntryRole::note;
}

// The note that a conflict copy would be a version of if it were there; nothing for what is a note
// itself, or a version of something else.
std::optional<ConflictName> copyOfMissingNote(std::string_view name) {
    auto copy = isNoteFilename(name) ? std::nullopt : conflictName(name);
    while (auto inner = copy ? conflictName(copy->original) : std::nullopt) {
        copy->original = std::move(inner->original);
    }
    return copy && isNoteFilename(copy->original) ? copy : std::nullopt;
}

ConflictCopy conflictCopy(const NoteFolder& folder, std::string_view name, ConflictName found) {
    const auto path = [&](std::string_view own) {
        return pathInData(folder.type, joined(folder.name, own));
    };
    return {path(name), path(found.original), std::move(found.device), found.deviceOf,
            found.client};
}

// Takes the conflict copies out of a folder's entries.
template <class Entry>
void setCopiesAside(const NoteFolder& folder, std::vector<Entry>& entries,
                    std::vector<ConflictCopy>& copies) {
    if (std::none_of(entries.begin(), entries.end(), mayBeConflictCopy)) {
        return;
    }
    NotesByName notes;
    for (const FolderEntry& entry : entries) {
        if (isNoteFile(entry)) {
            notes.add(entry.name);
        }
    }
    std::erase_if(entries, [&](const FolderEntry& entry) {
        if (!mayBeConflictCopy(entry)) {
            return false;
        }
        auto copy = notes.conflictCopy(entry.name);
        if (!copy) {
            copy = copyOfMissingNote(entry.name);
        }
        if (copy) {
            copies.push_back(conflictCopy(folder, entry.name, *std::move(copy)));
        }
        return copy.has_value();
    });
}

void addUnknown(FolderListing& listing, FolderEntry&& entry) {
    (isNoteFile(entry) ? listing.notes : listing.others).push_back(std::move(entry));
}

base::Result<FolderListing> listed(ports::FileSystem& files, const NoteFolder& folder) {
    auto found = files.list(folder.path);
    if (!found) {
        return found.failure();
    }
    std::vector<FolderEntry> entries = *std::move(found);
    FolderListing listing;
    setCopiesAside(folder, entries, listing.conflictCopies);
    for (FolderEntry& entry : entries) {
        addUnknown(listing, std::move(entry));
    }
    return listing;
}

base::Result<FolderListing> surveyed(ports::FileSystem& files, const NoteFolder& folder,
                                     const NoteIndex& index) {
    auto found = files.survey(folder.path);
    if (!found) {
        return found.failure();
    }
    std::vector<SurveyedEntry> entries = *std::move(found);
    const NoteIndex::Folder notes = index.folder(folder.type, folder.name);
    FolderListing listing;
    setCopiesAside(folder, entries, listing.conflictCopies);
    listing.known.reserve(entries.size());
    for (SurveyedEntry& entry : entries) {
        // What the index holds was a note by its name, and has the same name now.
        const bool mayBeKnown = entry.kind == FolderEntry::Kind::file && !entry.isPlaceholder;
        if (const auto known = mayBeKnown ? notes.find(entry.name, entry.stamp) : std::nullopt) {
            listing.known.push_back({std::move(entry.name), entry.stamp, *known});
        } else {
            addUnknown(listing, std::move(entry));
        }
    }
    return listing;
}

}  // namespace

std::string pathInData(base::NoteType type, std::string_view name) {
    std::string path = joined(base::folderName(type), name);
    return base::isUtf8(path) ? path : base::toUtf8(base::toUtf16(path));
}

base::Result<FolderListing> listNotes(ports::FileSystem& files, const NoteFolder& folder,
                                      const NoteIndex* index) {
    return index == nullptr ? listed(files, folder) : surveyed(files, folder, *index);
}

}  // namespace tessaly::store
