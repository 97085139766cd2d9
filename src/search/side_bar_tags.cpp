// SPDX-License-Identifier: MIT
#include "search/side_bar_tags.h"

#include <memory>
#include <utility>
#include <vector>

#include "grammar/tags.h"
#include "store/snapshot_difference.h"

namespace tessaly::search {
namespace {

// The byte of a tag that its last part begins with.
std::size_t lastPartOf(const SideBarItem& parent, bool isNested, std::string_view tag) {
    if (!isNested) {
        return 0;
    }
    const std::size_t slash = parent.text.size();
    return slash + 1 < tag.size() ? slash + 1 : slash;
}

}  // namespace

void SideBarTags::update(const store::TagCounts& before, const store::TagCounts& after) {
    std::vector<std::string_view> gone;
    store::forEachDifference<store::ByTag>(before, after, [&](const auto& old, const auto& now) {
        if (!now) {
            gone.push_back(old->tag);
            return;
        }
        SideBarItem& row = madeTag(now->tag);
        row.showTag(now, row.text.size() - row.displayText.size());
        _rows.touch(row);
    });
    // Children stand behind their parents, which stay for as long as they have any.
    for (auto at = gone.rbegin(); at != gone.rend(); ++at) {
        remove(*at);
    }
}

SideBarItem* SideBarTags::child(const SideBarItem& parent, std::string_view tag) const {
    SideBarItem like(_type);
    like.text = tag;
    return _rows.find(parent, like);
}

SideBarItem* SideBarTags::tag(std::string_view tag) const {
    SideBarItem* row = &_header;
    for (const std::string& part : grammar::withParents(tag)) {
        row = child(*row, part);
        if (row == nullptr) {
            break;
        }
    }
    return row;
}

SideBarItem& SideBarTags::madeTag(std::string_view tag) {
    SideBarItem* row = &_header;
    for (std::string& part : grammar::withParents(tag)) {
        SideBarItem* known = child(*row, part);
        if (known == nullptr) {
            auto made = std::make_unique<SideBarItem>(_type);
            const std::size_t lastPart = lastPartOf(*row, row != &_header, part);
            made->showName(std::move(part), lastPart);
            known = &_rows.insert(*row, std::move(made));
        }
        row = known;
    }
    return *row;
}

void SideBarTags::remove(std::string_view tag) {
    SideBarItem* row = this->tag(tag);
    row->showName(std::string(row->text), row->text.size() - row->displayText.size());
    row->count = 0;
    _rows.touch(*row);
    while (row != &_header && row->count == 0 && row->subItems.empty()) {
        SideBarItem* parent = row->parent;
        _rows.remove(*row);
        row = parent;
    }
}

}  // namespace tessaly::search
