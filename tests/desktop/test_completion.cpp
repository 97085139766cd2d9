// SPDX-License-Identifier: MIT
// What is offered while one writes, by the keys that a user has.
#include <QAccessible>
#include <QApplication>
#include <QInputMethodEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTextCursor>
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "app/planner.h"
#include "desktop/completion_days.h"
#include "desktop/completion_panel.h"
#include "desktop/floating_list.h"
#include "desktop/note_completion.h"
#include "desktop/note_editor.h"
#include "desktop/qt_text.h"
#include "desktop/small_calendar.h"
#include "desktop/window_fixture.h"

using namespace tessaly;
using namespace tessaly::desktop;
using tests::until;
using tests::WindowFixture;

namespace {

/// A user who writes a note that nobody saves, over notes that are read.
class Writer {
public:
    Writer() {
        planner.write(
            "-- Notes/plans.md\nPlans\n#project #project/home #rest @ann\n"
            "-- Notes/more.md\nMore plans\n#project @ann @bob\n");
        planner.services().noteCache().load();
        window.resize(900, 600);
        editor().setGeometry(window.rect());
        window.show();
        window.activateWindow();
        editor().setFocus();
        CHECK(until([&] { return editor().hasFocus(); }));
    }

    void type(std::string_view text) {
        for (const QChar letter : qt(text)) {
            QTest::keyClick(&editor(), letter.toLatin1());
            planner.mainQueue().runPosted();  // which brings the words
        }
    }
    /// Keys parted by blanks.
    void press(const std::string& keys) {
        for (const QString& key : qt(keys).split(u' ', Qt::SkipEmptyParts)) {
            const QKeySequence sequence{key};
            QTest::keyClick(&editor(), sequence[0].key(), sequence[0].keyboardModifiers());
        }
    }
    NoteEditor& editor() { return *_editor; }
    CompletionPanel* panel() {
        for (CompletionPanel* const each : window.findChildren<CompletionPanel*>()) {
            if (each->isVisible()) {
                return each;
            }
        }
        return nullptr;
    }
    bool isOpen() { return panel() != nullptr; }
    /// Once all that a key has set off has been seen to.
    bool staysOpen() {
        QCoreApplication::processEvents();
        return isOpen();
    }
    FloatingList& list() { return *panel()->findChild<FloatingList*>(); }
    /// "[#project, in 2 notes] #rest, in 1 note" with the current row in brackets; "-": none is
    /// open.
    std::string rows() {
        if (!isOpen()) {
            return "-";
        }
        CHECK(QAccessible::queryAccessibleInterface(&list())->role() == QAccessible::List);
        std::string text;
        for (int row = 0; row < list().count(); ++row) {
            const std::string spoken =
                utf8(list().item(row)->data(Qt::AccessibleTextRole).toString());
            text += text.empty() ? "" : " ";
            text += row == list().currentRow() ? "[" + spoken + "]" : spoken;
        }
        return text;
    }
    /// The text with "|" where the caret is, or both ends of the selection.
    std::string text() {
        QString text = qt(editor().text());
        const QTextCursor caret = editor().textCursor();
        text.insert(caret.selectionEnd(), u'|');
        if (caret.hasSelection()) {
            text.insert(caret.selectionStart(), u'|');
        }
        return utf8(text);
    }
    void clear() {
        press("Ctrl+A Backspace");
        CHECK_FALSE(staysOpen());
    }
    std::string days() { return utf8(editor().accessibleDescription()); }

    tests::Planner planner{{.isThreaded = false}};
    QWidget window;

private:
    NoteEditor* const _editor = new NoteEditor(&window);

public:
    NoteCompletion completion{planner.services(), *_editor, [] { return base::NoteType::calendar; },
                              nullptr};
};

void clickRow(FloatingList& list, int row) {
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(list.item(row)).center());
}

}  // namespace

