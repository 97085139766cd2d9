// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <QToolTip>
#include <string>
#include <string_view>
#include <vector>

#include <doctest/doctest.h>

#include "desktop/document_edits.h"
#include "desktop/note_links.h"
#include "desktop/qt_text.h"
#include "desktop/result_list.h"
#include "desktop/window_fixture.h"
#include "desktop/window_links.h"

namespace {

using namespace std::literals;
using namespace tessaly::desktop;
using tessaly::app::CommandId;
using tessaly::tests::until;
using tessaly::tests::WindowFixture;

constexpr std::string_view notes = R"(-- Notes/Start.txt
# Start
[the site](https://example.org/a) and https://example.org/b
see [[Other]] and [[Nobody]]
[by file](Other%20one.txt) or [out](../x.txt)
[bad](file:///etc/passwd)
[tag](tessaly://x-callback-url/selectTag?name=work)
last
-- Notes/Other one.txt
# Other
back to [[Start]]
-- Notes/Third.txt
#work in a third note
)"sv;

/// In the viewport, where the letter stands that begins these words.
QPoint placeOf(NoteEditor& editor, std::string_view words) {
    CAPTURE(words);
    const auto at = documentText(editor.text()).indexOf(qt(words));
    REQUIRE(at >= 0);
    QTextCursor letter(editor.document());
    letter.setPosition(static_cast<int>(at));
    editor.grab();
    return editor.cursorRect(letter).center() + QPoint(4, 0);
}

struct LinkFixture : WindowFixture {
    LinkFixture() : WindowFixture(notes) {
        start();
        view<WindowLinks>().setOpenAddress([this](const QUrl& address) {
            opened.push_back(utf8(address.toString()));
            return true;
        });
        openStart();
    }
    void openStart() {
        openNote("Start.txt");
        REQUIRE(until([&] { return editor().hasFocus(); }));
        editor().goToLine(6);
    }
    void clickOn(std::string_view words, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(editor().viewport(), Qt::LeftButton, modifiers, placeOf(editor(), words));
    }
    int caretLine() { return editor().textCursor().blockNumber(); }
    std::vector<std::string> opened;
};

}  // namespace

TEST_CASE("a click on a link opens it, and leaves the caret") {
    LinkFixture fixture;
    fixture.clickOn("the site");
    fixture.clickOn("https://example.org/b");
    CHECK(fixture.opened == std::vector{"https://example.org/a"s, "https://example.org/b"s});
    CHECK(fixture.caretLine() == 6);
    fixture.clickOn("bad");
    CHECK(fixture.wordsLike("“file:” addresses are not opened"));
    fixture.clickOn("out]");
    CHECK(fixture.wordsLike("“../x.txt” leads out of"));
    CHECK(fixture.opened.size() == 2);
    // Beside the words of a link there is none.
    fixture.clickOn(" and https");
    CHECK(fixture.caretLine() == 1);
}

TEST_CASE("in the caret's line a click puts the caret, and one with Ctrl opens") {
    LinkFixture fixture;
    fixture.editor().goToLine(1);
    fixture.clickOn("site]");
    CHECK(fixture.opened.empty());
    CHECK(fixture.editor().textCursor().positionInBlock() > 3);
    fixture.clickOn("site]", Qt::ControlModifier);
    CHECK(fixture.opened.size() == 1);
    fixture.press("Ctrl+Shift+O");
    CHECK(fixture.opened.size() == 2);
    fixture.editor().goToLine(6);
    fixture.press("Ctrl+Shift+O");
    CHECK(fixture.wordsLike("There is no link at the caret"));
}

TEST_CASE("what is dragged from a link is selected") {
    LinkFixture fixture;
    QWidget& view = *fixture.editor().viewport();
    const QPoint from = placeOf(fixture.editor(), "the site");
    const QPoint to = placeOf(fixture.editor(), "and https");
    QTest::mousePress(&view, Qt::LeftButton, {}, from);
    QTest::mouseMove(&view, (from + to) / 2);
    QTest::mouseMove(&view, to);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
    CHECK(fixture.opened.empty());
    CHECK(fixture.editor().textCursor().selectedText().contains(QStringLiteral("site]")));
    // A release on another link is no click on either.
    fixture.editor().goToLine(6);
    QTest::mousePress(&view, Qt::LeftButton, {}, placeOf(fixture.editor(), "the site"));
    QTest::mouseRelease(&view, Qt::LeftButton, {},
                        placeOf(fixture.editor(), "https://example.org/b"));
    CHECK(fixture.opened.empty());
    CHECK(fixture.caretLine() == 1);
}

TEST_CASE("links lead to notes and lists, and back") {
    LinkFixture fixture;
    fixture.clickOn("Other]");
    CHECK(fixture.shown("# Other\nback to [[Start]]\n") == "# Other\nback to [[Start]]\n");
    CHECK(fixture.editor().hasFocus());
    fixture.window().perform(CommandId::goBack);
    REQUIRE(until([&] { return fixture.shown().starts_with("# Start"); }));
    fixture.editor().goToLine(6);
    fixture.clickOn("by file");
    CHECK(fixture.shown("# Other\nback to [[Start]]\n") == "# Other\nback to [[Start]]\n");
    fixture.openStart();
    fixture.clickOn("tag]");
    CHECK(fixture.row(fixture.view<ResultList>(), "in a third note").isValid());
}

TEST_CASE("a title that no note has offers to make one") {
    LinkFixture fixture;
    fixture.clickOn("Nobody");
    CHECK(fixture.wordsLike("There is no note called “Nobody”."));
    fixture.click("Create");
    CHECK(fixture.shown("# Nobody\n") == "# Nobody\n");
    CHECK(fixture.textOf("Notes/Nobody.txt", "# Nobody\n") == "# Nobody\n");
}

TEST_CASE("tool tip and menu of a link") {
    LinkFixture fixture;
    const auto at = [&](std::string_view words) {
        const QPoint place = placeOf(fixture.editor(), words);
        QHelpEvent help(QEvent::ToolTip, place, fixture.editor().viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(fixture.editor().viewport(), &help);
        return utf8(QToolTip::isVisible() ? QToolTip::text() : QString());
    };
    CHECK(at("the site") == "<span>https://example.org/a</span>");
    ShownLink hostile;
    hostile.span = {tessaly::app::SpanKind::link, {}, "https://a/<img src='x'>"};
    CHECK(linkToolTip(hostile) == QStringLiteral("<span>https://a/&lt;img src='x'&gt;</span>"));
    const QPoint place = placeOf(fixture.editor(), "the site");
    QContextMenuEvent asked(QContextMenuEvent::Mouse, place,
                            fixture.editor().viewport()->mapToGlobal(place));
    QCoreApplication::sendEvent(fixture.editor().viewport(), &asked);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    REQUIRE(menu != nullptr);
    for (QAction* action : menu->actions()) {
        if (action->text() == QStringLiteral("Copy Link Address")) {
            action->trigger();
        }
    }
    menu->close();
    CHECK(QApplication::clipboard()->text() == QStringLiteral("https://example.org/a"));
}
