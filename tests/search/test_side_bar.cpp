// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <doctest/doctest.h>

#include "search/side_bar.h"

using namespace tessaly;
using search::SideBar;
using search::SideBarItem;
using search::SideBarItemType;

namespace {

store::GeneralNotes::Pointer noteOf(std::string filename, std::string title, int modified = 0,
                                    int created = 0) {
    store::GeneralNote note;
    note.note.filename = std::move(filename);
    note.note.title = std::move(title);
    note.note.contentChangedDate = base::Instant() + std::chrono::seconds(modified);
    note.note.contentCreatedDate = base::Instant() + std::chrono::seconds(created);
    return std::make_shared<const store::GeneralNote>(std::move(note));
}

/// What a sidebar is to show, easy to change.
struct World {
    std::map<std::string, store::GeneralNotes::Pointer> notes;
    std::map<std::string, std::size_t> hashtags;
    std::map<std::string, std::size_t> mentions;
    std::vector<std::string> filters;
    base::SortType sortBy = base::SortType::title;

    void add(const store::GeneralNotes::Pointer& note) { notes[note->note.filename] = note; }

    search::SideBarNotes snapshots() const {
        std::vector<store::GeneralNotes::Pointer> items;
        for (const auto& [filename, note] : notes) {
            items.push_back(note);
        }
        return {std::make_shared<const store::GeneralNotes>(std::move(items)), countsOf(hashtags),
                countsOf(mentions), filters, sortBy};
    }

private:
    static std::shared_ptr<const store::TagCounts> countsOf(
        const std::map<std::string, std::size_t>& tags) {
        std::vector<store::TagCounts::Pointer> items;
        for (const auto& [tag, count] : tags) {
            items.push_back(std::make_shared<const store::TagCount>(store::TagCount{tag, count}));
        }
        return std::make_shared<const store::TagCounts>(std::move(items));
    }
};

std::string lineOf(const SideBarItem& item) {
    return std::string(item.displayText) + (item.count > 0 ? " " + std::to_string(item.count) : "");
}

std::string outlineOf(const SideBarItem::Rows& rows) {
    std::string text;
    for (const auto& row : rows) {
        text += std::string(static_cast<std::size_t>(row->subItemLevel) * 2, ' ') + lineOf(*row) +
                "\n" + outlineOf(row->subItems);
    }
    return text;
}

/// What is right below and in the row of a key.
std::string outlineBelow(const SideBar& bar, std::string_view key) {
    const SideBarItem* row = bar.find(key);
    return row != nullptr ? outlineOf(row->subItems) : "no such row";
}

using Addresses = std::map<std::string, const SideBarItem*>;

/// Each row by its key; checks what rows say of themselves on the way.
void gather(const SideBar& bar, const SideBarItem* parent, Addresses& found) {
    const auto& rows = parent != nullptr ? parent->subItems : bar.items();
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const SideBarItem& row = *rows[index];
        const std::string key = SideBar::keyOf(row);
        CAPTURE(key);
        const bool isConsistent =
            row.parent == parent && bar.indexOf(row) == index && bar.find(key) == &row &&
            row.isExpanded == bar.expanded().contains(key) &&
            row.subItemLevel == (parent != nullptr ? parent->subItemLevel + 1 : 0) &&
            row.isVisible() == (parent == nullptr || (parent->isVisible() && parent->isExpanded));
        CHECK(isConsistent);
        CHECK(found.emplace(key, &row).second);
        gather(bar, &row, found);
    }
}

/// A view's copy of the tree, kept by nothing but what the observer is told.
class Mirror final : public search::SideBarObserver {
public:
    explicit Mirror(const SideBar& bar) {
        for (const auto& row : bar.items()) {
            copy(*row);
        }
    }

    void willInsert(const SideBarItem&, std::size_t first, std::size_t count) override {
        _first = first;
        _count = count;
    }
    void didInsert(const SideBarItem& parent) override {
        for (std::size_t index = _first; index < _first + _count; ++index) {
            auto& rows = _rows[&parent];
            const SideBarItem& row = *parent.subItems[index];
            rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(index), &row);
            CHECK(row.subItems.empty());
            _lines[&row] = lineOf(row);
        }
    }
    void willRemove(const SideBarItem& parent, std::size_t first, std::size_t count) override {
        auto& rows = _rows[&parent];
        const auto at = rows.begin() + static_cast<std::ptrdiff_t>(first);
        const auto end = at + static_cast<std::ptrdiff_t>(count);
        CHECK(std::all_of(at, end, [this](const auto* row) { return _rows[row].empty(); }));
        rows.erase(at, end);
    }
    void didRemove(const SideBarItem&) override {}
    void willMove(const SideBarItem& parent, std::size_t from, std::size_t to) override {
        auto& rows = _rows[&parent];
        const SideBarItem* row = rows[from];
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(from));
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(to), row);
    }
    void didMove(const SideBarItem&) override {}
    void willReorder(const SideBarItem&) override {}
    void didReorder(const SideBarItem& parent) override {
        auto before = _rows[&parent];
        auto& now = _rows[&parent];
        std::transform(parent.subItems.begin(), parent.subItems.end(), now.begin(),
                       [](const auto& row) { return row.get(); });
        CHECK(std::is_permutation(now.begin(), now.end(), before.begin(), before.end()));
    }
    void changed(const SideBarItem& item) override { _lines[&item] = lineOf(item); }

    void checkEquals(const SideBarItem::Rows& rows) {
        for (const auto& row : rows) {
            const auto& mine = _rows[row.get()];
            const bool isSame =
                std::equal(mine.begin(), mine.end(), row->subItems.begin(), row->subItems.end(),
                           [](const auto* a, const auto& b) { return a == b.get(); });
            CAPTURE(row->text);
            CHECK(isSame);
            CHECK(_lines[row.get()] == lineOf(*row));
            checkEquals(row->subItems);
        }
    }

