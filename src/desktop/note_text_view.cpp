// SPDX-License-Identifier: MIT
#include "desktop/note_text_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>
#include <algorithm>
#include <utility>

#include "desktop/document_edits.h"
#include "desktop/spaced_text_layout.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int topMargin = 24;
constexpr int sideMargin = 56;
constexpr int narrowSideMargin = 24;
constexpr int narrowWidth = 480;

}  // namespace

NoteTextView::NoteTextView(QWidget* parent) : QPlainTextEdit(parent) {
    setFrameShape(QFrame::NoFrame);
    setCursor(Qt::IBeamCursor);
    verticalScrollBar()->setCursor(Qt::ArrowCursor);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* text = new QTextDocument(this);
    text->setDocumentLayout(new SpacedTextLayout(text));
    text->setDocumentMargin(topMargin);
    setDocument(text);
    // Painted with the text: what the view keeps as its own ground does not follow the theme.
    viewport()->setAutoFillBackground(false);
    connect(&Theme::instance(), &Theme::changed, this, &NoteTextView::paintTheme);
    paintTheme();
}

void NoteTextView::setLook(const Look& look) {
    _textWidth = look.textWidth;
    setFont(look.font);
    setTabStopDistance(4 * QFontMetricsF(look.font).horizontalAdvance(u' ') + 8);
    layOutColumn();
}

void NoteTextView::goToLine(int line, int column) {
    const int last = document()->blockCount() - 1;
    const QTextBlock block = document()->findBlockByNumber(std::clamp(line, 0, last));
    QTextCursor caret(block);
    caret.setPosition(block.position() + std::min(column, block.length() - 1));
    setTextCursor(caret);
    centerCursor();
}

QRect NoteTextView::caretPlace() const {
    const QRect place = cursorRect();
    return {viewport()->mapToGlobal(place.topLeft()), place.size()};
}

void NoteTextView::setMatches(std::vector<base::TextRange> matches,
                              std::optional<std::size_t> current) {
    _matches = std::move(matches);
    _currentMatch = current;
    showMatches();
}

/// Only those in sight: each costs with every line that is painted.
void NoteTextView::showMatches() {
    QList<QTextEdit::ExtraSelection> shown;
    const auto start = static_cast<std::size_t>(firstVisibleBlock().position());
    const QTextBlock last = cursorForPosition(viewport()->rect().bottomRight()).block();
    const auto end = static_cast<std::size_t>(last.position() + last.length());
    const Colors& colors = Theme::instance().colors();
    auto match = std::find_if(_matches.begin(), _matches.end(),
                              [&](const auto& candidate) { return candidate.end() >= start; });
    for (; match != _matches.end() && match->location <= end; ++match) {
        const bool isCurrent = _currentMatch == static_cast<std::size_t>(match - _matches.begin());
        QTextEdit::ExtraSelection selection;
        selection.cursor = cursorAt(*document(), *match);
        selection.format.setBackground(isCurrent ? colors.selection : colors.mark);
        shown.push_back(selection);
    }
    if (!shown.empty() || !extraSelections().empty()) {
        setExtraSelections(shown);
    }
}

bool NoteTextView::event(QEvent* event) {
    if (forwardMarginEvent(*event)) {
        return true;
    }
    const bool isDone = QPlainTextEdit::event(event);
    if (event->type() == QEvent::Resize) {
        layOutColumn();
    }
    return isDone;
}

/// The margins beside the column are no part of the viewport, but belong to the text for whoever
/// points at them.
bool NoteTextView::forwardMarginEvent(QEvent& event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            const auto& mouse = static_cast<const QMouseEvent&>(event);
            QMouseEvent moved(mouse.type(), viewport()->mapFrom(this, mouse.position()),
                              mouse.globalPosition(), mouse.button(), mouse.buttons(),
                              mouse.modifiers(), mouse.pointingDevice());
            return viewportEvent(&moved);
        }
        case QEvent::Wheel: wheelEvent(static_cast<QWheelEvent*>(&event)); return true;
        default: return false;
    }
}

