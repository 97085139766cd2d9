// SPDX-License-Identifier: MIT
#include "desktop/side_bar_rows.h"

#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using search::SideBarItem;
using Type = search::SideBarItemType;

void addFolders(const SideBarItem& item, QStringList& folders) {
    for (const auto& row : item.subItems) {
        if (row->type == Type::folder || row->type == Type::archive) {
            folders.push_back(qt(row->text));
            addFolders(*row, folders);
        } else if (row->type == Type::note) {
            // Folders stand before notes.
            break;
        }
    }
}

}  // namespace

app::ListRequest listOfRow(const SideBarItem& item) {
    const std::string name(item.text);
    const std::string title(item.displayText);
    switch (item.type) {
        case Type::view: return {{}, name, title};
        case Type::hashtag:
        case Type::attag: return {name, {}, name};
        case Type::inbox: return {"//inbox", {}, title};
        case Type::recent: return {"//recent", {}, title};
        default: return {"in:\"" + name + '"', {}, title};
    }
}

std::string keyOfList(const app::ListRequest& list) {
    if (!list.filter.empty()) {
        return viewKind + list.filter;
    }
    const std::string& query = list.query;
    if (query == "//inbox" || query == "//recent") {
        return "section:" + query.substr(2);
    }
    if (query.starts_with('#')) {
        return "hashtag:" + query;
    }
    if (query.starts_with('@')) {
        return "attag:" + query;
    }
    if (query.starts_with("in:\"") && query.ends_with('"') && query.size() > 5) {
        const std::string folder = query.substr(4, query.size() - 5);
        return (folder == "Archive" ? "section:" : folderKind) + folder;
    }
    return {};
}

std::string keyOfPlace(const app::Place& place, base::Day today) {
    switch (place.kind) {
        case app::Place::Kind::note: return noteKind + place.filename;
        case app::Place::Kind::week: return "section:week";
        default: return place.day == today ? "section:today" : "";
    }
}

std::string folderOfRow(const SideBarItem& item) {
    std::string name(item.text);
    if (item.type == Type::folder || item.type == Type::archive) {
        return name;
    }
    const std::size_t slash = name.rfind('/');
    return item.type == Type::note && slash != std::string::npos ? name.substr(0, slash)
                                                                 : std::string();
}

QStringList foldersOf(const search::SideBar& sideBar) {
    QStringList folders;
    for (const auto& top : sideBar.items()) {
        addFolders(*top, folders);
    }
    return folders;
}

bool isWithoutUse(const SideBarItem& item) {
    if (item.type == Type::preferences) {
        return true;
    }
    const bool canBeEmpty = item.type == Type::viewHeader || item.type == Type::hashtagHeader ||
                            item.type == Type::attagHeader;
    return canBeEmpty && item.subItems.empty();
}

}  // namespace tessaly::desktop