private:
    void copy(const SideBarItem& item) {
        _lines[&item] = lineOf(item);
        for (const auto& row : item.subItems) {
            _rows[&item].push_back(row.get());
            copy(*row);
        }
    }

    std::map<const SideBarItem*, std::vector<const SideBarItem*>> _rows;
    std::map<const SideBarItem*, std::string> _lines;
    std::size_t _first = 0;
    std::size_t _count = 0;
};

template <class List>
const auto& anyOf(const List& list, std::mt19937& engine) {
    return list[engine() % list.size()];
}

void changeNotes(World& world, std::mt19937& engine) {
    static const std::vector<std::string> folders{
        "", "a/", "A/", "a/b/", "Z/y/x/", "Archive/", "Archive/q/", "Äpfel/", "a/b/c/"};
    static const std::vector<std::string> titles{"Plan", "plan", "Ähre", "A\u0308hre", "zebra", ""};
    const std::size_t count = engine() % 8 == 0 ? 60 : engine() % 4;
    for (std::size_t change = 0; change < count; ++change) {
        const std::string name =
            anyOf(folders, engine) + static_cast<char>('a' + engine() % 12) + ".txt";
        if (engine() % 3 == 0) {
            world.notes.erase(name);
        } else {
            world.add(noteOf(name, anyOf(titles, engine), static_cast<int>(engine() % 4),
                             static_cast<int>(engine() % 4)));
        }
    }
    std::string folder = anyOf(folders, engine);
    if (engine() % 3 == 0 && !folder.empty()) {
        folder.pop_back();
        if (engine() % 2 == 0) {
            world.notes.erase(folder);
        } else {
            world.add(store::folderOfNotes(folder));
        }
    }
}

void changeTags(std::map<std::string, std::size_t>& tags, char sign, std::mt19937& engine) {
    static const std::vector<std::string> names{
        "a", "a/b", "a/b/c", "a/b(1/2)", "zoë", "b//c", "ärger", "b/", "b", "a-x", "z/ä/é", "7"};
    const std::string tag = sign + anyOf(names, engine);
    if (engine() % 3 == 0) {
        tags.erase(tag);
    } else {
        tags[tag] = 1 + engine() % 5;
    }
}

void changeSomething(World& world, std::mt19937& engine) {
    changeNotes(world, engine);
    changeTags(world.hashtags, '#', engine);
    changeTags(world.mentions, '@', engine);
    static const std::vector<std::string> filters{"Today", "today", "Work", "Übrig"};
    const std::string& filter = anyOf(filters, engine);
    if (std::erase(world.filters, filter) == 0) {
        world.filters.push_back(filter);
    }
    if (engine() % 10 == 0) {
        world.sortBy = static_cast<base::SortType>(engine() % 3);
    }
}

}  // namespace

TEST_CASE("after any changes the tree is the one that is made anew, and views can follow") {
    const search::SideBarKeys expanded{"section:Notes", "folder:a/b", "hashtag:#a"};
    std::mt19937 engine(42);
    World world;
    SideBar bar(expanded);
    Mirror mirror(bar);
    bar.setObserver(&mirror);
    Addresses before;
    for (int round = 0; round < 250; ++round) {
        CAPTURE(round);
        changeSomething(world, engine);
        bar.update(world.snapshots());

        SideBar anew(expanded);
        anew.update(world.snapshots());
        REQUIRE(outlineOf(bar.items()) == outlineOf(anew.items()));
        mirror.checkEquals(bar.items());
        Addresses now;
        gather(bar, nullptr, now);
        for (const auto& row : now) {
            CAPTURE(row.first);
            CHECK((!before.contains(row.first) || before[row.first] == row.second));
        }
        before = std::move(now);
    }
}

