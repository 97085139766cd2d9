// SPDX-License-Identifier: MIT
// Notes and folders in the sidebar as a user drags and names them.
#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/qt_text.h"
#include "desktop/side_bar_model.h"
#include "desktop/side_bar_tree.h"
#include "desktop/window_fixture.h"

using namespace tessaly;
using desktop::SideBarModel;
using desktop::SideBarTree;
using tests::until;
using tests::WindowFixture;

namespace {

/// As the toolkit does it while the mouse is held down; false: it may not be let go there.
bool drag(SideBarTree& tree, const QModelIndex& from, const QModelIndex& to) {
    tree.scrollTo(to);
    const std::unique_ptr<QMimeData> data(tree.model()->mimeData({from}));
    QWidget* const port = tree.viewport();
    const QPoint place = tree.visualRect(to).center();
    REQUIRE(port->rect().contains(place));
    QDragEnterEvent enter(place, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(port, &enter);
    QDragMoveEvent move(place, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(port, &move);
    if (!enter.isAccepted() || !move.isAccepted()) {
        QDragLeaveEvent leave;
        QApplication::sendEvent(port, &leave);
        return false;
    }
    QDropEvent drop(place, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(port, &drop);
    return true;
}

/// The rows of that text below the notes, in sight.
QModelIndex rowOf(SideBarTree& tree, std::string_view words) {
    const QModelIndex index = WindowFixture::row(tree, words);
    CAPTURE(words);
    REQUIRE(index.isValid());
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent()) {
        tree.expand(above);
    }
    return index;
}

constexpr const char* notes =
    "-- Notes/Plans.txt\nplans\n-- Notes/Work/Budget.txt\nbudget\n"
    "-- Notes/Work/Deep/Figures.txt\nfigures\n-- Notes/Home/Garden.txt\ngarden\n";

}  // namespace

TEST_CASE("what is dragged onto a folder is moved there, and that is taken back") {
    struct Row {
        const char* dragged;
        const char* onto;
        std::vector<std::pair<std::string, std::string>> moved;  // file names, below the notes
    };
    const Row rows[] = {
        {"plans", "Work", {{"Plans.txt", "Work/Plans.txt"}}},
        {"plans", "budget", {{"Plans.txt", "Work/Plans.txt"}}},  // among what lies there
        {"figures", "Home", {{"Work/Deep/Figures.txt", "Home/Figures.txt"}}},
        {"garden", "Notes", {{"Home/Garden.txt", "Garden.txt"}}},
        {"Home", "Deep", {{"Home/Garden.txt", "Work/Deep/Home/Garden.txt"}}},
        {"Work",
         "Home",
         {{"Work/Budget.txt", "Home/Work/Budget.txt"},
          {"Work/Deep/Figures.txt", "Home/Work/Deep/Figures.txt"}}},
    };
    for (const Row& row : rows) {
        CAPTURE(row.moved.front().second);
        WindowFixture user{notes};
        user.start();
        const auto before = user.home().everything("planner");
        auto& tree = user.view<SideBarTree>();
        CHECK(drag(tree, rowOf(tree, row.dragged), rowOf(tree, row.onto)));
        CHECK(user.wordsLike("Moved") != std::nullopt);
        for (const auto& [from, to] : row.moved) {
            CHECK(user.textOf("Notes/" + from) == "-");
            CHECK(user.textOf("Notes/" + to) != "-");
        }
        user.click("Undo");
        const QString name = desktop::qt(row.dragged);
        CHECK(until([&] { return rowOf(tree, row.dragged).data().toString() == name; }));
        for (const auto& [from, to] : row.moved) {
            const std::string file = "Notes/" + from;
            CHECK(until([&] { return user.textOf(file) != "-"; }));
        }
        user.end();
        CHECK(user.home().everything("planner") == before);
    }
}

TEST_CASE(
    "a menu is about the row below it, beside the rows about all notes, and leaves no trace") {
    WindowFixture user{notes};
    user.start();
    user.openNote("Plans.txt");
    auto& tree = user.view<SideBarTree>();
    const QString current = tree.currentIndex().data().toString();
    const struct {
        const char* row;  // empty: below the last one
        const char* action;
    } rows[] = {
        {"Work", "Show in List"}, {"Notes", "New Folder…"}, {"", "New Folder…"}, {"Today", "Open"}};
    for (const auto& row : rows) {
        CAPTURE(std::string(row.row));
        const bool isBeside = *row.row == '\0';
        const QPoint place = isBeside ? QPoint(20, tree.viewport()->height() - 3)
                                      : tree.visualRect(rowOf(tree, row.row)).center();
        REQUIRE(tree.indexAt(place).isValid() != isBeside);
        QContextMenuEvent event(QContextMenuEvent::Mouse, place,
                                tree.viewport()->mapToGlobal(place));
        QApplication::sendEvent(tree.viewport(), &event);
        auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        REQUIRE(menu != nullptr);
        QStringList actions;
        for (const QAction* action : menu->actions()) {
            actions.append(action->text());
        }
        CHECK(actions.contains(desktop::qt(row.action)));
        QTest::keyClick(menu, Qt::Key_Escape);
        CHECK(until([&] { return tree.currentIndex().data().toString() == current; }));
    }
}

TEST_CASE("what is typed into the open note goes along when the note is dragged") {
    WindowFixture user{notes};
    user.start();
    user.openNote("Plans.txt");
    user.press("Ctrl+End");
    user.type("typed ");
    auto& tree = user.view<SideBarTree>();
    CHECK(drag(tree, rowOf(tree, "plans"), rowOf(tree, "Work")));
    user.focusEditor();
    user.type("late");
    CHECK(user.textOf("Notes/Work/Plans.txt", "plans\ntyped late") == "plans\ntyped late");
    user.end();
    CHECK(user.textOf("Notes/Plans.txt") == "-");
}

TEST_CASE("what cannot lie there is not taken, and nothing changes") {
    WindowFixture user{notes};
    user.start();
    user.press("Ctrl+Shift+F");
    user.type("budget");
    user.click("Save as view (Ctrl+Shift+S)");
    user.type("Money");
    user.press("Return");
    auto& tree = user.view<SideBarTree>();
    rowOf(tree, "Money");
    const auto before = user.home().everything("planner");
    const struct {
        const char* dragged;
        const char* onto;
    } rows[] = {
        {"plans", "plans"}, {"plans", "Money"},  {"Home", "Money"}, {"budget", "Work"},
        {"plans", "Notes"}, {"plans", "Today"},  {"Work", "Work"},  {"Work", "Deep"},
        {"Deep", "Work"},   {"Work", "figures"}, {"Home", "Notes"},
    };
    for (const auto& row : rows) {
        const std::string what = std::string(row.dragged) + " onto " + row.onto;
        CAPTURE(what);
        CHECK_FALSE(drag(tree, rowOf(tree, row.dragged), rowOf(tree, row.onto)));
    }
    user.end();
    CHECK(user.home().everything("planner") == before);
}

TEST_CASE("a name is given once, however soon the keyboard goes elsewhere") {
    static int warnings = 0;
    warnings = 0;
    const auto before =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
            warnings += type == QtWarningMsg && text.startsWith(QLatin1String("QAbstract")) ? 1 : 0;
        });
    WindowFixture user{notes};
    user.start();
    auto& tree = user.view<SideBarTree>();
    user.openNote("Plans.txt");
    QSignalSpy asked(tree.model(), SIGNAL(renameAsked(QString, QString)));
    user.press("F2");
    user.type("Aims");
    user.press("Return");
    user.focusEditor();
    CHECK(user.wordsLike("Renamed") != std::nullopt);
    CHECK(asked.count() == 1);
    CHECK(warnings == 0);
    qInstallMessageHandler(before);
}

TEST_CASE("the row that has the keys gets another name, whatever note is open") {
    WindowFixture user{notes};
    user.start();
    user.openNote("Plans.txt");
    auto& tree = user.view<SideBarTree>();
    tree.setCurrentIndex(rowOf(tree, "Home"));
    tree.setFocus();
    user.press("F2");
    user.type("House");
    user.press("Return");
    CHECK(user.textOf("Notes/House/Garden.txt", "garden\n") == "garden\n");
    CHECK(user.textOf("Notes/Plans.txt") == "plans\n");
}