TEST_CASE("a tag is offered while it is written, and taken by a key in one step") {
    Writer writer;
    writer.type("Call #");
    CHECK(writer.rows() == "#project, in 2 notes #rest, in 1 note");
    writer.type("pr");
    CHECK(writer.rows() == "[#project, in 2 notes]");
    CHECK(utf8(writer.editor().accessibleDescription()) == "1 suggestion");
    CHECK(writer.editor().hasFocus());
    writer.press("Return");
    CHECK(writer.text() == "Call #project|");
    CHECK_FALSE(writer.staysOpen());
    CHECK(writer.editor().accessibleDescription().isEmpty());
    writer.press("Ctrl+Z");
    CHECK(writer.text() == "Call #pr|");
    CHECK_FALSE(writer.staysOpen());
    writer.press("Ctrl+Shift+Z");
    CHECK(writer.text() == "Call #project|");
    writer.type("/");
    CHECK(writer.rows() == "#project/home, in 1 note");
    writer.type("h");
    writer.press("Tab");
    CHECK(writer.text() == "Call #project/home|");
}

TEST_CASE("keys that nothing is chosen for are the editor's, as ever") {
    Writer writer;
    const struct {
        std::string typed;
        std::string keys;
        std::string expected;
        bool isOpen;
    } rows[] = {
        // Enter breaks the line where nothing was said yet, or all of it.
        {"#", "Return", "#\n|", false},
        {"#project", "Return", "#project\n|", false},
        {"#projects", "Return", "#projects\n|", false},
        {"#ject", "Return", "#ject\n|", false},
        {"- #", "Return", "- #\n- |", false},
        {"- #", "Tab", "\t- #|", false},
        {"#pr", "Shift+Return", "#pr\n|", false},
        // A choice by the arrows counts in any case.
        {"#", "Down Return", "#project|", false},
        {"#", "Up Return", "#rest|", false},
        {"#", "Down Down Down Enter", "#project|", false},
        {"#ject", "Down Tab", "#project|", false},
        {"@", "Down Down Return", "@bob|", false},
        // What goes elsewhere ends it.
        {"#pr", "Left", "#p|r", false},
        {"#pr", "Home", "|#pr", false},
        {"#pr", "Ctrl+Z", "|", false},
        {"#pr", "Shift+Left", "#p|r|", false},
        {"#pr", "Space", "#pr |", false},
        // Writing and deleting goes on.
        {"#prx", "Backspace", "#pr|", true},
        {"#pr", "Backspace Backspace", "#|", true},
        {"#pr", "Backspace Backspace Backspace", "|", false},
        {"#pr", "Left Right", "#pr|", false},
        {"#pr ", "Backspace", "#pr|", false},
    };
    for (const auto& row : rows) {
        CAPTURE(row.typed);
        CAPTURE(row.keys);
        writer.clear();
        writer.type(row.typed);
        writer.press(row.keys);
        CHECK(writer.text() == row.expected);
        CHECK(writer.staysOpen() == row.isOpen);
    }
}

TEST_CASE("Escape sends it away for the word, and then is what it was") {
    Writer writer;
    QSignalSpy escapes{&writer.editor(), &NoteEditor::escaped};
    writer.type("#pr");
    writer.press("Escape");
    CHECK_FALSE(writer.isOpen());
    CHECK(escapes.empty());
    writer.type("o");
    writer.press("Backspace");
    CHECK_FALSE(writer.staysOpen());
    writer.press("Escape");
    CHECK(escapes.size() == 1);
    CHECK(writer.text() == "#pr|");
    writer.completion.suggest();
    CHECK(writer.rows() == "[#project, in 2 notes]");
    writer.press("Escape");
    writer.type(" #");
    CHECK(writer.isOpen());
    writer.press("Backspace Backspace");
    writer.type("o");
    CHECK(writer.isOpen());
    writer.press("Space");
    writer.completion.suggest();
    CHECK_FALSE(writer.isOpen());
}

