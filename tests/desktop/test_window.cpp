// SPDX-License-Identifier: MIT
// The window as a user works with it: keys and clicks go in, files come out.
#include <QApplication>
#include <QLineEdit>
#include <QTextCursor>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>
#include <sys/stat.h>

#include "desktop/day_pane_view.h"
#include "desktop/folder_chooser.h"
#include "desktop/note_editor.h"
#include "desktop/note_pane.h"
#include "desktop/result_list.h"
#include "desktop/side_bar_tree.h"
#include "desktop/task_rows_view.h"
#include "desktop/version_differences.h"
#include "desktop/week_agenda_view.h"
#include "desktop/window_fixture.h"
#include "support/without_rights.h"

using namespace tessaly;
using namespace tessaly::desktop;
using tests::until;
using tests::WindowFixture;

namespace {

constexpr const char* today = WindowFixture::today;
constexpr const char* friday = WindowFixture::friday;
constexpr const char* done = " @done(2019-03-05 09:00)";

/// The line of the caret, in which it is shown as "|".
std::string caretLine(const NoteEditor& editor) {
    const QTextCursor caret = editor.textCursor();
    QString line = caret.block().text();
    line.insert(caret.positionInBlock(), u'|');
    return line.toStdString();
}

/// Whether some file below the data folder holds these words.
bool isSomewhere(const WindowFixture& user, std::string_view words) {
    for (const auto& [name, text] : user.home().everything("planner")) {
        if (text.find(words) != std::string::npos) {
            return true;
        }
    }
    return false;
}

}  // namespace

TEST_CASE("what is typed is in the file of the day, which is not made before") {
    WindowFixture user;
    user.start();
    CHECK(user.textOf(today) == "-");
    user.type("* Call Bob");
    user.press("Return");
    user.type("Ask Ann");
    CHECK(user.textOf(today, "* Call Bob\n* Ask Ann") == "* Call Bob\n* Ask Ann");
    CHECK(user.wordsLike("Saved") == "Saved");
    CHECK(tests::WindowFixture::row(user.view<DayPaneView>().rows(), "Ask Ann").isValid());
}

TEST_CASE("a task is ticked in the note and beside it, and what a list did is taken back") {
    WindowFixture user{"-- Calendar/20190305.txt\n* Call Bob\n* Ask Ann\n"};
    user.start();
    user.press("Ctrl+Home");
    user.press("Ctrl+Return");
    const std::string one = std::string("* [x] Call Bob") + done + "\n* Ask Ann\n";
    CHECK(user.textOf(today, one) == one);

    user.tick(user.view<DayPaneView>().rows(), "Ask Ann");
    const std::string both = one.substr(0, one.find('\n') + 1) + "* [x] Ask Ann" + done + "\n";
    CHECK(user.textOf(today, both) == both);
    CHECK(user.shown(both) == both);
    CHECK(user.wordsLike("Completed") != std::nullopt);

    user.click("Undo");
    CHECK(user.textOf(today, one) == one);
    CHECK(user.shown(one) == one);
}

TEST_CASE("what others write while one types is joined, and the caret stays in its place") {
    WindowFixture user{"-- Calendar/20190305.txt\nfirst\nsecond\nthird\n"};
    user.start();
    user.press("Ctrl+Home");
    user.press("Down");
    user.type("my ");
    user.write(today, "before\nfirst\nsecond\nthird\nbehind\n");
    user.type("own ");
    const std::string joined = "before\nfirst\nmy own second\nthird\nbehind\n";
    CHECK(user.shown(joined) == joined);
    CHECK(user.textOf(today, joined) == joined);
    CHECK(caretLine(user.editor()) == "my own |second");

    // The other's lines are no step of the user's.
    const std::string others = "before\nfirst\nsecond\nthird\nbehind\n";
    user.press("Ctrl+Z");
    user.press("Ctrl+Z");
    user.press("Ctrl+Z");
    CHECK(user.textOf(today, others) == others);
    user.press("Ctrl+Shift+Z");
    user.press("Ctrl+Shift+Z");
    CHECK(user.textOf(today, joined) == joined);
}

