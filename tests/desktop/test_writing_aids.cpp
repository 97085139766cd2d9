// SPDX-License-Identifier: MIT
#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/note_layout.h"
#include "desktop/qt_text.h"
#include "desktop/spelling_marks.h"
#include "desktop/text_count_label.h"
#include "desktop/theme.h"
#include "desktop/window_fixture.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;
using tessaly::tests::Environment;
using tessaly::tests::TempFolder;
using tessaly::tests::until;
using tessaly::tests::WindowFixture;

/// Dictionaries of the user's language; none: what lies elsewhere is of others.
struct Dictionaries {
    Dictionaries() {
        folder.write("xx_XX.aff", "SET UTF-8\nTRY aeinorst\n");
        folder.write("xx_XX.dic", "6\nsend\nslides\nhello\nworld\ncall\nnow\n");
    }
    TempFolder folder;
    Environment environment{
        {"DICPATH", folder.path()}, {"LANGUAGE", std::nullopt}, {"LC_ALL", "xx_XX.UTF-8"}};
};

struct SpellingFixture : Dictionaries, WindowFixture {
    explicit SpellingFixture(std::string_view text) {
        write(today, text);
        start();
        focusEditor();
    }

    /// "[wrod] [othre]": what is underlined in a line.
    std::string marked(int line) {
        auto& marks = *editor().findChild<SpellingMarks*>();
        const QTextBlock block = editor().document()->findBlockByNumber(line);
        std::string words;
        for (const auto word : marks.marked(block)) {
            const QString text =
                block.text().mid(static_cast<int>(word.location), static_cast<int>(word.length));
            words += (words.empty() ? "[" : " [") + utf8(text) + "]";
        }
        return words;
    }
    bool isMarked(int line, std::string_view words) {
        return until([&] { return marked(line) == words; });
    }

    /// The entries of the context menu at a place of the text, the first few; the menu stays open.
    std::vector<std::string> openMenu(int position) {
        QTextCursor place(editor().document());
        place.setPosition(position);
        const QPoint point = editor().cursorRect(place).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, point,
                                editor().viewport()->mapToGlobal(point));
        QCoreApplication::sendEvent(editor().viewport(), &event);
        REQUIRE(until([&] { return menu() != nullptr; }));
        std::vector<std::string> entries;
        for (const QAction* action : menu()->actions()) {
            entries.push_back(utf8(action->text()));
        }
        return entries;
    }
    QMenu* menu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    void choose(std::string_view entry) {
        for (QAction* action : menu()->actions()) {
            if (action->text() == qt(entry)) {
                QMenu* const open = menu();
                action->trigger();
                open->close();
                REQUIRE(until([&] { return menu() == nullptr; }));
                return;
            }
        }
        FAIL("no such entry: " << entry);
    }
    void putCaret(int position) {
        QTextCursor caret(editor().document());
        caret.setPosition(position);
        editor().setTextCursor(caret);
    }
    std::vector<double> heights() {
        std::vector<double> all;
        const auto& layout = *editor().document()->documentLayout();
        for (QTextBlock block = editor().document()->begin(); block.isValid();
             block = block.next()) {
            all.push_back(layout.blockBoundingRect(block).height());
        }
        return all;
    }
};

bool contains(const std::vector<std::string>& entries, std::string_view entry) {
    return std::find(entries.begin(), entries.end(), entry) != entries.end();
}

}  // namespace

TEST_CASE("words that no dictionary has are underlined, and nothing is changed by it") {
    SpellingFixture user("# Hello wrold\n* sned slides #wrok\nhello `codde` world\n");
    const auto heights = user.heights();
    const int revision = user.editor().document()->revision();
    CHECK(user.isMarked(0, "[wrold]"));
    CHECK(user.isMarked(1, "[sned]"));
    CHECK(user.marked(2).empty());
    CHECK(user.heights() == heights);
    CHECK(user.editor().document()->revision() == revision);
    CHECK_FALSE(user.editor().canUndo());

    // Seen as well: the underline's colour comes and goes with the command.
    const auto picture = [&] {
        const auto& layout = *user.editor().document()->documentLayout();
        const auto place = layout.blockBoundingRect(user.editor().document()->begin());
        return user.editor().viewport()->grab(place.toAlignedRect()).toImage();
    };
    user.putCaret(user.editor().document()->findBlockByNumber(2).position());
    const QImage with = picture();
    user.press("F7");
    CHECK(user.isMarked(0, ""));
    CHECK(picture() != with);
    CHECK(user.home().read("config/tessaly/settings.json").find("isCheckingSpelling") !=
          std::string::npos);
    user.press("F7");
    CHECK(user.isMarked(0, "[wrold]"));
    CHECK(picture() == with);
}