TEST_CASE("titles get the brackets that are missing") {
    Writer writer;
    writer.type("see [[pl");
    CHECK(writer.rows() == "[Plans] More plans");
    writer.press("Down Return");
    CHECK(writer.text() == "see [[More plans]]|");
    writer.type(" and [[plans");
    writer.press("Return");
    CHECK(writer.text() == "see [[More plans]] and [[Plans]]|");
}

TEST_CASE("marks of the program's own stand where they mean something") {
    Writer writer;
    writer.type("* [x] Call @do");
    CHECK(writer.rows() == "@done(2019-03-05 14:07)");
    writer.press("Down Return");
    CHECK(writer.text() == "* [x] Call @done(2019-03-05 14:07)|");
    writer.clear();
    writer.type("* Call @rep");
    writer.press("Down Return");
    writer.type("3");
    CHECK(writer.text() == "* Call @repeat(1/3|)");
}

TEST_CASE("a day is typed into the text, and its calendar goes along") {
    Writer writer;
    const struct {
        std::string typed;
        std::string words;
        std::string keys;
        std::string expected;
        bool isOpen;
    } rows[] = {
        {"Call >", "Type a day, or choose one", "Return", "Call >\n|", false},
        {"Call >fri", "Friday, 8 March 2019 (in 3 days)", "Return", "Call >2019-03-08|", false},
        {"Call >w12", "Monday, 18 March 2019 (in 13 days)", "Tab", "Call >2019-03-18|", false},
        {"Call >x", "This is no day yet", "Return", "Call >x\n|", false},
        {"Call >f", "This is no day yet", "Escape", "Call >f|", false},
        {"Call >", "Type a day, or choose one", "Down Down Return", "Call >2019-03-06|", false},
        {"Call >fri", "Friday, 8 March 2019 (in 3 days)", "PgDown Return", "Call >2019-04-08|",
         false},
        {"Call >14", "Thursday, 14 March 2019 (in 9 days)", "Backspace", "Call >1|", true},
        {"> >fri", "", "Return", "> >fri\n> |", false},
        {"Call >2019-03-08", "", "Return", "Call >2019-03-08\n|", false},
    };
    for (const auto& row : rows) {
        CAPTURE(row.typed);
        CAPTURE(row.keys);
        writer.clear();
        writer.type(row.typed);
        CHECK(writer.days() == row.words);
        writer.press(row.keys);
        CHECK(writer.text() == row.expected);
        CHECK(writer.staysOpen() == row.isOpen);
    }
    writer.clear();
    writer.type("Call >+3d");
    auto& days = *writer.panel()->findChild<CompletionDays*>();
    CHECK(base::tagText(days.choice().calendar().selectedDay()) == "2019-03-08");
    CHECK(utf8(days.findChild<QLineEdit*>()->text()) == "+3d");
    writer.press("Down Return");
    CHECK(writer.text() == "Call >2019-03-05|");
    writer.press("Ctrl+Z");
    CHECK(writer.text() == "Call >+3d|");
}

TEST_CASE("a click takes a row or a day, and the editor keeps the keys") {
    Writer writer;
    writer.type("#");
    clickRow(writer.list(), 1);
    CHECK(writer.text() == "#rest|");
    writer.type(" >");
    clickRow(writer.list(), 1);
    CHECK(writer.text() == "#rest >2019-03-06|");
    writer.press("Shift+Return");
    writer.type("Call >");
    auto& month = *writer.panel()->findChild<QTableView*>();
    QTest::mouseClick(month.viewport(), Qt::LeftButton, {},
                      month.visualRect(month.model()->index(4, 2)).center());
    CHECK(writer.text() == "#rest >2019-03-06\nCall >2019-03-19|");
    CHECK(writer.editor().hasFocus());
    CHECK_FALSE(writer.staysOpen());
    writer.type(" #");
    QTest::mouseClick(writer.editor().viewport(), Qt::LeftButton, {}, {200, 300});
    CHECK_FALSE(writer.staysOpen());
    writer.type(" #");
    CHECK(writer.isOpen());
    writer.editor().clearFocus();
    CHECK_FALSE(writer.staysOpen());
}

