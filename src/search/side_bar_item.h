// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "base/enum_names.h"
#include "store/cached_notes.h"

namespace tessaly::search {

/// The kind of a row of the sidebar.
enum class SideBarItemType {
    header,
    hashtag,
    attag,
    hashtagHeader,
    attagHeader,
    calendar,
    week,
    today,
    notes,
    preferences,
    help,
    empty,
    view,
    viewHeader,
    note,
    folder,
    inbox,
    recent,
    archive,
    events,
    trash
};

/// The fixed rows.
enum class StickySideBarItem { Calendar, Notes, Preferences, Help, helpMarkdown };

/// The sections for which context menus and selections are built.
enum class SideBarMenu {
    notes,
    inbox,
    recents,
    archive,
    hashtags,
    mentions,
    calendar,
    trash,
    views,
    root
};

/// One row of the sidebar; owns the rows below it.
class SideBarItem {
public:
    SideBarItemType type = SideBarItemType::empty;
    std::string text;         ///< the tag, the folder's or note's file name, the filter's name
    std::string displayText;  ///< in the user's words
    std::vector<std::shared_ptr<SideBarItem>> subItems;  ///< in display order
    bool isExpanded = false;
    bool isSubItem = false;  ///< has a parent
    int subItemLevel = 0;    ///< depth below the top level
    bool isVisible = true;   ///< all rows above it are expanded
    int parentIndex = -1;    ///< of its parent among that one's siblings; -1: none
    /// The note behind the row.
    std::variant<std::monostate, store::GeneralNotes::Pointer> object;
    std::weak_ptr<SideBarItem> parent;
    /// Notes that hold the tag, or lie in the folder or below; 0 where nothing is counted.
    std::size_t count = 0;
};

SideBarMenu menuOf(const SideBarItem& item);

}  // namespace tessaly::search

namespace tessaly::base {

template <>
struct EnumNames<search::StickySideBarItem> {
    using T = search::StickySideBarItem;
    static constexpr std::array<EnumName<T>, 5> rows{{{T::Calendar, "Calendar"},
                                                      {T::Notes, "Notes"},
                                                      {T::Preferences, "Preferences"},
                                                      {T::Help, "Help"},
                                                      {T::helpMarkdown, "helpMarkdown"}}};
};

template <>
struct EnumNames<search::SideBarItemType> {
    using T = search::SideBarItemType;
    static constexpr std::array<EnumName<T>, 21> rows{{{T::header, "header"},
                                                       {T::hashtag, "hashtag"},
                                                       {T::attag, "attag"},
                                                       {T::hashtagHeader, "hashtagHeader"},
                                                       {T::attagHeader, "attagHeader"},
                                                       {T::calendar, "calendar"},
                                                       {T::week, "week"},
                                                       {T::today, "today"},
                                                       {T::notes, "notes"},
                                                       {T::preferences, "preferences"},
                                                       {T::help, "help"},
                                                       {T::empty, "empty"},
                                                       {T::view, "view"},
                                                       {T::viewHeader, "viewHeader"},
                                                       {T::note, "note"},
                                                       {T::folder, "folder"},
                                                       {T::inbox, "inbox"},
                                                       {T::recent, "recent"},
                                                       {T::archive, "archive"},
                                                       {T::events, "events"},
                                                       {T::trash, "trash"}}};
};

}  // namespace tessaly::base