TEST_CASE("a save that fails is loud, and the window does not close without asking") {
    WindowFixture user{"-- Calendar/20190305.txt\nmine\n"};
    user.start();
    user.press("Ctrl+End");
    {
        const tests::WithoutRights noRights{user.home()};
        if (!noRights.effective()) {
            return;
        }
        user.type("unsaved");
        CHECK(user.wordsLike("Not saved") != std::nullopt);
        user.answer = 0;
        CHECK(!user.window().close());
        CHECK(user.window().isVisible());
        CHECK(user.asked == std::vector<std::string>{"The note could not be saved."});
        CHECK(user.textOf(today) == "mine\n");
        // Nor is it left for another note.
        user.press("Alt+PgDown");
        CHECK(user.asked.size() == 2);
        CHECK(user.shown() == "mine\nunsaved");
    }
    SUBCASE("it is tried again") {
        CHECK(user.textOf(today, "mine\nunsaved") == "mine\nunsaved");
        CHECK(user.wordsLike("Saved") == "Saved");
    }
    SUBCASE("the end tries it once more") {
        user.end();
        CHECK(user.textOf(today) == "mine\nunsaved");
    }
}

TEST_CASE("a conflict is seen, gone through and resolved") {
    constexpr const char* copy = "Notes/Plans.sync-conflict-20190304-101112-ABCDEFG.txt";
    WindowFixture user{"-- Notes/Plans.txt\none\ntwo\n"};
    user.write(copy, "one\n2\n");
    user.start();
    user.openNote("Plans.txt");
    user.press("Ctrl+End");
    user.type("three");
    SUBCASE("the other version is chosen") {
        user.click("1/2");
        CHECK(user.wordsLike("2/2") != std::nullopt);
        // It is shown as the note itself is.
        for (const auto* text : user.window().findChildren<NoteEditor*>()) {
            CHECK(text->font() == user.editor().font());
        }
        CHECK(user.textOf("Notes/Plans.txt") == "one\ntwo\nthree");
        user.click("Differences");
        const std::string differences = user.view<VersionDifferences>().toPlainText().toStdString();
        CHECK(differences.find("-three") != std::string::npos);
        user.click("Choose This");
        CHECK(user.textOf("Notes/Plans.txt", "one\n2\n") == "one\n2\n");
        CHECK(user.shown("one\n2\n") == "one\n2\n");
    }
    SUBCASE("both are joined, and what was not saved yet is in it") {
        user.click("Merge");
        const std::string all = "one\n2\nthree";
        CHECK(user.textOf("Notes/Plans.txt", all) == all);
        CHECK(user.shown(all) == all);
    }
    CHECK(until([&] { return user.textOf(copy) == "-"; }));
}

TEST_CASE("a search shows rows as one types, opens one at its line, and is kept as a view") {
    WindowFixture user{
        "-- Notes/Plans.txt\n# Plans\nx\n* Check the budget\n-- Notes/Other.txt\n* Sleep\n"};
    user.start();
    user.press("Ctrl+Shift+F");
    user.type("budg");
    auto& list = user.view<ResultList>();
    CHECK(WindowFixture::row(list, "Check the budget").isValid());
    CHECK(!WindowFixture::row(list, "Plans").model()->index(4, 0).isValid());
    user.press("Return");
    CHECK(until([&] { return list.hasFocus(); }));
    user.press("Return");
    CHECK(user.shown() == "# Plans\nx\n* Check the budget\n");
    CHECK(user.editor().textCursor().blockNumber() == 2);

    user.click("Save as view (Ctrl+Shift+S)");
    user.type("Money");
    user.press("Return");
    CHECK(WindowFixture::row(user.view<SideBarTree>(), "Money").isValid());
    CHECK(until([&] { return isSomewhere(user, "budg"); }));
}

