// SPDX-License-Identifier: MIT
// Lines that read from right to left.
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <cmath>
#include <string>
#include <string_view>

#include <doctest/doctest.h>

#include "desktop/note_folding.h"
#include "desktop/note_layout.h"
#include "desktop/shown_editor.h"
#include "desktop/theme.h"
#include "desktop/window_fixture.h"

namespace {

using namespace tessaly::desktop;
using tessaly::tests::ShownEditor;
using tessaly::tests::WindowFixture;

const std::string arabicWords =
    "\u0645\u0631\u062D\u0628\u0627 \u0628\u0627\u0644\u0639\u0627\u0644\u0645";
const std::string hebrewWord = "\u05E9\u05DC\u05D5\u05DD";

QTextBlock lineOf(const ShownEditor& editor, int line) {
    return editor.document()->findBlockByNumber(line);
}

/// In the document, where the words of a line begin, behind its signs.
qreal startOfWords(const ShownEditor& editor, int line) {
    const QTextBlock block = lineOf(editor, line);
    return editor.layout().blockBoundingRect(block).left() +
           block.layout()->lineAt(0).cursorToX(BlockLook::of(block)->shape.prefix);
}

/// In the document, of a line's first row.
QRectF rowPlace(const ShownEditor& editor, int line) {
    const QTextBlock block = lineOf(editor, line);
    const QPointF place = editor.layout().blockBoundingRect(block).topLeft();
    return block.layout()->lineAt(0).naturalTextRect().translated(place);
}

/// As far from the one side of the column as the other is from the other side.
void checkMirrored(const ShownEditor& editor, int line, const QRectF& mirrored,
                   const QRectF& usual) {
    const QRectF column = editor.layout().columnOf(lineOf(editor, line));
    REQUIRE_FALSE(mirrored.isEmpty());
    CHECK(column.right() - mirrored.right() == doctest::Approx(usual.left() - column.left()));
    CHECK(mirrored.size() == usual.size());
}

/// What is drawn in a line from one x to another, in the viewport.
bool isDrawnBetween(ShownEditor& editor, int line, int from, int to) {
    const QRectF area = editor.layout().blockBoundingRect(lineOf(editor, line));
    const QImage image = editor.viewport()->grab().toImage();
    const QRgb ground = Theme::instance().colors().window.rgb();
    for (int y = editor.inView(area.topLeft()).y(); y < editor.inView(area.bottomLeft()).y(); ++y) {
        for (int x = from; x < to; ++x) {
            if (image.pixel(x, y) != ground) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

TEST_CASE("boxes, handles and marks of folded lines are mirrored") {
    ShownEditor editor("* [x] " + arabicWords + "\n\t* [ ] " + arabicWords +
                       "\n* [x] words\n\t* [ ] words\n");
    editor.draw();
    for (const int line : {0, 1}) {
        CAPTURE(line);
        CHECK(editor.layout().isRightToLeft(line));
        CHECK_FALSE(editor.layout().isRightToLeft(line + 2));
        const QRectF box = editor.layout().boxOf(line);
        checkMirrored(editor, line, box, editor.layout().boxOf(line + 2));
        checkMirrored(editor, line, editor.layout().handleOf(line),
                      editor.layout().handleOf(line + 2));
        // Beside the words, and the handle beside it.
        CHECK(box.left() >= startOfWords(editor, line));
        CHECK(editor.layout().handleOf(line).left() >= box.right());
    }
    editor.folding().toggleAll();
    CHECK(editor.seenLines() == "0 2 4");
    const QRectF mark = editor.layout().foldMarkOf(0);
    const QRectF usual = editor.layout().foldMarkOf(2);
    CHECK(mark.right() < rowPlace(editor, 0).left());
    CHECK(rowPlace(editor, 0).left() - mark.right() ==
          doctest::Approx(usual.left() - rowPlace(editor, 2).right()).epsilon(0.2));
    editor.click(editor.inView(mark.center()));
    CHECK(editor.seenLines() == "0 1 2 4");
    editor.click(editor.handleOfLine(0));
    CHECK(editor.seenLines() == "0 2 4");
}

TEST_CASE("a bullet stands on the side that reading begins at") {
    ShownEditor editor("words\n- " + hebrewWord + "\n- words\n");
    editor.draw();
    for (const int line : {1, 2}) {
        CAPTURE(line);
        const QRectF words = rowPlace(editor, line).adjusted(-1, 0, 1, 0);
        const bool isLeft = isDrawnBetween(editor, line, 0, static_cast<int>(words.left()));
        const bool isRight = isDrawnBetween(editor, line, static_cast<int>(words.right()) + 1,
                                            editor.viewport()->width());
        CHECK(isLeft == (line == 2));
        CHECK(isRight == (line == 1));
    }
}

TEST_CASE("each place of a mirrored line is found where its caret stands") {
    ShownEditor editor("* " + arabicWords + "\n# " + hebrewWord + " **" + hebrewWord +
                       "** abc\n> " + hebrewWord + " #" + hebrewWord + "\n");
    editor.activateWindow();
    editor.setFocus();
    REQUIRE(QTest::qWaitForWindowActive(&editor));
    for (int line = 0; line < 3; ++line) {
        CAPTURE(line);
        editor.goToLine(line);  // with its markup
        editor.draw();
        const QTextBlock block = lineOf(editor, line);
        const QRectF area = editor.layout().blockBoundingRect(block);
        const QTextLine row = block.layout()->lineAt(0);
        const auto caretAt = [&](qreal x) {
            const QPointF place = area.topLeft() + QPointF(x, row.y() + 1);
            return editor.layout().hitTest(place, Qt::FuzzyHit) - block.position();
        };
        for (int place = 0; place < block.length() - 1; ++place) {
            CAPTURE(place);
            const qreal front = row.cursorToX(place, QTextLine::Leading);
            const qreal width = row.cursorToX(place, QTextLine::Trailing) - front;
            const qreal x = front + width / 4;
            CHECK(std::abs(row.cursorToX(caretAt(x)) - x) <= std::abs(width));
        }
        CHECK(caretAt(row.naturalTextRect().right() + 10) == 0);
    }
}

TEST_CASE("a click on a mirrored box toggles its task, and one on the words does not") {
    const std::string note = "first\n* [x] " + arabicWords + "\n";
    WindowFixture user("-- Calendar/20190305.txt\n" + note);
    user.start();
    NoteEditor& editor = user.editor();
    const auto& layout = static_cast<NoteLayout&>(*editor.document()->documentLayout());
    const auto click = [&](const QPointF& place) {
        QTest::mouseClick(editor.viewport(), Qt::LeftButton, {},
                          (place - QPointF(0, editor.verticalScrollBar()->value())).toPoint());
    };
    editor.goToLine(0, 2);
    click(layout.boxOf(1).center());
    CHECK(editor.text() == "first\n* " + arabicWords + "\n");
    click(layout.boxOf(1).center());
    CHECK(editor.lineText(1).starts_with("* [x] " + arabicWords + " @done(2019-03-05"));
    CHECK(editor.textCursor().position() == 2);
    editor.undo();
    editor.undo();
    CHECK(editor.text() == note);
    // Where the box would be if it were not mirrored, there is nothing to click.
    const QTextBlock block = editor.document()->findBlockByNumber(1);
    const QRectF area = layout.blockBoundingRect(block);
    click({area.left() + area.right() - layout.boxOf(1).center().x(), area.center().y()});
    CHECK(editor.text() == note);
    CHECK(editor.textCursor().blockNumber() == 1);
}
