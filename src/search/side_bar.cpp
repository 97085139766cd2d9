// SPDX-License-Identifier: MIT
#include "search/side_bar.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "base/localisation.h"

namespace tessaly::search {
namespace {

using base::N_;

enum class Level { top, below };

struct FixedRow {
    Level level;
    SideBarItemType type;
    std::string_view name;
    const char* title;  ///< English, to be translated
};

// In display order; those below belong to the one on top before them.
constexpr std::array fixedRows{
    FixedRow{Level::top, SideBarItemType::calendar, base::rawValue(StickySideBarItem::Calendar),
             N_("Calendar")},
    FixedRow{Level::below, SideBarItemType::today, "today", N_("Today")},
    FixedRow{Level::below, SideBarItemType::week, "week", N_("Week")},
    FixedRow{Level::top, SideBarItemType::notes, base::rawValue(StickySideBarItem::Notes),
             N_("Notes")},
    FixedRow{Level::below, SideBarItemType::inbox, "inbox", N_("Inbox")},
    FixedRow{Level::below, SideBarItemType::recent, "recent", N_("Recent")},
    FixedRow{Level::below, SideBarItemType::archive, SideBarFolders::archiveFolder, N_("Archive")},
    FixedRow{Level::below, SideBarItemType::trash, "trash", N_("Trash")},
    FixedRow{Level::top, SideBarItemType::viewHeader, "Views", N_("Views")},
    FixedRow{Level::top, SideBarItemType::hashtagHeader, "Hashtags", N_("Hashtags")},
    FixedRow{Level::top, SideBarItemType::attagHeader, "Mentions", N_("Mentions")},
    FixedRow{Level::top, SideBarItemType::preferences,
             base::rawValue(StickySideBarItem::Preferences), N_("Preferences")},
    FixedRow{Level::top, SideBarItemType::help, base::rawValue(StickySideBarItem::Help),
             N_("Help")},
    FixedRow{Level::below, SideBarItemType::help, base::rawValue(StickySideBarItem::helpMarkdown),
             N_("Markdown")},
};

// The name and the title are held as one text.
std::unique_ptr<SideBarItem> rowOf(const FixedRow& fixed) {
    auto row = std::make_unique<SideBarItem>(fixed.type);
    row->showName(std::string(fixed.name) + base::tr(fixed.title), fixed.name.size());
    row->text = row->text.substr(0, fixed.name.size());
    return row;
}

SideBarRows rowsWithFixed(SideBarKeys expanded) {
    SideBarRows rows(std::move(expanded));
    for (const FixedRow& fixed : fixedRows) {
        auto row = rowOf(fixed);
        if (fixed.level == Level::top) {
            row->isExpanded = rows.expanded().contains(sideBarKey(*row));
            rows.top().push_back(std::move(row));
        } else {
            rows.insert(*rows.top().back(), std::move(row));
        }
    }
    return rows;
}

SideBarItem& ofType(const SideBarItem::Rows& rows, SideBarItemType type) {
    return **std::find_if(rows.begin(), rows.end(),
                          [type](const auto& row) { return row->type == type; });
}

template <class Snapshot>
const Snapshot& orEmpty(const std::shared_ptr<const Snapshot>& snapshot) {
    static const Snapshot empty;
    return snapshot ? *snapshot : empty;
}

}  // namespace

SideBar::SideBar(SideBarKeys expanded)
    : _rows(rowsWithFixed(std::move(expanded))),
      _views(ofType(items(), SideBarItemType::viewHeader)),
      _folders(_rows, ofType(items(), SideBarItemType::notes),
               ofType(ofType(items(), SideBarItemType::notes).subItems, SideBarItemType::archive)),
      _hashtags(_rows, ofType(items(), SideBarItemType::hashtagHeader), SideBarItemType::hashtag),
      _mentions(_rows, ofType(items(), SideBarItemType::attagHeader), SideBarItemType::attag) {}

void SideBar::update(const SideBarNotes& notes) {
    if (notes.sortBy != _rows.sortBy()) {
        _rows.setSortBy(notes.sortBy);
        _folders.sortNotes();
    }
    _folders.update(orEmpty(_notes.generalNotes), orEmpty(notes.generalNotes));
    _hashtags.update(orEmpty(_notes.hashtags), orEmpty(notes.hashtags));
    _mentions.update(orEmpty(_notes.mentions), orEmpty(notes.mentions));
    updateViews(notes.filters);
    _notes = notes;
    _rows.tellChanges();
}

void SideBar::updateViews(const std::vector<std::string>& filters) {
    const auto isIn = [](const std::vector<std::string>& names, const std::string& name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    for (const std::string& name : _notes.filters) {
        SideBarItem* row = isIn(filters, name) ? nullptr : viewRow(name);
        if (row != nullptr) {
            _rows.remove(*row);
        }
    }
    for (const std::string& name : filters) {
        if (!isIn(_notes.filters, name)) {
            auto row = std::make_unique<SideBarItem>(SideBarItemType::view);
            row->showName(name);
            _rows.insert(_views, std::move(row));
        }
    }
}

int SideBar::parentIndex(const SideBarItem& item) const {
    return item.parent == nullptr ? -1 : static_cast<int>(indexOf(*item.parent));
}

SideBarItem* SideBar::fixedRow(std::string_view name) const {
    SideBarItem* top = nullptr;
    for (const FixedRow& fixed : fixedRows) {
        SideBarItem like(fixed.type);
        like.text = fixed.name;
        const bool isTop = fixed.level == Level::top;
        SideBarItem* row = isTop ? &ofType(items(), fixed.type) : _rows.find(*top, like);
        if (fixed.name == name) {
            return row;
        }
        top = isTop ? row : top;
    }
    return nullptr;
}

SideBarItem* SideBar::noteRow(std::string_view filename) const {
    const auto note = orEmpty(_notes.generalNotes).find(filename);
    return note ? _folders.note(note) : nullptr;
}

SideBarItem* SideBar::viewRow(std::string_view name) const {
    SideBarItem like(SideBarItemType::view);
    like.text = name;
    return _rows.find(_views, like);
}

SideBarItem* SideBar::find(std::string_view key) const {
    const std::size_t end = std::min(key.find(':'), key.size());
    const std::string_view name = key.substr(std::min(end + 1, key.size()));
    SideBarItem* row = nullptr;
    switch (
        base::fromRawValue<SideBarItemType>(key.substr(0, end)).value_or(SideBarItemType::empty)) {
        case SideBarItemType::folder: row = _folders.folder(name); break;
        case SideBarItemType::note: row = noteRow(name); break;
        case SideBarItemType::hashtag: row = _hashtags.tag(name); break;
        case SideBarItemType::attag: row = _mentions.tag(name); break;
        case SideBarItemType::view: row = viewRow(name); break;
        default: row = fixedRow(name); break;
    }
    return row != nullptr && keyOf(*row) == key ? row : nullptr;
}

}  // namespace tessaly::search
