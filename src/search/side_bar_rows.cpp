// SPDX-License-Identifier: MIT
#include "search/side_bar_rows.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace tessaly::search {
namespace {

using Row = std::unique_ptr<SideBarItem>;
using Rows = SideBarItem::Rows;

// Rows of other types are fixed.
constexpr std::array keyedTypes{SideBarItemType::folder, SideBarItemType::note,
                                SideBarItemType::hashtag, SideBarItemType::attag,
                                SideBarItemType::view};

auto firstFrom(const Rows& rows, std::size_t begin, std::size_t end, const SideBarItem& row,
               const SideBarOrder& order) {
    return std::lower_bound(
        std::next(rows.begin(), static_cast<std::ptrdiff_t>(begin)),
        std::next(rows.begin(), static_cast<std::ptrdiff_t>(end)), row,
        [&](const Row& one, const SideBarItem& sought) { return order(*one, sought); });
}

}  // namespace

std::string sideBarKey(const SideBarItem& item) {
    const bool isKeyed =
        std::find(keyedTypes.begin(), keyedTypes.end(), item.type) != keyedTypes.end();
    std::string key(isKeyed ? base::rawValue(item.type) : "section");
    key += ':';
    return key.append(item.text);
}

void SideBarRows::setExpanded(SideBarItem& item, bool isExpanded) {
    if (item.isExpanded == isExpanded) {
        return;
    }
    item.isExpanded = isExpanded;
    if (isExpanded) {
        _expanded.insert(sideBarKey(item));
    } else {
        _expanded.erase(sideBarKey(item));
    }
    tell([&](SideBarObserver& observer) { observer.changed(item); });
}

std::size_t SideBarRows::indexOf(const SideBarItem& item) const {
    if (item.parent == nullptr) {
        const auto at =
            std::find_if(_top.begin(), _top.end(), [&](const Row& row) { return &*row == &item; });
        return static_cast<std::size_t>(at - _top.begin());
    }
    const Rows& rows = item.parent->subItems;
    return static_cast<std::size_t>(firstFrom(rows, 0, rows.size(), item, order()) - rows.begin());
}

SideBarItem* SideBarRows::find(const SideBarItem& parent, const SideBarItem& like) const {
    const Rows& rows = parent.subItems;
    const auto at = firstFrom(rows, 0, rows.size(), like, order());
    return at == rows.end() || order()(like, **at) ? nullptr : &**at;
}

void SideBarRows::place(SideBarItem& parent, SideBarItem& row) {
    row.parent = &parent;
    row.subItemLevel = parent.subItemLevel + 1;
    // Notes have nothing below them; to make a key for each of so many would be dear.
    row.isExpanded = row.type != SideBarItemType::note && _expanded.contains(sideBarKey(row));
}

SideBarItem& SideBarRows::insert(SideBarItem& parent, Row row) {
    place(parent, *row);
    SideBarItem& inserted = *row;
    const std::size_t index = indexOf(inserted);
    tell([&](SideBarObserver& observer) { observer.willInsert(parent, index, 1); });
    parent.subItems.insert(parent.subItems.begin() + static_cast<std::ptrdiff_t>(index),
                           std::move(row));
    tell([&](SideBarObserver& observer) { observer.didInsert(parent); });
    return inserted;
}

void SideBarRows::remove(SideBarItem& row) {
    SideBarItem& parent = *row.parent;
    const std::size_t index = indexOf(row);
    tell([&](SideBarObserver& observer) { observer.willRemove(parent, index, 1); });
    forget(row);
    const auto at = parent.subItems.begin() + static_cast<std::ptrdiff_t>(index);
    const Row removed = std::move(*at);
    parent.subItems.erase(at);
    tell([&](SideBarObserver& observer) { observer.didRemove(parent); });
}

void SideBarRows::moveToPlace(SideBarItem& parent, std::size_t from) {
    Rows& rows = parent.subItems;
    const SideBarItem& row = *rows[from];
    // The others are in order, those before the row and those behind it.
    const auto before = firstFrom(rows, 0, from, row, order());
    const auto behind = firstFrom(rows, from + 1, rows.size(), row, order());
    const auto indexBefore = static_cast<std::size_t>(before - rows.begin());
    const auto indexBehind = static_cast<std::size_t>(behind - rows.begin());
    const std::size_t to = indexBefore < from ? indexBefore : indexBehind - 1;
    if (to == from) {
        return;
    }
    tell([&](SideBarObserver& observer) { observer.willMove(parent, from, to); });
    const auto at = [&](std::size_t index) {
        return rows.begin() + static_cast<std::ptrdiff_t>(index);
    };
    if (to < from) {
        std::rotate(at(to), at(from), at(from + 1));
    } else {
        std::rotate(at(from), at(from + 1), at(to + 1));
    }
    tell([&](SideBarObserver& observer) { observer.didMove(parent); });
}

std::span<Row> SideBarRows::notesOf(SideBarItem& folder) const {
    Rows& rows = folder.subItems;
    const auto place = placeOf(SideBarItemType::note);
    const auto first = std::partition_point(
        rows.begin(), rows.end(), [&](const Row& row) { return placeOf(row->type) < place; });
    const auto end = std::partition_point(
        first, rows.end(), [&](const Row& row) { return placeOf(row->type) == place; });
    return {first, end};
}

Rows SideBarRows::takeNotes(SideBarItem& folder) {
    const auto notes = notesOf(folder);
    if (notes.empty()) {
        return {};
    }
    const auto index = notes.data() - folder.subItems.data();
    tell([&](SideBarObserver& observer) {
        observer.willRemove(folder, static_cast<std::size_t>(index), notes.size());
    });
    Rows taken(std::make_move_iterator(notes.begin()), std::make_move_iterator(notes.end()));
    const auto first = folder.subItems.begin() + index;
    folder.subItems.erase(first, first + static_cast<std::ptrdiff_t>(taken.size()));
    tell([&](SideBarObserver& observer) { observer.didRemove(folder); });
    return taken;
}

void SideBarRows::putNotes(SideBarItem& folder, Rows notes) {
    if (notes.empty()) {
        return;
    }
    order().sortNotes(notes);
    for (const Row& note : notes) {
        place(folder, *note);
    }
    const std::size_t index = indexOf(*notes.front());
    const std::size_t count = notes.size();
    tell([&](SideBarObserver& observer) { observer.willInsert(folder, index, count); });
    folder.subItems.insert(folder.subItems.begin() + static_cast<std::ptrdiff_t>(index),
                           std::make_move_iterator(notes.begin()),
                           std::make_move_iterator(notes.end()));
    tell([&](SideBarObserver& observer) { observer.didInsert(folder); });
}

void SideBarRows::sortNotes(SideBarItem& folder) {
    const auto notes = notesOf(folder);
    const SideBarOrder wanted = order();
    const bool isInOrder = std::is_sorted(
        notes.begin(), notes.end(), [&](const Row& a, const Row& b) { return wanted(*a, *b); });
    if (isInOrder) {
        return;
    }
    tell([&](SideBarObserver& observer) { observer.willReorder(folder); });
    wanted.sortNotes(notes);
    tell([&](SideBarObserver& observer) { observer.didReorder(folder); });
}

void SideBarRows::tellChanges() {
    const auto touched = std::exchange(_touched, {});
    tell([&](SideBarObserver& observer) {
        for (const SideBarItem* item : touched) {
            observer.changed(*item);
        }
    });
}

}  // namespace tessaly::search
