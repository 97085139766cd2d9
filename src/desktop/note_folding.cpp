// SPDX-License-Identifier: MIT
#include "desktop/note_folding.h"

#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QTextBlock>

#include "desktop/note_layout.h"
#include "desktop/note_text_view.h"

namespace tessaly::desktop {

namespace {

QTextBlock visibleAfter(QTextBlock block) {
    while (block.isValid() && !block.isVisible()) {
        block = block.next();
    }
    return block;
}

QTextBlock visibleBefore(QTextBlock block) {
    while (block.isValid() && !block.isVisible()) {
        block = block.previous();
    }
    return block;
}

int endOfBlock(const QTextBlock& block) {
    return block.position() + block.length() - 1;
}

bool isEditingKey(const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Backspace:
        case Qt::Key_Delete:
        case Qt::Key_Return:
        case Qt::Key_Enter: return true;
        default: return event.matches(QKeySequence::DeleteEndOfLine);
    }
}

}  // namespace

NoteFolding::NoteFolding(NoteTextView& view, NoteLayout& layout) : _view(view), _layout(layout) {}

bool NoteFolding::canToggle(int line) const {
    return _layout.folds().isFolded(line) || _layout.folds().canFold(line);
}

std::optional<int> NoteFolding::nearest(int line) const {
    if (canToggle(line)) {
        return line;
    }
    for (int above = line - 1; above >= 0; --above) {
        if (canToggle(above) && _layout.folds().lastOf(above) >= line) {
            return above;
        }
    }
    return std::nullopt;
}

void NoteFolding::toggle(int line) {
    _view.keepSight([&] {
        _layout.changeFolds([&](NoteFolds& folds) {
            return folds.isFolded(line) ? folds.unfold(line) : folds.fold(line);
        });
    });
    QTextCursor caret = _view.textCursor();
    if (!caret.block().isVisible() || !_view.document()->findBlock(caret.anchor()).isVisible()) {
        caret.setPosition(endOfBlock(_view.document()->findBlockByNumber(line)));
        _view.setTextCursor(caret);
    }
}

void NoteFolding::toggleAll() {
    _view.keepSight([&] {
        _layout.changeFolds([](NoteFolds& folds) {
            return folds.heads().empty() ? folds.foldAll() : folds.unfoldAll();
        });
    });
    QTextCursor caret = _view.textCursor();
    if (!caret.block().isVisible()) {
        caret.setPosition(endOfBlock(visibleBefore(caret.block())));
        _view.setTextCursor(caret);
    }
    _view.ensureCursorVisible();
}

void NoteFolding::caretMoved() {
    const QTextBlock block = _view.textCursor().block();
    if (!_isMoving && !block.isVisible()) {
        _layout.changeFolds([&](NoteFolds& folds) { return folds.reveal(block.blockNumber()); });
    }
}

void NoteFolding::pressKey(const QKeyEvent& event, const std::function<void()>& press) {
    beforeEdit(event);
    const QTextCursor before = _view.textCursor();
    const int revision = _view.document()->revision();
    {
        const QScopedValueRollback moving(_isMoving, true);
        press();
    }
    if (_view.document()->revision() == revision) {
        leaveHidden(before, event);
    }
    caretMoved();
}

/// The toolkit steps into hidden lines, or stays before them.
void NoteFolding::leaveHidden(QTextCursor before, const QKeyEvent& event) {
    QTextCursor caret = _view.textCursor();
    const bool isShift = event.modifiers().testFlag(Qt::ShiftModifier);
    const auto mode = isShift ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor;
    if (!caret.block().isVisible()) {
        const bool isForward = caret.position() > before.position();
        const QTextBlock next = visibleAfter(caret.block());
        caret.setPosition(isForward && next.isValid() ? next.position()
                                                      : endOfBlock(visibleBefore(caret.block())),
                          mode);
        _view.setTextCursor(caret);
        return;
    }
    const bool isRightToLeft = caret.block().textDirection() == Qt::RightToLeft;
    const bool isBackward = event.key() == (isRightToLeft ? Qt::Key_Right : Qt::Key_Left);
    const QTextBlock previous = caret.block().previous();
    if (isBackward && caret.position() == before.position() && caret.atBlockStart() &&
        previous.isValid() && !previous.isVisible()) {
        caret.setPosition(endOfBlock(visibleBefore(previous)), mode);
        _view.setTextCursor(caret);
    }
}

void NoteFolding::beforeEdit(const QKeyEvent& event) {
    if (!isEditingKey(event)) {
        return;
    }
    const QTextCursor caret = _view.textCursor();
    const QTextDocument& document = *_view.document();
    const QTextBlock first = document.findBlock(caret.selectionStart());
    const QTextBlock last = document.findBlock(caret.selectionEnd());
    _layout.changeFolds([&](NoteFolds& folds) {
        bool isChanged = false;
        for (const QTextBlock& edge : {first.previous(), last.next()}) {
            if (edge.isValid() && !edge.isVisible()) {
                isChanged = folds.reveal(edge.blockNumber()) || isChanged;
            }
        }
        return isChanged;
    });
}

}  // namespace tessaly::desktop
