// SPDX-License-Identifier: MIT
#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <QScrollBar>
#include <QtTest>
#include <random>
#include <string>

#include <doctest/doctest.h>

#include "desktop/result_list.h"
#include "desktop/result_model.h"

using namespace tessaly;
using desktop::ResultList;
using desktop::ResultModel;
using search::NotesViewItemPosition;
using search::SearchResultItem;
using search::SearchResultType;

namespace {

using Items = std::vector<SearchResultItem>;

/// "Plans: Paint Undated; Deep: Think": notes and their tasks, on lines from 1.
Items itemsOf(const std::string& text) {
    Items items;
    std::size_t line = 0;
    std::string note;
    std::string word;
    const auto add = [&](SearchResultType type) {
        SearchResultItem item;
        item.type = type;
        item.filename = item.groupFilename = note + ".txt";
        item.noteType = base::NoteType::note;
        item.title = item.content = word;
        item.position = NotesViewItemPosition::firstInGroup;
        if (type == SearchResultType::noteTodo) {
            item.lineIndex = ++line;
            item.lineType = grammar::TodoType::open;
            item.position = NotesViewItemPosition::last;
        }
        item.id = static_cast<std::int64_t>(items.size()) + 1;
        items.push_back(item);
        word.clear();
    };
    for (const char sign : text + " ") {
        if (sign == ':') {
            note = word;
            line = 0;
            add(SearchResultType::section);
        } else if (sign == ' ' || sign == ';') {
            if (!word.empty()) {
                add(SearchResultType::noteTodo);
            }
        } else {
            word += sign;
        }
    }
    return items;
}

app::ListView viewOf(const std::string& text, app::ListView::Rows rows) {
    app::ListView view;
    view.results.items = itemsOf(text);
    view.results.total = view.results.items.size();
    view.isFinal = true;
    view.rows = rows;
    return view;
}

std::string wordAt(const QModelIndex& index) {
    const auto* model = static_cast<const ResultModel*>(index.model());
    return index.isValid() ? model->item(index.row()).title : "-";
}

}  // namespace

TEST_CASE("rows stay the same rows, where their note changes") {
    const struct {
        const char* before;
        const char* after;
        const char* selected;
        const char* expected;
    } rows[] = {
        {"A: a b c", "A: a b c", "b", "b"},
        {"A: a b c", "A: new a b c", "b", "b"},
        {"A: a b c", "A: c b a", "b", "b"},
        {"A: a b c", "A: a bee c", "b", "bee"},                // edited on its line
        {"A: a buy c", "A: a buy@done c", "buy", "buy@done"},  // completed
        {"A: a buy", "A: a wash", "buy", "-"},                 // another task on its line
        {"A: a b; B: c", "B: c; A: a b", "b", "b"},            // the groups change places
        {"A: a a a", "A: a a", "a", "a"},
        {"A: a b; B: a b", "B: b a; A: x a", "b", "-"},
    };
    for (const auto& row : rows) {
        CAPTURE(row.before);
        CAPTURE(row.after);
        ResultModel model;
        const QAbstractItemModelTester tester(
            &model, QAbstractItemModelTester::FailureReportingMode::Fatal);
        model.show(itemsOf(row.before));
        QPersistentModelIndex selected;
        for (int each = model.rowCount(); each-- > 0;) {
            if (model.item(each).title == row.selected) {
                selected = model.index(each);
            }
        }
        const int oldRow = selected.row();
        const std::vector<int> newRows = model.show(itemsOf(row.after));
        CHECK(wordAt(selected) == row.expected);
        CHECK(newRows[static_cast<std::size_t>(oldRow)] == selected.row());
        CHECK(model.rowCount() == static_cast<int>(itemsOf(row.after).size()));
    }
}