TEST_CASE("a task of a list is scheduled by a word, and that is taken back") {
    const std::string before = "# Plans\n* Call Bob\n";
    const std::string scheduled = "# Plans\n* [>] Call Bob >2019-03-08\n";
    WindowFixture user{"-- Notes/Plans.txt\n" + before};
    user.start();
    user.press("Alt+4");
    auto& list = user.view<ResultList>();
    user.clickRow(list, "Call Bob");
    user.press("s");
    user.type("fri");
    user.press("Return");
    CHECK(user.textOf("Notes/Plans.txt", scheduled) == scheduled);
    CHECK(WindowFixture::wordsGone(list, "Call Bob"));
    user.click("Undo");
    CHECK(user.textOf("Notes/Plans.txt", before) == before);
    CHECK(WindowFixture::row(list, "Call Bob").isValid());
}

TEST_CASE("a task of a day is scheduled in its note, with what was not saved yet") {
    WindowFixture user{"-- Calendar/20190305.txt\n* Call Bob\n"};
    user.start();
    user.press("Ctrl+Home");
    user.press("End");
    user.type(" now");
    user.press("Ctrl+D");
    user.type("fri");
    user.press("Return");
    const std::string source = "* [>] Call Bob now >2019-03-08\n";
    CHECK(user.textOf(today, source) == source);
    CHECK(user.textOf(friday) == "* Call Bob now <2019-03-05");
    CHECK(user.shown(source) == source);
    user.press("Alt+Z");
    CHECK(user.textOf(today, "* Call Bob now\n") == "* Call Bob now\n");
}

TEST_CASE("an open note gets another name or folder, and nothing that was typed is lost") {
    WindowFixture user{"-- Notes/Plans.txt\n# Plans\ntext\n-- Notes/Work/x.txt\nx\n"};
    user.start();
    user.openNote("Plans.txt");
    user.press("Ctrl+End");
    user.type("unsaved ");
    std::string now;
    std::string title = "# Plans";
    std::string notice = "Moved";
    SUBCASE("renamed in the sidebar") {
        now = "Notes/Aims.txt";
        title = "# Aims";
        notice = "Renamed";
        user.press("F2");
        user.type("Aims");
        user.press("Return");
    }
    SUBCASE("moved") {
        now = "Notes/Work/Plans.txt";
        user.press("Ctrl+Shift+M");
        REQUIRE(until([] {
            const QWidget* focus = QApplication::focusWidget();
            return focus != nullptr && qobject_cast<const FolderChooser*>(focus->window());
        }));
        user.type("Work");
        user.press("Return");
    }
    // Typed while the file gets its new name.
    user.focusEditor();
    user.type("late ");
    CHECK(user.wordsLike(notice) != std::nullopt);
    user.focusEditor();
    user.type("later");
    const std::string all = title + "\ntext\nunsaved late later";
    CHECK(user.textOf(now, all) == all);
    user.end();
    CHECK(user.textOf("Notes/Plans.txt") == "-");
}

TEST_CASE("a new note is made by its title alone") {
    WindowFixture user;
    user.start();
    user.press("Ctrl+O");
    user.type("Garden");
    user.press("Shift+Return");
    REQUIRE(until([&] { return user.shown().find("Garden") != std::string::npos; }));
    user.type("roses");
    CHECK(user.textOf("Notes/Garden.txt", "# Garden\nroses") == "# Garden\nroses");
    CHECK(WindowFixture::row(user.view<SideBarTree>(), "Garden").isValid());
}

TEST_CASE("days are gone through, and each is saved when it is left") {
    WindowFixture user{"-- Calendar/20190306.txt\nnext\n"};
    user.start();
    user.type("first");
    SUBCASE("by the arrows") {
        user.click("Next Day");
        CHECK(user.textOf(today) == "first");
        CHECK(user.shown() == "next\n");
        user.click("Next Day");
        CHECK(user.shown() == "");
        CHECK(user.textOf("Calendar/20190307.txt") == "-");
        user.click("Today");
        CHECK(user.shown() == "first");
    }
    SUBCASE("back and forward") {
        user.press("Alt+PgDown");
        user.press("Alt+2");
        CHECK(user.title() == "Week 10 – Tessaly");
        user.press("Alt+Left");
        CHECK(user.shown() == "next\n");
        user.press("Alt+Left");
        CHECK(user.shown() == "first");
        user.press("Alt+Right");
        CHECK(user.title() == "Wednesday, 6 March – Tessaly");
    }
}

