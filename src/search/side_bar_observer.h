// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "search/side_bar_item.h"

namespace tessaly::search {

/// Told how the tree of a sidebar changes, before and after, so that a view can follow. All are
/// called by the operation that changes the tree, on its thread; they must not change it. The rows
/// of the top level always stay.
class SideBarObserver {
public:
    virtual ~SideBarObserver() = default;
    /// Rows come, with nothing below them yet.
    virtual void willInsert(const SideBarItem& parent, std::size_t first, std::size_t count) = 0;
    virtual void didInsert(const SideBarItem& parent) = 0;
    /// Rows go, with nothing below them any more.
    virtual void willRemove(const SideBarItem& parent, std::size_t first, std::size_t count) = 0;
    virtual void didRemove(const SideBarItem& parent) = 0;
    /// One row gets another place under its parent; `to` is its index afterwards.
    virtual void willMove(const SideBarItem& parent, std::size_t from, std::size_t to) = 0;
    virtual void didMove(const SideBarItem& parent) = 0;
    /// The same rows below `parent`, in another order.
    virtual void willReorder(const SideBarItem& parent) = 0;
    virtual void didReorder(const SideBarItem& parent) = 0;
    /// Texts, count or `isExpanded` of one row; told at the end of an update, once a row.
    virtual void changed(const SideBarItem& item) = 0;
};

}  // namespace tessaly::search
