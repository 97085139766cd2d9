// SPDX-License-Identifier: MIT
// Whole lines that go somewhere else.
#include <QTextBlock>
#include <algorithm>
#include <vector>

#include "desktop/note_editor.h"
#include "desktop/note_layout.h"

namespace tessaly::desktop {

void NoteEditor::moveLines(Lines lines, LineTarget target) {
    const DocumentChanges changes = changesThatMove(*document(), lines, target);
    if (!canEdit() || changes.empty()) {
        return;
    }
    const int by = firstLineAfterMove(lines, target) - lines.first;
    std::vector<int> folded;
    for (const int head : noteLayout().folds().heads()) {
        if (head >= lines.first && head <= lines.last) {
            folded.push_back(head + by);
        }
    }
    const int line = textCursor().blockNumber();
    const int column = textCursor().positionInBlock();
    if (!edit([&] { moveCaretAlong(changes, [&] { makeChanges(*document(), changes); }); })) {
        return;
    }
    noteLayout().changeFolds([&](NoteFolds& folds) {
        return std::count_if(folded.begin(), folded.end(),
                             [&](int head) { return folds.fold(head); }) > 0;
    });
    if (line >= lines.first && line <= lines.last) {
        const QTextBlock block = document()->findBlockByNumber(line + by);
        QTextCursor caret(block);
        caret.setPosition(block.position() + std::min(column, block.length() - 1));
        setTextCursor(caret);
    }
}

/// A line that is folded moves with all that it hides, and past another likewise.
bool NoteEditor::moveFolded(editor::MarkAction action) {
    const bool isUp = action == editor::MarkAction::moveUp;
    const NoteFolds& folds = noteLayout().folds();
    if ((!isUp && action != editor::MarkAction::moveDown) || folds.heads().empty()) {
        return false;
    }
    Lines lines = selectedLines();
    lines.last = folds.isFolded(lines.last) ? *folds.lastOf(lines.last) : lines.last;
    int before = isUp ? lines.first - 1 : lines.last + 1;
    while (before > 0 && !document()->findBlockByNumber(before).isVisible()) {
        --before;
    }
    if (!isUp) {
        before = (folds.isFolded(before) ? *folds.lastOf(before) : before) + 1;
    }
    if (before >= 0 && before <= endForLines(*document())) {
        moveLines(lines, {before, 0});
    }
    return true;
}

}  // namespace tessaly::desktop
