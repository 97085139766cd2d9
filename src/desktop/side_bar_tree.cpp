// SPDX-License-Identifier: MIT
#include "desktop/side_bar_tree.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include "desktop/qt_text.h"
#include "desktop/side_bar_delegate.h"

namespace tessaly::desktop {

SideBarTree::SideBarTree(QWidget* parent) : QTreeView(parent) {
    setAccessibleName(trText("Sidebar"));
    setFrameShape(NoFrame);
    setHeaderHidden(true);
    setIndentation(0);
    setRootIsDecorated(false);
    // Else a folder of a hundred thousand notes takes a third of a second to open or to follow.
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(false);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setSelectionMode(SingleSelection);
    setEditTriggers(EditKeyPressed);
    setTextElideMode(Qt::ElideRight);
    setDragDropMode(DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setDropIndicatorShown(true);
    setAutoExpandDelay(700);
    // Of the pane behind it.
    setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setItemDelegate(new SideBarDelegate(this));
}

// The delegate paints what is selected; the style would paint it from edge to edge.
void SideBarTree::drawRow(QPainter* painter, const QStyleOptionViewItem& options,
                          const QModelIndex& index) const {
    QStyleOptionViewItem own = options;
    own.showDecorationSelected = false;
    QPalette palette = own.palette;
    palette.setBrush(QPalette::Highlight, Qt::NoBrush);
    own.palette = palette;
    QTreeView::drawRow(painter, own, index);
}

/// The window would take F2 for the open note, whichever row has the keys.
bool SideBarTree::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && currentIndex().isValid()) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool canRename = currentIndex().flags().testFlag(Qt::ItemIsEditable);
        if (key.key() == Qt::Key_F2 && key.modifiers() == Qt::NoModifier && canRename) {
            event->accept();
            return true;
        }
    }
    return QTreeView::event(event);
}

void SideBarTree::mousePressEvent(QMouseEvent* event) {
    _pressed = event->button() == Qt::LeftButton ? indexAt(event->pos()) : QModelIndex();
    _isSignPressed = _pressed.isValid() &&
                     SideBarDelegate::chevronOf(visualRect(_pressed), _pressed, layoutDirection())
                         .contains(event->pos());
    if (_isSignPressed) {
        setExpanded(_pressed, !isExpanded(_pressed));
        event->accept();
        return;
    }
    QTreeView::mousePressEvent(event);
}

void SideBarTree::mouseReleaseEvent(QMouseEvent* event) {
    const QPersistentModelIndex pressed = std::exchange(_pressed, QPersistentModelIndex());
    const bool wasDragged = state() == DraggingState;
    QTreeView::mouseReleaseEvent(event);
    if (!std::exchange(_isSignPressed, false) && !wasDragged && pressed.isValid() &&
        indexAt(event->pos()) == pressed) {
        Q_EMIT chosen(pressed);
    }
}

// The second press of two quick ones is a press.
void SideBarTree::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void SideBarTree::keyPressEvent(QKeyEvent* event) {
    const QModelIndex current = currentIndex();
    const bool isEditing = state() == EditingState;
    if (isEditing || !current.isValid()) {
        QTreeView::keyPressEvent(event);
        return;
    }
    const bool isPlain =
        event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::KeypadModifier;
    if (isPlain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                    event->key() == Qt::Key_Space)) {
        Q_EMIT chosen(current);
    } else if (isPlain && event->key() == Qt::Key_Delete) {
        Q_EMIT trashAsked(current);
    } else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
        askForMenu(current);
    } else {
        QTreeView::keyPressEvent(event);
    }
}

void SideBarTree::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        askForMenu(currentIndex());
    } else {
        Q_EMIT menuAsked(indexAt(event->pos()), event->globalPos());
    }
}

void SideBarTree::askForMenu(const QModelIndex& index) {
    scrollTo(index);
    const QRect row = visualRect(index);
    const QPoint place(row.center().x(), row.bottom());
    Q_EMIT menuAsked(index, viewport()->mapToGlobal(place));
}

}  // namespace tessaly::desktop
