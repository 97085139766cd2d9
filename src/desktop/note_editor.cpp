// SPDX-License-Identifier: MIT
#include "desktop/note_editor.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextBlock>
#include <QWheelEvent>
#include <algorithm>

#include "desktop/qt_text.h"
#include "desktop/spaced_text_layout.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

using editor::Indentation;

constexpr qint64 typingPause = 1000;  // milliseconds
constexpr int topMargin = 24;
constexpr int sideMargin = 56;
constexpr int narrowSideMargin = 24;
constexpr int narrowWidth = 480;
constexpr int pieceLength = 2000;

QString withDocumentEnds(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    for (const char16_t end : {u'\r', u'\u2029', u'\uFDD0', u'\uFDD1'}) {
        text.replace(QChar(end), u'\n');
    }
    return text;
}

qsizetype longestLineOf(const QString& text) {
    qsizetype longest = 0;
    qsizetype start = 0;
    for (;;) {
        const qsizetype end = text.indexOf(u'\n', start);
        longest = std::max(longest, (end < 0 ? text.size() : end) - start);
        if (end < 0) {
            return longest;
        }
        start = end + 1;
    }
}

QString inPieces(const QString& text) {
    QString pieces;
    int length = 0;
    for (const QChar c : text) {
        if (length >= pieceLength && !c.isLowSurrogate() && c != u'\n') {
            pieces += u'\n';
            length = 0;
        }
        pieces += c;
        length = c == u'\n' ? 0 : length + 1;
    }
    return pieces;
}

/// What a key press writes; empty: nothing.
QString writtenBy(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const bool isCommand = modifiers == Qt::ControlModifier ||
                           modifiers == (Qt::ControlModifier | Qt::ShiftModifier) ||
                           modifiers == Qt::AltModifier;
    const QString text = event.text();
    if (text.isEmpty() || isCommand) {
        return {};
    }
    const QChar first = text.front();
    const bool isWritten = first.isPrint() || first.category() == QChar::Other_Format ||
                           first.category() == QChar::Other_PrivateUse || first.isSurrogate();
    return isWritten ? text : QString();
}

}  // namespace

NoteEditor::NoteEditor(QWidget* parent) : QPlainTextEdit(parent) {
    setFrameShape(QFrame::NoFrame);
    setAccessibleName(trText("Note"));
    setCursor(Qt::IBeamCursor);
    verticalScrollBar()->setCursor(Qt::ArrowCursor);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* text = new QTextDocument(this);
    text->setDocumentLayout(new SpacedTextLayout(text));
    text->setDocumentMargin(topMargin);
    setDocument(text);
    // Painted with the text: what the view keeps as its own ground does not follow the theme.
    viewport()->setAutoFillBackground(false);
    connect(document(), &QTextDocument::contentsChange, this, &NoteEditor::onContentsChange);
    connect(&Theme::instance(), &Theme::changed, this, &NoteEditor::paintTheme);
    paintTheme();
}

void NoteEditor::setLook(const Look& look) {
    _textWidth = look.textWidth;
    setFont(look.font);
    setTabStopDistance(4 * QFontMetricsF(look.font).horizontalAdvance(u' ') + 8);
    layOutColumn();
}

