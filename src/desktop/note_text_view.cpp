// SPDX-License-Identifier: MIT
#include "desktop/note_text_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/document_edits.h"
#include "desktop/note_folding.h"
#include "desktop/note_layout.h"
#include "desktop/note_pointer.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int topMargin = 24;
constexpr int sideMargin = 56;
constexpr int narrowSideMargin = 24;
constexpr int narrowWidth = 480;
constexpr int caretWidth = 2;

NoteLayout* makeLayout(QTextEdit& edit) {
    auto* text = new QTextDocument(&edit);
    auto* layout = new NoteLayout(text);
    text->setDocumentLayout(layout);
    text->setDocumentMargin(topMargin);
    edit.setDocument(text);
    return layout;
}

}  // namespace

NoteTextView::NoteTextView(QWidget* parent)
    : QTextEdit(parent),
      _layout(makeLayout(*this)),
      _folding(std::make_unique<NoteFolding>(*this, *_layout)),
      _pointer(new NotePointer(*this, *_layout)) {
    setFrameShape(QFrame::NoFrame);
    setCursor(Qt::IBeamCursor);
    setAcceptRichText(false);
    setCursorWidth(caretWidth);
    verticalScrollBar()->setCursor(Qt::ArrowCursor);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setMouseTracking(true);
    // Painted with the text: what the view keeps as its own ground does not follow the theme.
    viewport()->setAutoFillBackground(false);
    connect(&Theme::instance(), &Theme::changed, this, &NoteTextView::paintTheme);
    connect(this, &QTextEdit::cursorPositionChanged, this, &NoteTextView::onCaret);
    connect(_pointer, &NotePointer::boxClicked, this, &NoteTextView::boxClicked);
    connect(_pointer, &NotePointer::dropped, this, &NoteTextView::linesDropped);
    connect(_pointer, &NotePointer::foldClicked, this, [this](int line) {
        if (_folding->canToggle(line)) {
            _folding->toggle(line);
        }
    });
    // What is selected is painted higher than its letters, of which alone the base knows.
    connect(this, &QTextEdit::selectionChanged, viewport(), qOverload<>(&QWidget::update));
    // The base scrolls to the caret in the same turn.
    connect(document(), &QTextDocument::contentsChanged, _layout, &NoteLayout::tellSize);
    paintTheme();
}

NoteTextView::~NoteTextView() {
    delete _pointer;  // asks the layout, which goes with the document
}

void NoteTextView::setLook(const Look& look) {
    keepSight([&] {
        _textWidth = look.textWidth;
        _font = look.font;
        setFont(_font);
        setTabStopDistance(4 * QFontMetricsF(look.font).horizontalAdvance(u' ') + 8);
        _layout->setRendering(look.isRenderingMarkdown);
        _layout->setMarkers(look.markers);
        layOutColumn();
    });
}

void NoteTextView::setPlaceholderText(const QString& text) {
    _placeholder = text;
    viewport()->update();
}

void NoteTextView::goToLine(int line, int column) {
    const int last = document()->blockCount() - 1;
    const QTextBlock block = document()->findBlockByNumber(std::clamp(line, 0, last));
    QTextCursor caret(block);
    caret.setPosition(block.position() + std::min(column, block.length() - 1));
    setTextCursor(caret);
    _layout->tellSize();
    QScrollBar& bar = *verticalScrollBar();
    bar.setValue(bar.value() + cursorRect().center().y() - viewport()->height() / 2);
}

QRect NoteTextView::caretPlace() const {
    const QRect place = cursorRect();
    return {viewport()->mapToGlobal(place.topLeft()), place.size()};
}

QVariant NoteTextView::inputMethodQuery(Qt::InputMethodQuery query) const {
    const QVariant answer = QTextEdit::inputMethodQuery(query);
    const bool isPlace = query == Qt::ImCursorRectangle || query == Qt::ImAnchorRectangle;
    return isPlace ? answer.toRectF().translated(viewport()->pos()) : answer;
}

app::FenceState NoteTextView::fenceBefore(int line) const {
    return _layout->fenceBefore(line);
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
    const int top = verticalScrollBar()->value();
    const QTextBlock first = document()->findBlockByNumber(_layout->blockAt(top));
    const QTextBlock last =
        document()->findBlockByNumber(_layout->blockAt(top + viewport()->height()));
    const auto start = static_cast<std::size_t>(first.position());
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
        viewport()->update();
    }
}

void NoteTextView::onCaret() {
    _folding->caretMoved();
    if (!_isPressing) {
        showMarkup();
    }
}

/// The markup of the caret's line, while the user writes here.
void NoteTextView::showMarkup() {
    const bool isShown = hasFocus() && !isReadOnly();
    _layout->setShownMarkup(isShown ? textCursor().blockNumber() : -1);
}

void NoteTextView::focusInEvent(QFocusEvent* event) {
    QTextEdit::focusInEvent(event);
    showMarkup();
}

void NoteTextView::focusOutEvent(QFocusEvent* event) {
    QTextEdit::focusOutEvent(event);
    // A menu takes the keys for a moment.
    if (event->reason() != Qt::PopupFocusReason) {
        showMarkup();
    }
}

