// SPDX-License-Identifier: MIT
#include "search/side_bar_folders.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "store/snapshot_difference.h"

namespace tessaly::search {
namespace {

// So many changes in a folder, and more than one for so many notes, are quicker made at once.
constexpr std::size_t manyChanges = 16;
constexpr std::size_t notesToAChange = 8;

std::string_view folderOf(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

std::size_t lastPartOf(std::string_view path) {
    return path.rfind('/') + 1;  // of no slash: the beginning
}

bool isThere(const SideBarItem& folder) {
    return folder.type != SideBarItemType::folder || !folder.subItems.empty() ||
           folder.note() != nullptr;
}

std::unique_ptr<SideBarItem> rowOf(const store::GeneralNotes::Pointer& note) {
    auto row = std::make_unique<SideBarItem>(SideBarItemType::note);
    row->showNote(note);
    return row;
}

}  // namespace

/// The differences of two snapshots by folder.
struct SideBarFolders::Changes {
    std::map<std::string_view, std::vector<Change>> notes;
    std::vector<Change> folders;

    void add(const store::GeneralNotes::Pointer& old, const store::GeneralNotes::Pointer& now) {
        const bool wasFolder = old && old->note.isFolder;
        const bool isFolder = now && now->note.isFolder;
        if (wasFolder || isFolder) {
            folders.push_back({wasFolder ? &old : nullptr, isFolder ? &now : nullptr});
        }
        const Change ofNote{old && !wasFolder ? &old : nullptr, now && !isFolder ? &now : nullptr};
        if (ofNote.before != nullptr || ofNote.after != nullptr) {
            const std::string_view folder = folderOf(ofNote.filename());
            if (_last == nullptr || _last->first != folder) {  // most lie where the last one does
                _last = &*notes.try_emplace(folder).first;
            }
            _last->second.push_back(ofNote);
        }
    }

private:
    std::pair<const std::string_view, std::vector<Change>>* _last = nullptr;
};

void SideBarFolders::update(const store::GeneralNotes& before, const store::GeneralNotes& after) {
    Changes changes;
    store::forEachDifference<store::ByFilename>(
        before, after, [&](const auto& old, const auto& now) { changes.add(old, now); });
    for (const Change& change : changes.folders) {
        if (change.after != nullptr && change.filename() != archiveFolder) {
            madeFolder(change.filename()).showNote(*change.after);
        }
    }
    for (const auto& [folder, ofFolder] : changes.notes) {
        apply(folder, ofFolder);
    }
    for (const Change& change : changes.folders) {
        SideBarItem* row = change.after != nullptr ? nullptr : folder(change.filename());
        if (row != nullptr && row != &_archive) {
            row->showName(std::string(row->text), lastPartOf(row->text));
            removeIfEmpty(row);
        }
    }
    // Only now: what lost its notes may have got others, deeper down.
    for (const auto& [path, ofFolder] : changes.notes) {
        removeIfEmpty(folder(path));
    }
}

SideBarItem* SideBarFolders::folder(std::string_view path) const {
    if (path.empty()) {
        return &_notes;
    }
    if (path == archiveFolder) {
        return &_archive;
    }
    const SideBarItem* parent = folder(folderOf(path));
    if (parent == nullptr) {
        return nullptr;
    }
    SideBarItem like(SideBarItemType::folder);
    like.text = path;
    return _rows.find(*parent, like);
}

SideBarItem* SideBarFolders::note(const store::GeneralNotes::Pointer& note) const {
    const SideBarItem* parent = folder(folderOf(note->note.filename));
    if (parent == nullptr) {
        return nullptr;
    }
    SideBarItem like(SideBarItemType::note);
    like.showNote(note);
    return _rows.find(*parent, like);
}

SideBarItem& SideBarFolders::madeFolder(std::string_view path) {
    if (SideBarItem* row = folder(path)) {
        return *row;
    }
    SideBarItem& parent = madeFolder(folderOf(path));
    auto row = std::make_unique<SideBarItem>(SideBarItemType::folder);
    row->showName(std::string(path), lastPartOf(path));
    return _rows.insert(parent, std::move(row));
}

void SideBarFolders::apply(std::string_view folder, std::span<const Change> changes) {
    SideBarItem& row = madeFolder(folder);
    const std::size_t notes = _rows.notesOf(row).size();
    if (notes == 0 || (changes.size() >= manyChanges && changes.size() * notesToAChange > notes)) {
        applyMany(row, changes);
    } else {
        for (const Change& change : changes) {
            applyOne(row, change);
        }
    }
    count(row, changes);
}

void SideBarFolders::applyOne(SideBarItem& folder, const Change& change) {
    if (change.before == nullptr) {
        _rows.insert(folder, rowOf(*change.after));
        return;
    }
    SideBarItem like(SideBarItemType::note);
    like.showNote(*change.before);
    SideBarItem& row = *_rows.find(folder, like);
    if (change.after != nullptr) {
        _rows.change(row, [&](SideBarItem& changed) { changed.showNote(*change.after); });
    } else {
        _rows.remove(row);
    }
}

void SideBarFolders::applyMany(SideBarItem& folder, std::span<const Change> changes) {
    SideBarItem::Rows rows = _rows.takeNotes(folder);
    // The changes are in order of their file names.
    const auto changeOf = [&](const std::unique_ptr<SideBarItem>& row) {
        const auto at = std::partition_point(
            changes.begin(), changes.end(),
            [&](const Change& change) { return change.filename() < row->text; });
        return at != changes.end() && at->filename() == row->text ? &*at : nullptr;
    };
    std::erase_if(rows, [&](const auto& row) {
        const Change* change = changeOf(row);
        if (change == nullptr) {
            return false;
        }
        if (change->after != nullptr) {
            row->showNote(*change->after);
            return false;
        }
        _rows.forget(*row);
        return true;
    });
    for (const Change& change : changes) {
        if (change.before == nullptr) {
            rows.push_back(rowOf(*change.after));
        }
    }
    _rows.putNotes(folder, std::move(rows));
}

void SideBarFolders::count(SideBarItem& folder, std::span<const Change> changes) {
    const auto come = std::count_if(changes.begin(), changes.end(),
                                    [](const Change& change) { return change.before == nullptr; });
    const auto gone = std::count_if(changes.begin(), changes.end(),
                                    [](const Change& change) { return change.after == nullptr; });
    if (come == gone) {
        return;
    }
    for (SideBarItem* row = &folder; row != nullptr; row = row->parent) {
        row->count =
            static_cast<std::size_t>(static_cast<std::ptrdiff_t>(row->count) + come - gone);
        _rows.touch(*row);
    }
}

void SideBarFolders::removeIfEmpty(SideBarItem* folder) {
    while (folder != nullptr && !isThere(*folder)) {
        SideBarItem* parent = folder->parent;
        _rows.remove(*folder);
        folder = parent;
    }
}

void SideBarFolders::sortNotesBelow(SideBarItem& folder) {
    _rows.sortNotes(folder);
    for (const auto& row : folder.subItems) {
        if (!row->subItems.empty()) {
            sortNotesBelow(*row);
        }
    }
}

}  // namespace tessaly::search