TEST_CASE("any rows become any others by steps that a view can follow") {
    std::mt19937 engine(7);
    const auto random = [&engine](unsigned below) {
        return static_cast<unsigned>(engine() % below);
    };
    ResultModel model;
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    for (int round = 0; round < 400; ++round) {
        std::string text;
        for (unsigned note = random(4); note > 0; --note) {
            text += std::string(1, static_cast<char>('A' + random(4))) + ":";
            for (unsigned task = 1 + random(6); task > 0; --task) {
                text += " " + std::string(1 + random(2), static_cast<char>('a' + random(5)));
            }
            text += "; ";
        }
        CAPTURE(text);
        const Items items = itemsOf(text);
        std::vector<std::pair<QPersistentModelIndex, int>> before;
        for (int row = 0; row < model.rowCount(); ++row) {
            before.emplace_back(model.index(row), row);
        }
        const std::vector<int> newRows = model.show(items);
        REQUIRE(model.rowCount() == static_cast<int>(items.size()));
        for (int row = 0; row < model.rowCount(); ++row) {
            REQUIRE(model.item(row).title == items[static_cast<std::size_t>(row)].title);
            REQUIRE(model.item(row).filename == items[static_cast<std::size_t>(row)].filename);
        }
        for (const auto& [index, oldRow] : before) {
            REQUIRE(index.row() == newRows[static_cast<std::size_t>(oldRow)]);
        }
    }
}

TEST_CASE("the list keeps its place over changes, and moves on where the current row goes") {
    using Rows = app::ListView::Rows;
    ResultList list;
    list.resize(300, 200);
    list.show();
    std::string many = "A:";
    for (int task = 0; task < 60; ++task) {
        many += " task" + std::to_string(task);
    }
    list.setView(viewOf(many, Rows::ofAnother));
    list.setCurrentIndex(list.model()->index(30, 0));
    list.scrollTo(list.currentIndex(), QAbstractItemView::PositionAtCenter);
    const int top = list.visualRect(list.currentIndex()).top();
    CHECK(wordAt(list.currentIndex()) == "task29");

    list.setView(viewOf("B: early birds; " + many, Rows::again));
    CHECK(wordAt(list.currentIndex()) == "task29");
    CHECK(list.visualRect(list.currentIndex()).top() == top);

    std::string without = many;
    without.replace(without.find(" task29"), 7, "");
    list.setView(viewOf(without, Rows::again));
    CHECK(wordAt(list.currentIndex()) == "task30");
    CHECK(list.selectionModel()->isSelected(list.currentIndex()));

    list.setView(viewOf("C: other", Rows::ofAnother));
    CHECK_FALSE(list.currentIndex().isValid());
    CHECK(list.verticalScrollBar()->value() == 0);
}

TEST_CASE("letters and counts work on the rows that are meant") {
    const struct {
        const char* keys;
        const char* told;
    } rows[] = {
        {"jd", "completeTask a"},
        {"3jd", "completeTask c"},
        {"jjk-", "cancelTask a"},
        {"jxjxd", "completeTask a c"},
        {"jxxd", "completeTask a b"},
        {"j3>", "day 20190308 a"},
        {"j<", "day 20190304 a"},
        {"jt", "day 20190305 a"},
        {"u", "undoTask"},
        {"js", "ask a"},
        {"d", ""},
    };
    for (const auto& row : rows) {
        CAPTURE(row.keys);
        ResultList list;
        list.setToday(base::dayFromFileText("20190305").value_or(base::Day{}));
        list.show();
        list.setView(viewOf("A: a b; B: c d", app::ListView::Rows::ofAnother));
        std::string told;
        const auto tell = [&](const std::string& what,
                              const std::vector<tasks::TaskReference>& tasks) {
            told += what;
            for (const auto& task : tasks) {
                told += " " + task.text.value_or("?");
            }
        };
        QObject::connect(&list, &ResultList::gesture, &list, [&](app::CommandId id, const auto& t) {
            tell(std::string(app::commandName(id)), t);
        });
        QObject::connect(&list, &ResultList::scheduled, &list, [&](const auto& t, base::Day day) {
            tell("day " + base::fileText(day), t);
        });
        QObject::connect(&list, &ResultList::scheduleAsked, &list,
                         [&](const auto& t, const QRect&) { tell("ask", t); });
        QTest::keyClicks(&list, QString::fromLatin1(row.keys));
        CHECK(told == row.told);
    }
}