bool NoteTextView::event(QEvent* event) {
    if (forwardMarginEvent(*event)) {
        return true;
    }
    const bool isDone = QTextEdit::event(event);
    if (event->type() == QEvent::Resize) {
        layOutColumn();
    } else if (event->type() == QEvent::StyleChange && _font.pixelSize() > 0 &&
               font().pixelSize() != _font.pixelSize()) {
        // A style sheet gives a view the font back that it was made with.
        setFont(_font);
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

QPointF NoteTextView::inDocument(const QPointF& place) const {
    return place + QPointF(0, verticalScrollBar()->value());
}

void NoteTextView::mousePressEvent(QMouseEvent* event) {
    _movedWords.press(*event);
    if (!_pointer->press(*event) && !pressLink(*event)) {
        _isPressing = true;
        QTextEdit::mousePressEvent(_movedWords.follow(*event).get());
    }
}

void NoteTextView::mouseDoubleClickEvent(QMouseEvent* event) {
    const bool isLeft = event->button() == Qt::LeftButton;
    if (_pointer->press(*event) || (isLeft && openableAt(event->position(), event->modifiers()))) {
        return;  // the first click has opened the link
    }
    const auto picture = isLeft ? pictureAt(*_layout, inDocument(event->position())) : std::nullopt;
    if (picture) {
        Q_EMIT linkOpened(picture->span);
    } else {
        _isPressing = true;
        _movedWords.press(*event);
        QTextEdit::mouseDoubleClickEvent(_movedWords.follow(*event).get());
    }
}

void NoteTextView::mouseMoveEvent(QMouseEvent* event) {
    if (_pointer->move(*event)) {
        return;
    }
    if (_linkPress.isHeld()) {
        const auto press = _linkPress.dragged(*event);
        if (press == nullptr) {
            return;
        }
        _isPressing = true;
        QTextEdit::mousePressEvent(press.get());
    }
    showLinkPointer(*event);
    QTextEdit::mouseMoveEvent(_movedWords.follow(*event).get());
}

void NoteTextView::mouseReleaseEvent(QMouseEvent* event) {
    if (!_pointer->release(*event) && !releaseLink(*event)) {
        QTextEdit::mouseReleaseEvent(event);
    }
    const QPointF before = cursorRect().center();
    endPress();
    if (const QPointF way = cursorRect().center() - before; !way.isNull()) {
        _movedWords.moved(event->position(), way);
    }
}

void NoteTextView::endPress() {
    if (std::exchange(_isPressing, false)) {
        showMarkup();
    }
}

void NoteTextView::leaveEvent(QEvent* event) {
    QTextEdit::leaveEvent(event);
    _pointer->leave();
}

void NoteTextView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && _pointer->isDragging()) {
        _pointer->cancelDrag();
        return;
    }
    _folding->pressKey(*event, [&] { QTextEdit::keyPressEvent(event); });
    if (event->matches(QKeySequence::MoveToStartOfDocument)) {
        verticalScrollBar()->setValue(0);  // the caret alone would leave the margin out of sight
    }
}

void NoteTextView::paintEvent(QPaintEvent* event) {
    QPainter(viewport()).fillRect(event->rect(), Theme::instance().colors().window);
    const int top = verticalScrollBar()->value();
    // What it moves may lie outside of what is painted now.
    if (_layout->measure(top, top + viewport()->height())) {
        viewport()->update();
    }
    QTextEdit::paintEvent(event);
    if (_pointer->isDragging()) {
        QPainter painter(viewport());
        painter.translate(0, -top);
        _pointer->paint(painter);
    }
    if (!_placeholder.isEmpty() && document()->isEmpty() &&
        document()->firstBlock().layout()->preeditAreaText().isEmpty()) {
        paintPlaceholder(event->rect());
    }
}

void NoteTextView::paintPlaceholder(const QRect& clip) {
    // Where the first letter will stand; the column is as far from either side.
    const QRect caret = cursorRect(QTextCursor(document()->firstBlock()));
    const int side = isRightToLeft() ? viewport()->width() - caret.right() : caret.left();
    QPainter painter(viewport());
    painter.setClipRect(clip);
    painter.setPen(Theme::instance().colors().text2);
    const QRect place(side, caret.top(), viewport()->width() - 2 * side, viewport()->height());
    painter.drawText(place, static_cast<int>(Qt::AlignTop) | Qt::TextWordWrap, _placeholder);
}

void NoteTextView::resizeEvent(QResizeEvent* event) {
    keepSight([&] {
        QTextEdit::resizeEvent(event);
        _layout->setViewHeight(viewport()->height());
    });
    measureSight();
}

void NoteTextView::scrollContentsBy(int dx, int dy) {
    QTextEdit::scrollContentsBy(dx, dy);
    measureSight();
    if (!_matches.empty()) {
        showMatches();
    }
}

/// Blocks that come into sight turn out to be higher or lower than was guessed, which must not move
/// those that are seen already.
void NoteTextView::measureSight() {
    keepSight([this] {
        const int top = verticalScrollBar()->value();
        _layout->measure(top, top + viewport()->height());
    });
}

void NoteTextView::keepSight(const std::function<void()>& change) {
    const int top = verticalScrollBar()->value();
    const int last = _layout->blockAt(top + viewport()->height());
    int block = _layout->blockAt(top);
    // Where the first block begins is sure, however high it turns out to be.
    for (int next = block; top > 0 && next <= last; ++next) {
        if (_layout->isMeasured(next)) {
            block = next;
            break;
        }
    }
    const QTextCursor kept(document()->findBlockByNumber(std::max(block, 0)));
    const qreal before = _layout->blockBoundingRect(kept.block()).top();
    change();
    _layout->tellSize();
    const qreal moved = _layout->blockBoundingRect(kept.block()).top() - before;
    verticalScrollBar()->setValue(top + static_cast<int>(std::lround(moved)));
}

void NoteTextView::layOutColumn() {
    const int least = width() < narrowWidth ? narrowSideMargin : sideMargin;
    const int side = std::max(0, (width() - _textWidth) / 2 - least);
    _layout->setSideRoom(least);
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
    _layout->restyle();
    showMatches();
}

}  // namespace tessaly::desktop
