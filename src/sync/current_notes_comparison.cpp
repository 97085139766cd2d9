// SPDX-License-Identifier: MIT
#include <utility>

#include "store/paths.h"
#include "sync/current_notes.h"

namespace tessaly::sync {

using store::UpdateType;

bool CurrentNotes::Entry::isPlaceholder() const {
    return role == Role::placeholder || (role == Role::note && isEmptied);
}

bool CurrentNotes::Entry::hasDateOf(const Entry& other) const {
    return size == other.size && modified == other.modified;
}

bool CurrentNotes::Entry::hasStampOf(const Entry& other) const {
    return hasDateOf(other) && inode == other.inode && changed == other.changed;
}

void CurrentNotes::compareAll(Comparison& comparison, const Entries& before, Entries& after) const {
    auto old = before.begin();
    auto now = after.begin();
    while (old != before.end() || now != after.end()) {
        const int order = old == before.end()  ? 1
                          : now == after.end() ? -1
                                               : old->name.compare(now->name);
        compare(comparison, order <= 0 ? &*old : nullptr, order >= 0 ? &*now : nullptr);
        old += order <= 0 ? 1 : 0;
        now += order >= 0 ? 1 : 0;
    }
}

void CurrentNotes::compare(Comparison& comparison, const Entry* before, Entry* after) const {
    const bool isEmptiedNow = before != nullptr && after != nullptr && before->isReported &&
                              before->role == Role::note && after->role == Role::note &&
                              after->isEmptied && !after->isCopy;
    if (isEmptiedNow) {
        after->isReported = true;
        after->inode = before->inode;
        after->size = before->size;
        after->modified = before->modified;
        after->changed = before->changed;
        after->isFresh = before->isFresh;
    }
    compareNotes(comparison, before, after);
    comparePlaceholders(comparison, before, after);
}

void CurrentNotes::compareNotes(Comparison& comparison, const Entry* before,
                                const Entry* after) const {
    const bool was = before != nullptr && before->isReported;
    const bool is = after != nullptr && after->isReported;
    const bool isSame = was && is && before->isFolder() == after->isFolder();
    auto& [folder, differences, goneFolders] = comparison;
    if (was && !isSame) {
        differences.notes.push_back(noteOf(folder, *before, UpdateType::deleted));
        if (before->isFolder()) {
            goneFolders.push_back(store::joined(folder, before->name));
        }
    }
    if (is && !isSame) {
        differences.notes.push_back(noteOf(folder, *after, UpdateType::added));
    }
    if (is && after->isFolder()) {
        std::string path = store::joined(folder, after->name);
        if (!isSame || before->inode != after->inode || !_folders.contains(path)) {
            differences.newFolders.push_back(std::move(path));
        }
        return;
    }
    if (!isSame) {
        return;
    }
    if (!after->hasDateOf(*before) || after->hasConflicts != before->hasConflicts) {
        differences.notes.push_back(noteOf(folder, *after, UpdateType::changed));
    } else if (!after->isEmptied && (!after->hasStampOf(*before) || before->isFresh)) {
        differences.doubtful.push_back(noteOf(folder, *after, UpdateType::changed));
    }
}

void CurrentNotes::comparePlaceholders(Comparison& comparison, const Entry* before,
                                       const Entry* after) const {
    const bool was = before != nullptr && before->isPlaceholder();
    const bool is = after != nullptr && after->isPlaceholder();
    if (is && !(was && after->hasStampOf(*before))) {
        comparison.differences.placeholders.push_back(urlOf(comparison.folder, *after));
    }
    if (was && !is) {
        comparison.differences.placeholdersGone.push_back(urlOf(comparison.folder, *before));
    }
}

CurrentNotes::Differences CurrentNotes::finished(Comparison&& comparison) {
    for (const std::string& gone : comparison.goneFolders) {
        comparison.differences.add(removeFolder(gone));
    }
    return std::move(comparison.differences);
}

store::CloudNote CurrentNotes::noteOf(std::string_view folder, const Entry& entry,
                                      UpdateType update) const {
    return {entry.name,
            base::noteTypeOfFolder(folder.substr(0, folder.find('/'))),
            update,
            entry.modified,
            urlOf(folder, entry),
            entry.hasConflicts,
            entry.isFolder()};
}

std::string CurrentNotes::urlOf(std::string_view folder, const Entry& entry) const {
    return store::joined(store::joined(_root, folder), entry.name);
}

}  // namespace tessaly::sync
