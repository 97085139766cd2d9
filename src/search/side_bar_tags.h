// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "search/side_bar_rows.h"
#include "store/cached_notes.h"

namespace tessaly::search {

/// The hashtags, or the mentions, of the sidebar, nested by "/". An argument belongs to the last
/// part. The row of a tag is there when a note holds the tag or one that is nested in it.
class SideBarTags {
public:
    /// `header` and the rows outlive it; `type`: `hashtag` or `attag`.
    SideBarTags(SideBarRows& rows, SideBarItem& header, SideBarItemType type)
        : _rows(rows), _header(header), _type(type) {}

    void update(const store::TagCounts& before, const store::TagCounts& after);
    /// Null: there is no such row.
    SideBarItem* tag(std::string_view tag) const;

private:
    SideBarItem& madeTag(std::string_view tag);
    SideBarItem* child(const SideBarItem& parent, std::string_view tag) const;
    void remove(std::string_view tag);

    SideBarRows& _rows;
    SideBarItem& _header;
    const SideBarItemType _type;
};

}  // namespace tessaly::search
