// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/sort_type.h"
#include "search/side_bar_item.h"
#include "store/cached_notes.h"

namespace tessaly::search {

/// Told how the tree of a sidebar changes, before and after, so that a view can follow. `parent` is
/// null for the top level. All are called by the operation that changes the tree, on its thread.
class SideBarObserver {
public:
    virtual ~SideBarObserver() = default;
    virtual void willInsert(const SideBarItem* parent, std::size_t first, std::size_t count) = 0;
    virtual void didInsert() = 0;
    virtual void willRemove(const SideBarItem* parent, std::size_t first, std::size_t count) = 0;
    virtual void didRemove() = 0;
    /// Texts, counts or `isExpanded` of one row.
    virtual void changed(const SideBarItem& item) = 0;
};

/// What the sidebar is made of.
struct SideBarNotes {
    std::shared_ptr<const store::GeneralNotes> generalNotes;
    std::shared_ptr<const store::TagCounts> hashtags;
    std::shared_ptr<const store::TagCounts> mentions;
    std::vector<std::string> filters;
    base::SortType sortBy = base::SortType::modified;
};

/// The tree of the sidebar: Calendar (today, week), Notes (inbox, recent, folders and notes,
/// archive, trash), Views, Hashtags, Mentions, Preferences, Help. Folders stand before notes, by
/// name; notes by `sortBy`; tags nest by "/" and stand by name. What is expanded is known by keys
/// that outlive a run ("folder:Work/Plans", "hashtag:#a/b", "section:Notes"). One thread at a time.
class SideBar {
public:
    /// `expanded`: the keys of rows whose children are shown.
    explicit SideBar(std::set<std::string, std::less<>> expanded);

    /// Brings the tree up to date. What has not changed stays as it is, the rows' addresses too;
    /// what it costs depends on what has changed.
    void update(const SideBarNotes& notes);

    const std::vector<std::shared_ptr<SideBarItem>>& items() const { return _items; }

    void setExpanded(SideBarItem& item, bool isExpanded);
    /// The keys of what is expanded, rows that are gone at present included.
    const std::set<std::string, std::less<>>& expanded() const { return _expanded; }

    /// The row by its key; null: there is none.
    SideBarItem* find(std::string_view key) const;
    static std::string keyOf(const SideBarItem& item);

    void setObserver(SideBarObserver* observer) { _observer = observer; }

private:
    std::set<std::string, std::less<>> _expanded;
    std::vector<std::shared_ptr<SideBarItem>> _items;
    SideBarNotes _notes;
    SideBarObserver* _observer = nullptr;
};

}  // namespace tessaly::search