void NoteEditor::setEditing(Editing editing) {
    _editing = editing;
    setTextInteractionFlags(canEdit() ? Qt::TextEditorInteraction
                                      : Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void NoteEditor::setText(const std::string& shown) {
    const QString text = documentText(shown);
    _isInPieces = longestLineOf(text) > longestLine;
    _piecesText = _isInPieces ? shown : std::string();
    _isSetting = true;
    setPlainText(_isInPieces ? inPieces(text) : text);
    _isSetting = false;
    _knownRevision = document()->revision();
    _run = Run::none;
    setMatches({}, std::nullopt);
    setEditing(_editing);
}

std::string NoteEditor::text() const {
    return _isInPieces ? _piecesText : textOfDocument(*document());
}

void NoteEditor::replaceText(const std::string& shown) {
    if (_isInPieces || longestLineOf(documentText(shown)) > longestLine) {
        setText(shown);
        return;
    }
    QGuiApplication::inputMethod()->commit();
    const DocumentChanges changes = changesBetween(text(), shown);
    if (changes.empty()) {
        return;
    }
    const QTextCursor top(firstVisibleBlock());
    const int topLine = verticalScrollBar()->value() - firstVisibleBlock().firstLineNumber();
    _isSetting = true;
    makeAroundCaret(changes);
    _isSetting = false;
    verticalScrollBar()->setValue(top.block().firstLineNumber() + topLine);
}

void NoteEditor::makeAroundCaret(const DocumentChanges& changes) {
    // A cursor that is there during the changes moves with them, in its own way.
    const int anchor = positionAfter(textCursor().anchor(), changes);
    const int position = positionAfter(textCursor().position(), changes);
    makeChanges(*document(), changes);
    QTextCursor caret(document());
    caret.setPosition(anchor);
    caret.setPosition(position, QTextCursor::KeepAnchor);
    setTextCursor(caret);
}

bool NoteEditor::mark(editor::MarkAction action) {
    if (!canEdit()) {
        return false;
    }
    const auto edit = editor::mark(action, text(), selectionOf(textCursor()), _markSettings);
    if (!edit) {
        Q_EMIT notice(qt(edit.failure().description));
        return false;
    }
    if (*edit) {
        make(**edit, 0);
    }
    return edit->has_value();
}

int NoteEditor::rewriteLines(const LineRewrite& rewrite) {
    if (!canEdit()) {
        return 0;
    }
    DocumentChanges changes;
    int count = 0;
    const auto [first, last] = selectedLines();
    for (int line = first; line <= last; ++line) {
        const std::string before = lineText(line);
        const int start = document()->findBlockByNumber(line).position();
        DocumentChanges ofLine = changesBetween(before, rewrite(before));
        count += ofLine.empty() ? 0 : 1;
        for (DocumentChange& change : ofLine) {
            change.position += start;
            changes.push_back(std::move(change));
        }
    }
    if (count > 0) {
        makeAroundCaret(changes);
        ensureCursorVisible();
    }
    return count;
}

NoteEditor::Lines NoteEditor::selectedLines() const {
    const QTextCursor caret = textCursor();
    const QTextBlock first = document()->findBlock(caret.selectionStart());
    QTextBlock last = document()->findBlock(caret.selectionEnd());
    // A selection that ends before a line's first character has nothing of that line.
    if (last != first && last.position() == caret.selectionEnd()) {
        last = last.previous();
    }
    return {first.blockNumber(), last.blockNumber()};
}

std::string NoteEditor::lineText(int line) const {
    return utf8(document()->findBlockByNumber(line).text());
}

void NoteEditor::goToLine(int line, int column) {
    const int last = document()->blockCount() - 1;
    const QTextBlock block = document()->findBlockByNumber(std::clamp(line, 0, last));
    QTextCursor caret(block);
    caret.setPosition(block.position() + std::min(column, block.length() - 1));
    setTextCursor(caret);
    centerCursor();
}

QRect NoteEditor::caretPlace() const {
    const QRect place = cursorRect();
    return {viewport()->mapToGlobal(place.topLeft()), place.size()};
}

void NoteEditor::setMatches(std::vector<base::TextRange> matches,
                            std::optional<std::size_t> current) {
    _matches = std::move(matches);
    _currentMatch = current;
    showMatches();
}

/// Only those in sight: each costs with every line that is painted.
void NoteEditor::showMatches() {
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

bool NoteEditor::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        isWindowKey(static_cast<const QKeyEvent&>(*event))) {
        event->ignore();
        return false;
    }
    if (forwardMarginEvent(*event)) {
        return true;
    }
    const bool isDone = QPlainTextEdit::event(event);
    if (event->type() == QEvent::Resize) {
        layOutColumn();
    }
    return isDone;
}

/// The base class would take keys for itself that are somebody's command, such as Ctrl+K.
bool NoteEditor::isWindowKey(const QKeyEvent& event) const {
    const QKeySequence pressed(event.keyCombination());
    const QList<QAction*> actions = window()->actions();
    return std::any_of(actions.begin(), actions.end(), [&](const QAction* action) {
        return action->isEnabled() && action->shortcuts().contains(pressed);
    });
}

/// The margins beside the column are no part of the viewport, but belong to the text for whoever
/// points at them.
/// A place between two lines belongs to the upper one, as if its letters were so high.
QPointF NoteEditor::inLine(QPointF place) const {
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

bool NoteEditor::viewportEvent(QEvent* event) {
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

void NoteEditor::paintEvent(QPaintEvent* event) {
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
void NoteEditor::paintSelectedGaps(QPainter& painter, const QTextBlock& block,
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

bool NoteEditor::forwardMarginEvent(QEvent& event) {
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

void NoteEditor::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        Q_EMIT escaped();
        return;
    }
    if (canEdit() && pressEditingKey(*event)) {
        event->accept();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

/// False: the key is not for us.
bool NoteEditor::pressEditingKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers =
        event.modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
    const bool isPlain = modifiers == Qt::NoModifier;
    const bool isPlainOrShift = isPlain || modifiers == Qt::ShiftModifier;
    const int key = event.key();
    if (isPlainOrShift && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
        pressReturn(event);
    } else if (isPlainOrShift && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) {
        pressTab(isPlain ? Indentation::more : Indentation::less);
    } else if (isPlainOrShift && key == Qt::Key_Backspace) {
        pressDelete(Run::deleting);
    } else if (isPlain && key == Qt::Key_Delete) {
        pressDelete(Run::deletingForward);
    } else if (const QString written = writtenBy(event); !written.isEmpty()) {
        type(written);
    } else {
        return false;
    }
    return true;
}

NoteEditor::LinesText NoteEditor::selectedLinesText() const {
    const QTextCursor caret = textCursor();
    const int start = document()->findBlock(caret.selectionStart()).position();
    const QTextBlock last = document()->findBlock(caret.selectionEnd());
    const base::TextRange lines{
        static_cast<std::size_t>(start),
        static_cast<std::size_t>(last.position() + last.length() - 1 - start)};
    base::TextRange selection = selectionOf(caret);
    selection.location -= lines.location;
    return {utf8(selectedTextOf(cursorAt(*document(), lines))), start, selection};
}

void NoteEditor::make(editor::Edit edit, int start) {
    edit.range.location += static_cast<std::size_t>(start);
    edit.selection.location += static_cast<std::size_t>(start);
    makeEdit(*document(), edit);
    setTextCursor(cursorAt(*document(), edit.selection));
    ensureCursorVisible();
}

/// With Shift, a line that does not go on as the one before.
void NoteEditor::pressReturn(const QKeyEvent& event) {
    const bool isBare = event.modifiers().testFlag(Qt::ShiftModifier);
    const LinesText lines = selectedLinesText();
    const auto edit = isBare ? std::nullopt : editor::continueList(lines.text, lines.selection);
    make(edit.value_or(editor::Edit{lines.selection, "\n", {lines.selection.location + 1, 0}}),
         lines.start);
}

void NoteEditor::pressTab(Indentation indentation) {
    const LinesText lines = selectedLinesText();
    if (const auto edit = editor::indent(lines.text, lines.selection, indentation)) {
        make(*edit, lines.start);
    } else if (indentation == Indentation::more) {
        type(QStringLiteral("\t"));
    }
}

void NoteEditor::pressDelete(Run run) {
    inRun(run, {}, [&] {
        QTextCursor caret = textCursor();
        if (run == Run::deleting) {
            caret.deletePreviousChar();
        } else {
            caret.deleteChar();
        }
        setTextCursor(caret);
    });
}

void NoteEditor::type(const QString& text) {
    inRun(Run::typing, text, [&] {
        QTextCursor caret = textCursor();
        caret.insertText(text);
        setTextCursor(caret);
    });
}

bool NoteEditor::goesOn(Run run, const QString& text) const {
    const bool isNewWord =
        run == Run::typing && _endsInBlank && !text.isEmpty() && !text.front().isSpace();
    const QTextCursor caret = textCursor();
    return run == _run && !isNewWord && !caret.hasSelection() && caret.position() == _runPosition &&
           document()->revision() == _runRevision && _sinceKey.elapsed() <= typingPause;
}

void NoteEditor::inRun(Run run, const QString& text, const std::function<void()>& change) {
    QTextCursor step = textCursor();
    if (goesOn(run, text)) {
        step.joinPreviousEditBlock();
    } else {
        step.beginEditBlock();
    }
    change();
    step.endEditBlock();
    ensureCursorVisible();
    _run = run;
    _runPosition = textCursor().position();
    _runRevision = document()->revision();
    _endsInBlank = !text.isEmpty() && text.back().isSpace();
    _sinceKey.start();
}

void NoteEditor::inputMethodEvent(QInputMethodEvent* event) {
    const QString text = event->commitString();
    if (text.isEmpty()) {
        QPlainTextEdit::inputMethodEvent(event);
        return;
    }
    inRun(Run::typing, text, [&] { QPlainTextEdit::inputMethodEvent(event); });
}

QMimeData* NoteEditor::createMimeDataFromSelection() const {
    auto* copied = new QMimeData;
    copied->setText(selectedTextOf(textCursor()));
    return copied;
}

void NoteEditor::insertFromMimeData(const QMimeData* source) {
    if (!canEdit() || !source->hasText()) {
        return;
    }
    // By way of UTF-8, since what is no UTF-16 could not be saved as it stands.
    const QString text = documentText(utf8(withDocumentEnds(source->text())));
    if (longestLineOf(text) > longestLine) {
        Q_EMIT notice(trText("The text has a line that is too long to be edited here."));
        return;
    }
    QTextCursor caret = textCursor();
    caret.beginEditBlock();
    caret.insertText(text);
    caret.endEditBlock();
    setTextCursor(caret);
    ensureCursorVisible();
}

void NoteEditor::contextMenuEvent(QContextMenuEvent* event) {
    const bool hasSelection = textCursor().hasSelection();
    QMenu menu(this);
    const auto add = [&](const QString& text, void (NoteEditor::*run)(), bool isPossible) {
        menu.addAction(text, this, run)->setEnabled(isPossible);
    };
    add(trText("Undo"), &NoteEditor::undo, canEdit() && document()->isUndoAvailable());
    add(trText("Redo"), &NoteEditor::redo, canEdit() && document()->isRedoAvailable());
    menu.addSeparator();
    add(trText("Cut"), &NoteEditor::cut, canEdit() && hasSelection);
    add(trText("Copy"), &NoteEditor::copy, hasSelection);
    add(trText("Paste"), &NoteEditor::paste, canEdit() && canPaste());
    add(trText("Select All"), &NoteEditor::selectAll, !document()->isEmpty());
    menu.exec(event->globalPos());
}

void NoteEditor::onContentsChange() {
    // Layout alone has changed where the revision has not.
    const bool isChanged = document()->revision() != _knownRevision;
    _knownRevision = document()->revision();
    if (isChanged && !_isSetting) {
        Q_EMIT edited();
    }
}

void NoteEditor::scrollContentsBy(int dx, int dy) {
    QPlainTextEdit::scrollContentsBy(dx, dy);
    if (!_matches.empty()) {
        showMatches();
    }
}

void NoteEditor::layOutColumn() {
    const int least = width() < narrowWidth ? narrowSideMargin : sideMargin;
    const int side = std::max(least, (width() - _textWidth) / 2) - topMargin;
    setViewportMargins(side, 0, side, 0);
}

void NoteEditor::paintTheme() {
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
