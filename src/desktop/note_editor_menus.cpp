// SPDX-License-Identifier: MIT
// The context menus of a text, and of a task's box.
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QTextBlock>
#include <utility>

#include "desktop/box_menu.h"
#include "desktop/note_editor.h"
#include "desktop/note_pointer.h"
#include "desktop/qt_text.h"
#include "grammar/line_scanner.h"

namespace tessaly::desktop {

/// It deletes itself.
QMenu* NoteEditor::makeMenu() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu, &QMenu::aboutToHide, this, &NoteEditor::endPress);
    return menu;
}

/// False: there is none.
bool NoteEditor::openBoxMenu(const QPoint& place) {
    const int line = pointer().boxAt(viewport()->mapFromGlobal(QPointF(place)));
    if (line < 0 || !canEdit()) {
        return false;
    }
    goToLineEnd(line);
    QMenu* const menu = makeMenu();
    const auto type = grammar::classifyLine(lineText(line), _markSettings.markers).type;
    fillBoxMenu(*menu, *window(), type);
    menu->popup(place);
    return true;
}

void NoteEditor::goToLineEnd(int line) {
    const QTextBlock block = document()->findBlockByNumber(line);
    QTextCursor caret(block);
    caret.movePosition(QTextCursor::EndOfBlock);
    setTextCursor(caret);
}

void NoteEditor::addLinkActions(QMenu& menu, const std::optional<ShownLink>& link) {
    if (!link) {
        return;
    }
    const bool isImage = link->span.kind == app::SpanKind::image;
    menu.addAction(isImage ? trText("Open Image") : trText("Open Link"), this,
                   [this, span = link->span] { Q_EMIT linkOpened(span); });
    menu.addAction(trText("Copy Link Address"), this, [target = qt(link->span.target)] {
        QApplication::clipboard()->setText(target);
    });
    menu.addSeparator();
}

void NoteEditor::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Mouse && openBoxMenu(event->globalPos())) {
        return;
    }
    const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
    const QPoint place = isByKey ? caretPlace().bottomLeft() : event->globalPos();
    const int position =
        isByKey ? textCursor().position() : cursorForPosition(event->pos()).position();
    _menuLink = isByKey ? linkAtCaret(textCursor()) : linkOrPictureAt(QPointF(event->pos()));
    if (!_menuHelper || !_menuHelper(position, place)) {
        popUpMenu(place);
    }
}

void NoteEditor::popUpMenu(const QPoint& place, const std::function<void(QMenu& menu)>& addFirst) {
    const bool hasSelection = textCursor().hasSelection();
    QMenu& menu = *makeMenu();
    if (addFirst) {
        addFirst(menu);
    }
    const auto add = [&](const QString& text, void (NoteEditor::*run)(), bool isPossible) {
        menu.addAction(text, this, run)->setEnabled(isPossible);
    };
    addLinkActions(menu, std::exchange(_menuLink, std::nullopt));
    add(trText("Undo"), &NoteEditor::undo, canUndo());
    add(trText("Redo"), &NoteEditor::redo, canRedo());
    menu.addSeparator();
    add(trText("Cut"), &NoteEditor::cut, canEdit() && hasSelection);
    add(trText("Copy"), &NoteEditor::copy, hasSelection);
    add(trText("Paste"), &NoteEditor::paste, canEdit() && canPaste());
    add(trText("Select All"), &NoteEditor::selectAll, !document()->isEmpty());
    menu.popup(place);
}

}  // namespace tessaly::desktop
