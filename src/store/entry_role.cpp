// SPDX-License-Identifier: MIT
#include "store/entry_role.h"

#include <algorithm>

#include "base/note_type.h"
#include "base/utf8.h"
#include "store/conflict_patterns.h"
#include "store/foreign_names.h"
#include "store/note_names.h"

namespace tessaly::store {
namespace {

using Kind = ports::FolderEntry::Kind;

bool isPassedOver(std::string_view name) {
    return name.starts_with('.') || name == "_attachments";
}

bool isPlaceholderOfNote(std::string_view name) {
    const auto note = nameOfPlaceholder(name);
    return note && isNoteFilename(*note);
}

EntryRole unlessUnreadable(EntryRole role, std::string_view name) {
    return base::isUtf8(name) ? role : EntryRole::unreadable;
}

}  // namespace

EntryRole entryRole(const ports::FolderEntry& entry) {
    const std::string_view name = entry.name;
    if (isPassedOver(name)) {
        return EntryRole::passedOver;
    }
    if (entry.kind == Kind::folder) {
        return unlessUnreadable(EntryRole::folder, name);
    }
    if (entry.kind == Kind::file && isPlaceholderOfNote(name)) {
        return EntryRole::placeholder;
    }
    if (!isNoteFilename(name)) {
        return EntryRole::passedOver;
    }
    return entry.kind == Kind::file ? unlessUnreadable(EntryRole::note, name)
                                    : EntryRole::unreadable;
}

EntryRole entryRoleIn(std::string_view folder, const ports::FolderEntry& entry) {
    const bool isFilters =
        folder.substr(0, folder.find('/')) == base::folderName(base::NoteType::filters);
    if (!isFilters) {
        return entryRole(entry);
    }
    return entry.kind == Kind::file && nameKind(entry.name) == NameKind::ordinary
               ? unlessUnreadable(EntryRole::note, entry.name)
               : EntryRole::passedOver;
}

bool mayBeConflictCopy(const ports::FolderEntry& entry) {
    return mayBeConflictName(entry.name) && entry.kind == Kind::file && !isPassedOver(entry.name) &&
           base::isUtf8(entry.name);
}

bool isCoveredPath(std::string_view path) {
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (isPassedOver(path.substr(0, end))) {
            return false;
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return true;
}

}  // namespace tessaly::store