/// A place between two lines belongs to the upper one, as if its letters were so high.
QPointF NoteTextView::inLine(QPointF place) const {
    const auto& spaced = static_cast<const SpacedTextLayout&>(*document()->documentLayout());
    const QTextBlock block = cursorForPosition(place.toPoint()).block();
    const qreal top = blockBoundingGeometry(block).translated(contentOffset()).top();
    for (int i = 0; i < block.layout()->lineCount(); ++i) {
        const QTextLine line = block.layout()->lineAt(i);
        const qreal bottom = top + line.y() + line.height();
        if (place.y() >= bottom && place.y() < top + line.y() + spaced.pitchOf(line)) {
            place.setY(bottom - 1);
        }
    }
    return place;
}

bool NoteTextView::viewportEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove: {
            const auto& mouse = static_cast<const QMouseEvent&>(*event);
            QMouseEvent moved(mouse.type(), inLine(mouse.position()), mouse.globalPosition(),
                              mouse.button(), mouse.buttons(), mouse.modifiers(),
                              mouse.pointingDevice());
            const bool isDone = QPlainTextEdit::viewportEvent(&moved);
            event->setAccepted(moved.isAccepted());
            return isDone;
        }
        default: return QPlainTextEdit::viewportEvent(event);
    }
}

void NoteTextView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    const Colors& colors = Theme::instance().colors();
    painter.fillRect(event->rect(), colors.window);
    if (textCursor().hasSelection()) {
        for (QTextBlock block = firstVisibleBlock(); block.isValid(); block = block.next()) {
            const QRectF place = blockBoundingGeometry(block).translated(contentOffset());
            if (place.top() > viewport()->height()) {
                break;
            }
            paintSelectedGaps(painter, block, place);
        }
    }
    painter.end();
    QPlainTextEdit::paintEvent(event);
}

/// The text itself is painted as high as its letters: what is selected would have stripes.
void NoteTextView::paintSelectedGaps(QPainter& painter, const QTextBlock& block,
                                     const QRectF& place) const {
    const auto& spaced = static_cast<const SpacedTextLayout&>(*document()->documentLayout());
    const int start = textCursor().selectionStart() - block.position();
    const int end = textCursor().selectionEnd() - block.position();
    for (int i = 0; i < block.layout()->lineCount(); ++i) {
        const QTextLine line = block.layout()->lineAt(i);
        const int from = std::max(start, line.textStart());
        const int to = std::min(end, line.textStart() + line.textLength());
        if (from < to) {
            const qreal gap = spaced.pitchOf(line) - line.height();
            const qreal left = std::min(line.cursorToX(from), line.cursorToX(to));
            const qreal right = std::max(line.cursorToX(from), line.cursorToX(to));
            painter.fillRect(QRectF(place.left() + left, place.top() + line.y() - gap / 2,
                                    right - left, line.height() + gap),
                             Theme::instance().colors().selection);
        }
    }
}

void NoteTextView::scrollContentsBy(int dx, int dy) {
    QPlainTextEdit::scrollContentsBy(dx, dy);
    if (!_matches.empty()) {
        showMatches();
    }
}

void NoteTextView::layOutColumn() {
    const int least = width() < narrowWidth ? narrowSideMargin : sideMargin;
    const int side = std::max(least, (width() - _textWidth) / 2) - topMargin;
    setViewportMargins(side, 0, side, 0);
}

void NoteTextView::paintTheme() {
    const Colors& colors = Theme::instance().colors();
    QPalette painted = palette();
    painted.setColor(QPalette::Base, colors.window);
    painted.setColor(QPalette::Window, colors.window);
    painted.setColor(QPalette::Text, colors.text);
    painted.setColor(QPalette::PlaceholderText, colors.text2);
    painted.setColor(QPalette::Highlight, colors.selection);
    painted.setColor(QPalette::HighlightedText, colors.text);
    setPalette(painted);
    showMatches();
}

}  // namespace tessaly::desktop
