// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <string_view>

#include <doctest/doctest.h>

#include "desktop/document_edits.h"
#include "desktop/note_editor.h"
#include "desktop/note_layout.h"
#include "desktop/theme.h"

namespace tessaly::tests {

/// An editor in sight, whose column has a usual look.
struct ShownEditor : desktop::NoteEditor {
    explicit ShownEditor(std::string_view text = {}) {
        setLook({desktop::Theme::instance().editorFont("System", 15), 720, {}});
        resize(600, 400);
        show();
        setText(std::string(text));
    }

    desktop::NoteLayout& layout() const {
        return static_cast<desktop::NoteLayout&>(*document()->documentLayout());
    }
    void draw() { grab(); }
    /// The numbers of the lines that are seen, "0 1 4".
    std::string seenLines() const {
        std::string seen;
        for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
            if (block.isVisible()) {
                seen += (seen.empty() ? "" : " ") + std::to_string(block.blockNumber());
            }
        }
        return seen;
    }
    /// Of a place in the document, in the viewport.
    QPoint inView(QPointF place) const {
        return (place - QPointF(0, verticalScrollBar()->value())).toPoint();
    }
    QPoint boxOfLine(int line) const {
        const QRectF box = layout().boxOf(line);
        REQUIRE_FALSE(box.isEmpty());
        return inView(box.center());
    }
    QPoint handleOfLine(int line) const { return inView(layout().handleOf(line).center()); }
    void click(QPoint place) { QTest::mouseClick(viewport(), Qt::LeftButton, {}, place); }
    void clickBox(int line) { click(boxOfLine(line)); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(this, key, modifiers);
    }
    /// "line:column".
    std::string caret() const {
        return std::to_string(textCursor().blockNumber()) + ":" +
               std::to_string(textCursor().positionInBlock());
    }
};

}  // namespace tessaly::tests