TEST_CASE("notes stand under their folders, in order") {
    World world;
    world.add(noteOf("1.txt", "beta", 30, 1));
    world.add(noteOf("2.txt", "Alpha", 10, 3));
    world.add(noteOf("3.txt", "alpha", 20, 3));
    world.add(noteOf("4.txt", "Bravo", 20, 2));
    world.add(noteOf("Work/Plans/May.txt", "May", 5, 5));
    world.add(noteOf("Archive/Old.txt", "Old", 5, 5));
    world.add(noteOf("Archive/2018/Older.txt", "Older", 5, 5));
    world.add(store::folderOfNotes("empty"));
    world.add(store::folderOfNotes("Archive"));
    const std::string folders = "  Inbox\n  Recent\n  empty\n  Work 1\n    Plans 1\n      May\n";
    const std::string archive = "  Archive 2\n    2018 1\n      Older\n    Old\n  Trash\n";
    struct Row {
        base::SortType sortBy;
        std::string_view notes;
    };
    SideBar bar({});
    for (const Row& row : {Row{base::SortType::title, "  Alpha\n  alpha\n  beta\n  Bravo\n"},
                           Row{base::SortType::modified, "  beta\n  alpha\n  Bravo\n  Alpha\n"},
                           Row{base::SortType::created, "  Alpha\n  alpha\n  Bravo\n  beta\n"}}) {
        world.sortBy = row.sortBy;
        bar.update(world.snapshots());
        CHECK(outlineBelow(bar, "section:Notes") == folders + std::string(row.notes) + archive);
    }
    const SideBarItem* may = bar.find("note:Work/Plans/May.txt");
    REQUIRE(may != nullptr);
    CHECK(bar.parentIndex(*may) == 0);
    CHECK(bar.parentIndex(*may->parent) == 3);
    CHECK(bar.parentIndex(*bar.find("folder:Work")) == 1);
    CHECK(search::menuOf(*may) == search::SideBarMenu::notes);
    CHECK(search::menuOf(*bar.find("note:Archive/2018/Older.txt")) == search::SideBarMenu::archive);
}

TEST_CASE("tags nest, and stand by name") {
    struct Row {
        std::map<std::string, std::size_t> tags;
        std::string_view outline;
    };
    const Row rows[] = {
        {{{"#work", 3}, {"#work/launch", 2}, {"#home", 1}}, "  #home 1\n  #work 3\n    launch 2\n"},
        {{{"#a", 2}, {"#a/b(c/d)", 1}, {"#a/b", 1}}, "  #a 2\n    b 1\n    b(c/d) 1\n"},
        {{{"#z", 1}, {"#älter", 1}, {"#a\u0308rger", 1}, {"#alt", 1}},
         "  #alt 1\n  #z 1\n  #älter 1\n  #a\u0308rger 1\n"},
        {{{"#deep/er/est", 1}}, "  #deep\n    er\n      est 1\n"},
        {{{"#a", 1}, {"#a/", 1}, {"#a//b", 1}}, "  #a 1\n    / 1\n    /b 1\n"},
    };
    SideBar bar({});
    for (const Row& row : rows) {
        World world;
        world.hashtags = row.tags;
        bar.update(world.snapshots());
        CHECK(outlineBelow(bar, "section:Hashtags") == row.outline);
    }
}

TEST_CASE("flat lists of tags have the order of the tree") {
    std::vector<std::string> tags{"#b", "#a-b", "#a/c", "#a", "#a/b/x", "#a/b", "#a(1/2)", "#ä"};
    World world;
    for (const std::string& tag : tags) {
        world.hashtags[tag] = 1;
    }
    SideBar bar({});
    bar.update(world.snapshots());
    std::vector<std::string> inTree;
    const auto walk = [&](const auto& self, const SideBarItem& parent) -> void {
        for (const auto& row : parent.subItems) {
            inTree.emplace_back(row->text);
            self(self, *row);
        }
    };
    walk(walk, *bar.find("section:Hashtags"));
    std::sort(tags.begin(), tags.end(), search::tagComesBefore);
    CHECK(tags == inTree);
}

TEST_CASE("what was expanded is so again when it comes back") {
    World world;
    world.add(noteOf("Work/May.txt", "May"));
    SideBar bar({});
    bar.update(world.snapshots());
    bar.setExpanded(*bar.find("section:Notes"), true);
    bar.setExpanded(*bar.find("folder:Work"), true);
    CHECK(bar.find("note:Work/May.txt")->isVisible());

    bar.update(World().snapshots());
    CHECK(bar.find("folder:Work") == nullptr);
    SideBar nextRun(bar.expanded());
    for (SideBar* one : {&bar, &nextRun}) {
        one->update(world.snapshots());
        CHECK(one->find("note:Work/May.txt")->isVisible());
    }
    bar.setExpanded(*bar.find("section:Notes"), false);
    CHECK(bar.expanded() == search::SideBarKeys{"folder:Work"});
    CHECK(!bar.find("note:Work/May.txt")->isVisible());
}
