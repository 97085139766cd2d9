// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/sort_type.h"
#include "search/side_bar_folders.h"
#include "search/side_bar_item.h"
#include "search/side_bar_observer.h"
#include "search/side_bar_rows.h"
#include "search/side_bar_tags.h"
#include "store/cached_notes.h"

namespace tessaly::search {

/// What the sidebar is made of. A snapshot that is null counts as empty.
struct SideBarNotes {
    std::shared_ptr<const store::GeneralNotes> generalNotes;
    std::shared_ptr<const store::TagCounts> hashtags;
    std::shared_ptr<const store::TagCounts> mentions;
    std::vector<std::string> filters;
    base::SortType sortBy = base::SortType::modified;
};

/// The tree of the sidebar: Calendar (today, week), Notes (inbox, recent, folders and notes,
/// archive, trash), Views, Hashtags, Mentions, Preferences, Help. Folders stand before notes, by
/// name; notes by `sortBy`; tags nest by "/" and stand by name. The folder "Archive" at the top of
/// the notes is the archive's row. One thread at a time.
///
/// To drive it in a program that stays, on the main thread: make it with the setting
/// "expandedSideBarItems", `update` it with the snapshots of the cache, and again whenever a
/// `store::CacheListener` is told that `generalNotes`, `lineAtTags` or `lineHashTags` changed, a
/// filter's file came, went or got another name, or the setting `sortBy` changed. All of it is one
/// `update` with what is there now; what did not change costs nothing. A view sets an observer,
/// asks `indexOf` for the place of a row, and keeps the address of a row for as long as it is not
/// told that the row goes. After `setExpanded`, `expanded` is what the setting is to hold.
class SideBar {
public:
    /// `expanded`: the keys of rows whose children are shown.
    explicit SideBar(SideBarKeys expanded);
    SideBar(SideBar&&) = delete;  // its parts refer to each other

    /// Brings the tree up to date. Rows of what has not gone stay, and so do their addresses; what
    /// it costs depends on what has changed.
    void update(const SideBarNotes& notes);

    const SideBarItem::Rows& items() const { return _rows.top(); }

    void setExpanded(SideBarItem& item, bool isExpanded) { _rows.setExpanded(item, isExpanded); }
    /// The keys of what is expanded, rows that are gone at present included.
    const SideBarKeys& expanded() const { return _rows.expanded(); }

    /// The row's index among its siblings. Rows do not know theirs: keeping it would mean to touch
    /// thousands of rows when one comes.
    std::size_t indexOf(const SideBarItem& item) const { return _rows.indexOf(item); }
    /// That of its parent; -1: it has none.
    int parentIndex(const SideBarItem& item) const;

    /// The row by its key; null: there is none.
    SideBarItem* find(std::string_view key) const;
    static std::string keyOf(const SideBarItem& item) { return sideBarKey(item); }

    /// Null: nobody is told.
    void setObserver(SideBarObserver* observer) { _rows.setObserver(observer); }

private:
    void updateViews(const std::vector<std::string>& filters);
    SideBarItem* fixedRow(std::string_view name) const;
    SideBarItem* noteRow(std::string_view filename) const;
    SideBarItem* viewRow(std::string_view name) const;

    SideBarRows _rows;
    SideBarItem& _views;
    SideBarFolders _folders;
    SideBarTags _hashtags;
    SideBarTags _mentions;
    SideBarNotes _notes;  ///< that the tree shows
};

}  // namespace tessaly::search