TEST_CASE("nothing is offered in code, nor while an input method composes") {
    Writer writer;
    writer.type("```");
    writer.press("Return");
    writer.type("#pr");
    CHECK_FALSE(writer.staysOpen());
    writer.clear();
    writer.type("#p");
    QInputMethodEvent composing{QStringLiteral("r"), {}};
    QCoreApplication::sendEvent(&writer.editor(), &composing);
    CHECK_FALSE(writer.isOpen());
    QInputMethodEvent written;
    written.setCommitString(QStringLiteral("r"));
    QCoreApplication::sendEvent(&writer.editor(), &written);
    CHECK(writer.rows() == "[#project, in 2 notes]");
}

TEST_CASE("what others write ends what was offered for another text") {
    Writer writer;
    writer.type("#pr");
    writer.editor().replaceText("above\n#pr");
    CHECK_FALSE(writer.staysOpen());
    writer.type("o");
    CHECK(writer.isOpen());
    writer.editor().replaceText("#pro and more");
    writer.press("Return");
    CHECK(writer.text() == "#pro\n| and more");
}

TEST_CASE("newer words take the place of those that nobody has gone through yet") {
    Writer writer;
    writer.type("#");
    writer.press("Backspace");
    const auto save = [&](const char* tag) {
        writer.planner.write(std::string("-- Notes/plans.md\nPlans\n#") + tag + "\n");
        writer.planner.services().noteCache().reread(base::NoteType::note, "plans.md");
    };
    save("alpha");
    writer.type("#");
    CHECK(writer.rows() == "#alpha, in 1 note #project, in 1 note");
    writer.press("Backspace");
    save("beta");
    QTest::keyClick(&writer.editor(), '#');
    writer.press("Down");
    writer.planner.mainQueue().runPosted();
    CHECK(writer.rows() == "[#alpha, in 1 note] #project, in 1 note");
}

TEST_CASE("the panel lies beside the word and inside of the window, mirrored too") {
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        CAPTURE(direction);
        QApplication::setLayoutDirection(direction);
        Writer writer;
        for (const char* const typed : {"#", "Call >", "a long line of many words #"}) {
            for (int line = 0; line < 24; ++line) {
                CAPTURE(line);
                writer.type(typed);
                const QRect window(writer.window.mapToGlobal(QPoint()), writer.window.size());
                REQUIRE(writer.isOpen());
                CHECK(window.contains(writer.panel()->panel()));
                CHECK_FALSE(writer.panel()->panel().intersects(writer.editor().caretPlace()));
                writer.press("Escape Shift+Return");
            }
            writer.clear();
        }
    }
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_CASE("in the window, keys reach what is offered before the window's own") {
    WindowFixture user{"-- Notes/plans.md\nPlans\n#project @ann\n"};
    user.start();
    const auto isOpen = [&] {
        const auto panels = user.window().findChildren<CompletionPanel*>();
        return std::any_of(panels.begin(), panels.end(),
                           [](const CompletionPanel* panel) { return panel->isVisible(); });
    };
    user.press("Ctrl+F");
    QWidget* const field = QApplication::focusWidget();
    user.focusEditor();
    user.type("Call #pro");
    CHECK(until(isOpen));
    user.press("Escape");
    CHECK_FALSE(isOpen());
    CHECK(field->isVisible());
    user.press("Ctrl+Space");
    CHECK(isOpen());
    user.press("Down");
    user.press("Return");
    const std::string text = "Call #project";
    CHECK(user.textOf(WindowFixture::today, text) == text);
    user.press("Escape");
    CHECK_FALSE(field->isVisible());
    user.type(" >fri");
    user.press("Return");
    const std::string dated = text + " >2019-03-08";
    CHECK(user.textOf(WindowFixture::today, dated) == dated);
}
