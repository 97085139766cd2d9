// SPDX-License-Identifier: MIT
#include <QAbstractItemModelTester>
#include <QMimeData>
#include <QSignalSpy>
#include <QTreeView>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/qt_text.h"
#include "desktop/side_bar_model.h"
#include "store/cached_notes.h"

using namespace tessaly;
using desktop::qt;
using desktop::SideBarModel;
using search::SideBarItem;

namespace {

/// Notes and tags by name, as the tree takes them; a note's value is its date of change.
struct Planned {
    std::map<std::string, int> notes;
    std::map<std::string, std::size_t> tags;
    std::vector<std::string> filters;
    base::SortType sortBy = base::SortType::modified;

    search::SideBarNotes snapshot() const {
        std::vector<store::GeneralNotes::Pointer> general;
        for (const auto& [name, changed] : notes) {
            store::GeneralNote note;
            note.note.filename = name;
            note.note.title = name;
            note.note.contentChangedDate = base::Instant(std::chrono::seconds(changed));
            general.push_back(std::make_shared<const store::GeneralNote>(std::move(note)));
        }
        std::vector<store::TagCounts::Pointer> counts;
        for (const auto& [tag, number] : tags) {
            counts.push_back(std::make_shared<const store::TagCount>(store::TagCount{tag, number}));
        }
        return {std::make_shared<const store::GeneralNotes>(std::move(general)),
                std::make_shared<const store::TagCounts>(std::move(counts)), nullptr, filters,
                sortBy};
    }
};

Planned randomPlanned(std::mt19937& random) {
    const auto upTo = [&](int most) { return static_cast<int>(random() % (1U + unsigned(most))); };
    Planned planned;
    for (int count = upTo(60); count > 0; --count) {
        const char* const folders[] = {"", "Work/", "Work/Deep/", "Archive/", "Zoo/"};
        planned.notes[folders[upTo(4)] + std::to_string(upTo(40)) + ".txt"] = upTo(50);
    }
    for (int count = upTo(8); count > 0; --count) {
        planned.tags["#" + std::to_string(upTo(3)) + "/" + std::to_string(upTo(3))] =
            1 + static_cast<std::size_t>(upTo(3));
    }
    for (int count = upTo(3); count > 0; --count) {
        planned.filters.push_back("f" + std::to_string(count));
    }
    planned.sortBy = static_cast<base::SortType>(upTo(2));
    return planned;
}

void addRows(const SideBarModel& model, const QModelIndex& parent,
             std::vector<QPersistentModelIndex>& rows) {
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        rows.emplace_back(index);
        addRows(model, index, rows);
    }
}

/// Persistent indexes of all rows, with their keys.
std::map<std::string, QPersistentModelIndex> heldRows(const SideBarModel& model) {
    std::vector<QPersistentModelIndex> rows;
    addRows(model, {}, rows);
    std::map<std::string, QPersistentModelIndex> held;
    for (const QPersistentModelIndex& row : rows) {
        held.emplace(search::SideBar::keyOf(*SideBarModel::itemAt(row)), row);
    }
    return held;
}

}  // namespace

TEST_CASE("views follow every change of the sidebar's tree, and keep what they point at") {
    std::mt19937 random(7);
    search::SideBar sideBar({"section:Notes", "section:Hashtags", "folder:Work"});
    SideBarModel model(sideBar);
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    QTreeView view;
    view.setModel(&model);
    view.expandAll();
    for (int round = 0; round < 60; ++round) {
        CAPTURE(round);
        const auto held = heldRows(model);
        sideBar.update(randomPlanned(random).snapshot());
        model.flushChanges();
        view.expandAll();
        for (const auto& [key, row] : held) {
            const SideBarItem* item = sideBar.find(key);
            if (row.isValid()) {
                CHECK(SideBarModel::itemAt(row) == item);
                CHECK(model.index(row.row(), 0, row.parent()) == row);
            }
        }
    }
}

TEST_CASE("many rows that change are told in one signal") {
    Planned planned;
    for (int i = 0; i < 500; ++i) {
        planned.tags["#t" + std::to_string(i)] = 1;
    }
    search::SideBar sideBar({"section:Hashtags"});
    SideBarModel model(sideBar);
    sideBar.update(planned.snapshot());
    model.flushChanges();
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    planned.tags["#t0"] = 2;
    planned.tags["#t250"] = 2;
    planned.tags["#t499"] = 2;
    sideBar.update(planned.snapshot());
    model.flushChanges();
    REQUIRE(changes.count() == 1);
    const auto first = changes.front().at(0).toModelIndex();
    const auto last = changes.front().at(1).toModelIndex();
    for (const char* key : {"hashtag:#t0", "hashtag:#t250", "hashtag:#t499"}) {
        const int row = model.indexOfKey(key).row();
        CHECK(first.row() <= row);
        CHECK(row <= last.row());
    }
}

TEST_CASE("only what can lie in a folder is dropped onto it, and the tree stays as it is") {
    Planned planned;
    planned.notes = {{"a.txt", 1}, {"Work/b.txt", 1}, {"Work/Deep/c.txt", 1}};
    search::SideBar sideBar({});
    SideBarModel model(sideBar);
    sideBar.update(planned.snapshot());
    model.flushChanges();
    QSignalSpy moves(&model, &SideBarModel::moveAsked);
    QSignalSpy trashed(&model, &SideBarModel::trashAsked);
    struct Row {
        std::string dragged;
        std::string target;
        std::string folder;  // "-": cannot be dropped there
    };
    const Row rows[] = {
        {"note:a.txt", "folder:Work", "Work"},
        {"note:a.txt", "folder:Work/Deep", "Work/Deep"},
        {"note:a.txt", "section:Archive", "Archive"},
        {"note:a.txt", "section:Notes", "-"},
        {"note:a.txt", "note:Work/b.txt", "-"},
        {"note:a.txt", "section:today", "-"},
        {"note:Work/b.txt", "folder:Work", "-"},
        {"note:Work/b.txt", "section:Notes", ""},
        {"folder:Work", "folder:Work", "-"},
        {"folder:Work", "folder:Work/Deep", "-"},
        {"folder:Work/Deep", "section:Notes", ""},
        {"folder:Work", "section:Archive", "Archive"},
    };
    for (const Row& row : rows) {
        CAPTURE(row.dragged);
        CAPTURE(row.target);
        moves.clear();
        const std::unique_ptr<QMimeData> data(model.mimeData({model.indexOfKey(row.dragged)}));
        const QModelIndex target = model.indexOfKey(row.target);
        const bool canDrop = model.canDropMimeData(data.get(), Qt::MoveAction, -1, -1, target);
        CHECK(canDrop == (row.folder != "-"));
        CHECK_FALSE(model.dropMimeData(data.get(), Qt::MoveAction, -1, -1, target));
        REQUIRE(moves.count() == (canDrop ? 1 : 0));
        if (canDrop) {
            CHECK(moves.front().at(0).toString() == qt(row.dragged));
            CHECK(moves.front().at(1).toString() == qt(row.folder));
        }
    }
    const std::unique_ptr<QMimeData> data(model.mimeData({model.indexOfKey("note:a.txt")}));
    model.dropMimeData(data.get(), Qt::MoveAction, -1, -1, model.indexOfKey("section:trash"));
    CHECK(trashed.count() == 1);
}