TEST_CASE("the word that is being typed is not underlined until the caret leaves it") {
    SpellingFixture user("wrold\n\n");
    REQUIRE(user.isMarked(0, "[wrold]"));
    user.putCaret(6);
    user.type("wrold");
    CHECK(user.marked(1).empty());
    user.press("Left");
    CHECK(user.marked(1) == "[wrold]");
    user.press("End");
    user.type("d");
    user.press("Backspace");
    CHECK(user.marked(1).empty());
    user.type(" ");
    CHECK(user.marked(1) == "[wrold]");
}

TEST_CASE("a word is corrected from the menu as one step, and the caret stays") {
    SpellingFixture user("hello\n* call wrold now\n");
    REQUIRE(user.isMarked(1, "[wrold]"));
    user.putCaret(2);
    CHECK(contains(user.openMenu(15), "world"));
    user.choose("world");
    CHECK(user.shown() == "hello\n* call world now\n");
    CHECK(user.editor().textCursor().position() == 2);
    user.editor().undo();
    CHECK(user.shown() == "hello\n* call wrold now\n");
    CHECK_FALSE(user.editor().canUndo());
    // Another word's menu is the usual one.
    CHECK_FALSE(contains(user.openMenu(3), "Add to Dictionary"));
    user.choose("Select All");
}

TEST_CASE("own words are ignored, or kept for good") {
    SpellingFixture user("foobar foobar\nquux Quux\n");
    REQUIRE(user.isMarked(0, "[foobar] [foobar]"));
    REQUIRE(user.isMarked(1, "[quux] [Quux]"));
    user.openMenu(2);
    user.choose("Ignore");
    CHECK(user.isMarked(0, ""));
    user.openMenu(16);
    user.choose("Add to Dictionary");
    CHECK(user.isMarked(1, ""));
    CHECK(until([&] { return user.home().exists("config/tessaly/words.txt"); }));
    user.end();
    CHECK(user.home().read("config/tessaly/words.txt") == "quux\n");
    user.start();
    CHECK(user.isMarked(0, "[foobar] [foobar]"));
    CHECK(user.marked(1).empty());
}

TEST_CASE("words, tasks and what is selected are counted when typing pauses") {
    WindowFixture user;
    user.write(WindowFixture::today, "# One two\n* three\n* [x] four\n");
    user.start();
    user.focusEditor();
    CHECK(user.wordsLike("4 words · 1 of 2 tasks done"));
    user.press("Ctrl+End");
    user.type("five");
    CHECK(user.wordsLike("5 words · 1 of 2 tasks done"));
    user.press("Ctrl+Shift+Left");
    CHECK(user.wordsLike("1 of 5 words selected"));
    // Another page of the pane has nothing to count.
    auto& label = user.view<TextCountLabel>();
    CHECK(label.isVisible());
    user.editor().hide();
    CHECK_FALSE(label.isVisible());
    user.editor().show();
    CHECK(label.isVisible());
}

