// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/enum_names.h"
#include "store/cached_notes.h"
#include "store/loaded_note.h"

namespace tessaly::search {

/// The kind of a row of the sidebar.
enum class SideBarItemType : std::uint8_t {
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

/// One row of the sidebar; owns the rows below it. Texts are views: a hundred thousand rows share
/// those of the notes.
class SideBarItem {
public:
    using Rows = std::vector<std::unique_ptr<SideBarItem>>;
    /// What is behind the row, and holds its text: a note or folder, a tag with its count, or, of a
    /// filter, a fixed row, and a folder or tag that is only there for what it holds, the name.
    using Object = std::variant<std::shared_ptr<const std::string>, store::GeneralNotes::Pointer,
                                store::TagCounts::Pointer>;

    SideBarItem() = default;
    explicit SideBarItem(SideBarItemType kind) : type(kind) {}
    SideBarItem(SideBarItem&&) = delete;

    SideBarItemType type = SideBarItemType::empty;
    bool isExpanded = false;
    int subItemLevel = 0;  ///< depth below the top level
    /// The key: the tag, the folder's or note's file name relative to the notes' folder, the
    /// filter's name, the fixed row's name.
    std::string_view text;
    std::string_view displayText;  ///< in the user's words; of a nested folder or tag its last part
    Rows subItems;                 ///< in display order
    Object object;
    SideBarItem* parent = nullptr;  ///< null at the top level
    /// Notes that hold the tag, or lie in the folder or below; 0 where nothing is counted.
    std::size_t count = 0;

    bool isSubItem() const { return parent != nullptr; }
    /// Whether all rows above it are expanded.
    bool isVisible() const;

    /// Null: there is no note or folder of the cache behind it.
    const store::LoadedNote* note() const;

    void showNote(store::GeneralNotes::Pointer shown);
    /// `displayFrom`: the byte of the tag that its last part begins with.
    void showTag(store::TagCounts::Pointer shown, std::size_t displayFrom);
    void showName(std::string name, std::size_t displayFrom = 0);
};

/// A note in the archive belongs to that.
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