TEST_CASE("a task is ticked in the week, be its note open or not") {
    WindowFixture user{
        "-- Calendar/20190305.txt\n* Call Bob\n-- Calendar/20190308.txt\n* Ask Ann\n"};
    user.start();
    user.press("Ctrl+End");
    user.type("unsaved");
    user.press("Alt+2");
    auto& week = user.view<WeekAgendaView>().rows();
    user.tick(week, "Ask Ann");
    CHECK(user.textOf(friday, std::string("* [x] Ask Ann") + done + "\n") ==
          std::string("* [x] Ask Ann") + done + "\n");
    user.tick(week, "Call Bob");
    const std::string both = std::string("* [x] Call Bob") + done + "\nunsaved";
    CHECK(user.textOf(today, both) == both);
    user.press("Alt+1");
    CHECK(user.shown(both) == both);
}

TEST_CASE("an open note that others remove comes back with what is typed, and not before") {
    WindowFixture user{"-- Notes/Plans.txt\nold\n"};
    user.start();
    user.openNote("Plans.txt");
    user.press("Ctrl+End");
    SUBCASE("nothing was unsaved") {
        user.remove("Notes/Plans.txt");
        CHECK(user.wordsGone(user.view<SideBarTree>(), "Plans"));
        user.editor().setFocus();
        user.type("new");
    }
    SUBCASE("something was unsaved") {
        user.type("ne");
        user.remove("Notes/Plans.txt");
        user.type("w");
    }
    CHECK(user.textOf("Notes/Plans.txt", "old\nnew") == "old\nnew");
}

TEST_CASE("the window comes back as it was left") {
    WindowFixture user{"-- Notes/Plans.txt\n# Plans\n* Call Bob\n"};
    user.start();
    user.window().resize(1100, 700);
    user.press("Alt+4");
    user.press("Shift+F9");
    user.openNote("Plans.txt");
    user.type("x");
    user.end();
    user.start();
    CHECK(user.shown() == "x# Plans\n* Call Bob\n");
    CHECK(user.window().size() == QSize(1100, 700));
    CHECK(WindowFixture::row(user.view<ResultList>(), "Call Bob").isValid());
    CHECK(user.view<ResultList>().isVisible());
    CHECK(!user.view<DayPaneView>().isVisible());
}

TEST_CASE("a note that is not UTF-8 is told of, and cannot be edited") {
    WindowFixture user;
    user.write("Notes/Latin.txt",
               "Gr\xFC\xDF"
               "e\n");
    user.start();
    user.openNote("Latin.txt");
    CHECK(!user.editor().isVisible());
    CHECK(user.wordsLike("Notes/Latin.txt is not UTF-8 text") != std::nullopt);
    QTest::keyClicks(&user.window(), QStringLiteral("typed"));
    user.press("Ctrl+Return");
    user.press("Ctrl+B");
    user.end();
    CHECK(user.textOf("Notes/Latin.txt") ==
          "Gr\xFC\xDF"
          "e\n");
}

TEST_CASE("found text is replaced everywhere, in one step") {
    const std::string before = "one two\nTwo\ntwofold\n";
    WindowFixture user{"-- Calendar/20190305.txt\n" + before};
    user.start();
    user.press("Ctrl+H");
    user.type("two");
    user.click("Whole words");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    for (QLineEdit* field : user.view<NotePane>().findChildren<QLineEdit*>()) {
        if (field->isVisible() && field->text().isEmpty()) {
            field->setFocus();
        }
    }
    user.type("2");
    user.click("Replace All");
    CHECK(user.textOf(today, "one 2\n2\ntwofold\n") == "one 2\n2\ntwofold\n");
    user.press("Escape");
    user.press("Ctrl+Z");
    CHECK(user.textOf(today, before) == before);
}
