// SPDX-License-Identifier: MIT
#include "desktop/recorded_text_edit.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QTextBlock>
#include <algorithm>

#include "desktop/document_history.h"
#include "desktop/long_lines.h"
#include "desktop/qt_text.h"
#include "store/three_way_merge.h"

namespace tessaly::desktop {

RecordedTextEdit::RecordedTextEdit(QWidget* parent)
    : NoteTextView(parent), _history(new DocumentHistory(*document(), longestLine, this)) {
    connect(_history, &DocumentHistory::edited, this, &RecordedTextEdit::edited);
    connect(_history, &DocumentHistory::refused, this, [this] {
        _isRefused = true;
        Q_EMIT notice(trText("The line would get too long to be edited here."));
    });
}

void RecordedTextEdit::setEditing(Editing editing) {
    _editing = editing;
    setTextInteractionFlags(canEdit() ? Qt::TextEditorInteraction
                                      : Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void RecordedTextEdit::setText(const std::string& shown) {
    const QString text = documentText(shown);
    _isInPieces = longestLineOf(text) > longestLine;
    _piecesText = _isInPieces ? shown : std::string();
    _history->begin([&] { setPlainText(_isInPieces ? inPieces(text) : text); });
    setMatches({}, std::nullopt);
    setEditing(_editing);
}

std::string RecordedTextEdit::text() const {
    return _isInPieces ? _piecesText : textOfDocument(*document());
}

void RecordedTextEdit::replaceText(const std::string& shown) {
    if (_isInPieces || longestLineOf(documentText(shown)) > longestLine) {
        setText(shown);
        return;
    }
    const std::string before = text();
    QGuiApplication::inputMethod()->commit();
    // What was being composed is the user's, and not known to whoever has made the other text.
    const std::string now = text();
    const DocumentChanges changes =
        changesBetween(now, now == before ? shown : store::threeWayMerge(before, now, shown));
    if (changes.empty()) {
        return;
    }
    keepSight([&] { moveCaretAlong(changes, [&] { _history->makeOthers(changes); }); });
}

void RecordedTextEdit::moveCaretAlong(const DocumentChanges& changes,
                                      const std::function<void()>& make) {
    // A cursor that is there during the changes moves with them, in its own way.
    const Caret moved{positionAfter(textCursor().anchor(), changes),
                      positionAfter(textCursor().position(), changes)};
    make();
    setCaret(moved);
}

RecordedTextEdit::Caret RecordedTextEdit::caret() const {
    return {textCursor().anchor(), textCursor().position()};
}

void RecordedTextEdit::setCaret(Caret caret) {
    const int last = document()->characterCount() - 1;
    QTextCursor moved(document());
    moved.setPosition(std::min(caret.anchor, last));
    moved.setPosition(std::min(caret.position, last), QTextCursor::KeepAnchor);
    setTextCursor(moved);
}

bool RecordedTextEdit::edit(const std::function<void()>& change, Step step) {
    const Caret before = caret();
    _isRefused = false;
    _history->setJoins(step == Step::same);
    change();
    _history->setJoins(false);
    if (_isRefused) {
        setCaret(before);
    }
    return !_isRefused;
}

bool RecordedTextEdit::changeText(const DocumentChanges& changes) {
    return edit([&] { makeChanges(*document(), changes); });
}

bool RecordedTextEdit::canUndo() const {
    return canEdit() && _history->canUndo();
}

bool RecordedTextEdit::canRedo() const {
    return canEdit() && _history->canRedo();
}

void RecordedTextEdit::undo() {
    goThroughHistory(&DocumentHistory::undo);
}

void RecordedTextEdit::redo() {
    goThroughHistory(&DocumentHistory::redo);
}

void RecordedTextEdit::cut() {
    edit([this] { NoteTextView::cut(); });
}

void RecordedTextEdit::goThroughHistory(std::optional<int> (DocumentHistory::*way)()) {
    if (!canEdit()) {
        return;
    }
    const Caret before = caret();
    _isRefused = false;
    if (const auto place = (_history->*way)()) {
        setCaret({*place, *place});
        ensureCursorVisible();
    } else if (_isRefused) {
        setCaret(before);
    }
}

}  // namespace tessaly::desktop
