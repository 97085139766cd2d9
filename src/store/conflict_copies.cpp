// SPDX-License-Identifier: MIT
#include "store/conflict_copies.h"

#include <algorithm>
#include <map>
#include <set>

#include "store/conflict_patterns.h"
#include "store/note_names.h"
#include "store/notes_by_name.h"
#include "store/paths.h"

namespace tessaly::store {
namespace {

using ports::FolderEntry;

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool mayBeCopy(const FolderEntry& entry) {
    return entry.kind == FolderEntry::Kind::file && mayBeConflictName(entry.name);
}

void addCopies(const std::vector<FolderEntry>& entries, const std::string& folder,
               const std::set<std::string>& wanted, std::vector<std::string>& copies) {
    // Thousands of entries, and hardly ever a copy among them.
    if (std::none_of(entries.begin(), entries.end(), mayBeCopy)) {
        return;
    }
    NotesByName notes;
    for (const FolderEntry& entry : entries) {
        if (entry.kind == FolderEntry::Kind::file && isNoteFilename(entry.name)) {
            notes.add(entry.name);
        }
    }
    for (const FolderEntry& entry : entries) {
        const auto copy = mayBeCopy(entry) ? notes.conflictCopy(entry.name) : std::nullopt;
        if (copy && wanted.contains(copy->original)) {
            copies.push_back(joined(folder, entry.name));
        }
    }
}

}  // namespace

std::vector<std::string> conflictCopiesOf(ports::FileSystem& files, const std::string& root,
                                          const std::vector<std::string>& notes) {
    std::map<std::string, std::set<std::string>> wanted;  // names by folder
    for (const std::string& note : notes) {
        wanted[folderOf(note)].emplace(lastComponent(note));
    }
    std::vector<std::string> copies;
    for (const auto& [folder, names] : wanted) {
        if (const auto entries = files.list(folder.empty() ? root : joined(root, folder))) {
            addCopies(*entries, folder, names, copies);
        }
    }
    std::sort(copies.begin(), copies.end());
    return copies;
}

}  // namespace tessaly::store