TEST_CASE("settings that others change are followed at once, and what is in sight stays") {
    WindowFixture user;
    std::string text;
    for (int i = 0; i < 400; ++i) {
        text += "* " + std::string(i == 197 ? "" : "[x] ") + "task **" + std::to_string(i) + "** " +
                std::string(static_cast<std::size_t>(i % 7 * 30), 'w') + "\n";
    }
    user.write(WindowFixture::today, text);
    user.start();
    NoteEditor& editor = user.editor();
    editor.goToLine(200);
    auto& layout = static_cast<NoteLayout&>(*editor.document()->documentLayout());
    const auto firstInSight = [&] { return layout.blockAt(editor.verticalScrollBar()->value()); };
    const int first = firstInSight();
    REQUIRE(first > 100);
    const auto set = [&](std::string_view json) {
        // As another program does it: a new file under the name of the old.
        user.home().write("config/tessaly/new.json", json);
        std::filesystem::rename(user.home() / "config/tessaly/new.json",
                                user.home() / "config/tessaly/settings.json");
    };
    CHECK_FALSE(layout.boxOf(198).isEmpty());
    set(R"({"fontSize": 24, "maxTextWidth": 500})");
    CHECK(until([&] { return editor.font().pixelSize() == 24; }));
    CHECK(std::abs(firstInSight() - first) <= 1);
    CHECK(
        until([&] { return layout.blockBoundingRect(editor.document()->begin()).width() < 720; }));
    set(R"({"fontSize": 24, "isRenderingMarkdown": false})");
    CHECK(until([&] { return layout.boxOf(198).isEmpty(); }));
    CHECK(std::abs(firstInSight() - first) <= 1);
    CHECK(editor.document()->findBlockByNumber(198).layout()->formats().isEmpty());
    // Commands and keys are the same.
    user.focusEditor();
    editor.goToLine(200);
    user.press("Tab");
    user.press("End");
    user.press("Return");
    CHECK(editor.document()->findBlockByNumber(200).text().startsWith(
        QStringLiteral("\t* [x] task **200**")));
    CHECK(editor.document()->findBlockByNumber(201).text().startsWith(QStringLiteral("\t* ")));
    set(R"({"fontFamily": "No Such Family"})");
    CHECK(until([&] { return editor.font().pixelSize() == 15; }));
    CHECK_FALSE(editor.font().families().contains(QStringLiteral("No Such Family")));
    CHECK_FALSE(editor.font().families().isEmpty());
    CHECK_FALSE(layout.boxOf(198).isEmpty());
    CHECK_FALSE(layout.boxOf(197).isEmpty());
    set(R"({"isAsteriskTodo": false})");
    CHECK(until([&] { return layout.boxOf(197).isEmpty(); }));
}

TEST_CASE("letters grow by keys and by the wheel, as far as it can be seen") {
    WindowFixture user;
    user.write(WindowFixture::today, "words\n");
    user.start();
    user.focusEditor();
    const auto size = [&] { return user.editor().font().pixelSize(); };
    const auto turn = [&](int angle, Qt::KeyboardModifiers modifiers) {
        const QPointF place(40, 40);
        QWheelEvent event(place, user.editor().viewport()->mapToGlobal(place), {}, {0, angle},
                          Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(user.editor().viewport(), &event);
    };
    user.press("Ctrl++");
    CHECK(size() == 16);
    turn(240, Qt::ControlModifier);
    CHECK(size() == 18);
    turn(-60, Qt::ControlModifier);
    CHECK(size() == 18);
    turn(-60, Qt::ControlModifier);
    CHECK(size() == 17);
    turn(120, Qt::NoModifier);
    CHECK(size() == 17);
    user.press("Ctrl+0");
    CHECK(size() == 15);
    turn(-120 * 100, Qt::ControlModifier);
    CHECK(size() == Theme::smallestEditorFont);
    user.press("Ctrl++");
    CHECK(size() == Theme::smallestEditorFont + 1);
}

TEST_CASE("the editor's description tells what the caret's line is") {
    WindowFixture user;
    user.write(WindowFixture::today, "# Plans\n* Call Bob >2019-03-08\n\t* number\nwords\n");
    user.start();
    user.focusEditor();
    const auto says = [&](const char* words) {
        return until(
            [&] { return user.editor().accessibleDescription() == QString::fromUtf8(words); });
    };
    user.press("Ctrl+Home");
    CHECK(says("Heading 1, Plans"));
    user.press("Down");
    CHECK(says("Task, open, Call Bob, due Friday, 8 March, 1 sub-task"));
    // Letters alone are said by the text itself.
    user.press("End");
    user.type("!");
    QCoreApplication::processEvents();
    CHECK(says("Task, open, Call Bob, due Friday, 8 March, 1 sub-task"));
    user.press("Down");
    user.press("Down");
    CHECK(says(""));
    user.press("Up");
    user.press("Ctrl+Return");
    CHECK(until([&] {
        return user.editor().accessibleDescription().startsWith(QStringLiteral("Task, done"));
    }));
}
