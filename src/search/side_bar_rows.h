// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "base/sort_type.h"
#include "search/side_bar_item.h"
#include "search/side_bar_observer.h"
#include "search/side_bar_order.h"

namespace tessaly::search {

/// Keys of rows, in order.
using SideBarKeys = std::set<std::string, std::less<>>;

/// "folder:Work/Plans", "hashtag:#a/b", "section:Notes", "note:Work/Plans/May.txt"; names a row
/// beyond a run.
std::string sideBarKey(const SideBarItem& item);

/// The tree's rows in their order: puts them in, takes them out, and tells the observer.
class SideBarRows {
public:
    explicit SideBarRows(SideBarKeys expanded) : _expanded(std::move(expanded)) {}

    SideBarItem::Rows& top() { return _top; }
    const SideBarItem::Rows& top() const { return _top; }
    const SideBarKeys& expanded() const { return _expanded; }
    void setObserver(SideBarObserver* observer) { _observer = observer; }

    base::SortType sortBy() const { return _sortBy; }
    /// To be followed by `sortNotes` of every folder.
    void setSortBy(base::SortType sortBy) { _sortBy = sortBy; }

    void setExpanded(SideBarItem& item, bool isExpanded);

    /// Among its siblings.
    std::size_t indexOf(const SideBarItem& item) const;
    /// The row below `parent` that has the same place in the order; null: there is none.
    SideBarItem* find(const SideBarItem& parent, const SideBarItem& like) const;

    SideBarItem& insert(SideBarItem& parent, std::unique_ptr<SideBarItem> row);
    /// A row without rows below it.
    void remove(SideBarItem& row);
    /// Has `apply` change what a row is sorted by, and brings it to its place.
    template <class Apply>
    void change(SideBarItem& row, const Apply& apply) {
        const std::size_t from = indexOf(row);
        apply(row);
        moveToPlace(*row.parent, from);
        touch(row);
    }

    /// The notes right below a folder.
    std::span<std::unique_ptr<SideBarItem>> notesOf(SideBarItem& folder) const;
    /// Takes them all out; they stay the rows that they are.
    SideBarItem::Rows takeNotes(SideBarItem& folder);
    /// Puts notes, in any order, into a folder that has none.
    void putNotes(SideBarItem& folder, SideBarItem::Rows notes);
    void sortNotes(SideBarItem& folder);

    /// Notes what is to be told by `tellChanges`.
    void touch(const SideBarItem& item) {
        if (_observer != nullptr) {
            _touched.insert(&item);
        }
    }
    /// A row that was taken out has gone.
    void forget(const SideBarItem& item) { _touched.erase(&item); }
    void tellChanges();

private:
    SideBarOrder order() const { return SideBarOrder(_sortBy); }
    void place(SideBarItem& parent, SideBarItem& row);
    void moveToPlace(SideBarItem& parent, std::size_t from);
    template <class Tell>
    void tell(const Tell& call) const {
        if (_observer != nullptr) {
            call(*_observer);
        }
    }

    SideBarItem::Rows _top;
    SideBarKeys _expanded;
    base::SortType _sortBy = base::SortType::modified;
    SideBarObserver* _observer = nullptr;
    std::unordered_set<const SideBarItem*> _touched;
};

}  // namespace tessaly::search
