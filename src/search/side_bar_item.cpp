// SPDX-License-Identifier: MIT
#include "search/side_bar_item.h"

#include <algorithm>
#include <utility>

namespace tessaly::search {
namespace {

struct MenuOfType {
    SideBarItemType type;
    SideBarMenu menu;
};
// Types that are not here have the menu of the whole sidebar.
constexpr std::array menus{
    MenuOfType{SideBarItemType::calendar, SideBarMenu::calendar},
    MenuOfType{SideBarItemType::today, SideBarMenu::calendar},
    MenuOfType{SideBarItemType::week, SideBarMenu::calendar},
    MenuOfType{SideBarItemType::events, SideBarMenu::calendar},
    MenuOfType{SideBarItemType::notes, SideBarMenu::notes},
    MenuOfType{SideBarItemType::folder, SideBarMenu::notes},
    MenuOfType{SideBarItemType::note, SideBarMenu::notes},
    MenuOfType{SideBarItemType::inbox, SideBarMenu::inbox},
    MenuOfType{SideBarItemType::recent, SideBarMenu::recents},
    MenuOfType{SideBarItemType::archive, SideBarMenu::archive},
    MenuOfType{SideBarItemType::trash, SideBarMenu::trash},
    MenuOfType{SideBarItemType::viewHeader, SideBarMenu::views},
    MenuOfType{SideBarItemType::view, SideBarMenu::views},
    MenuOfType{SideBarItemType::hashtagHeader, SideBarMenu::hashtags},
    MenuOfType{SideBarItemType::hashtag, SideBarMenu::hashtags},
    MenuOfType{SideBarItemType::attagHeader, SideBarMenu::mentions},
    MenuOfType{SideBarItemType::attag, SideBarMenu::mentions},
};

bool isInArchive(const SideBarItem& item) {
    const SideBarItem* row = &item;
    while (row != nullptr && row->type != SideBarItemType::archive) {
        row = row->parent;
    }
    return row != nullptr;
}

}  // namespace

bool SideBarItem::isVisible() const {
    const SideBarItem* above = parent;
    while (above != nullptr && above->isExpanded) {
        above = above->parent;
    }
    return above == nullptr;
}

const store::LoadedNote* SideBarItem::note() const {
    const auto* held = std::get_if<store::GeneralNotes::Pointer>(&object);
    return held != nullptr ? &(*held)->note : nullptr;
}

void SideBarItem::showNote(store::GeneralNotes::Pointer shown) {
    text = shown->note.filename;
    displayText = shown->note.title;
    object = std::move(shown);
}

void SideBarItem::showTag(store::TagCounts::Pointer shown, std::size_t displayFrom) {
    text = shown->tag;
    displayText = text.substr(displayFrom);
    count = shown->notes;
    object = std::move(shown);
}

void SideBarItem::showName(std::string name, std::size_t displayFrom) {
    auto held = std::make_shared<const std::string>(std::move(name));
    text = *held;
    displayText = text.substr(displayFrom);
    object = std::move(held);
}

SideBarMenu menuOf(const SideBarItem& item) {
    if (isInArchive(item)) {
        return SideBarMenu::archive;
    }
    const auto* row = std::find_if(menus.begin(), menus.end(),
                                   [&](const MenuOfType& one) { return one.type == item.type; });
    return row == menus.end() ? SideBarMenu::root : row->menu;
}

}  // namespace tessaly::search
