// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeView>

namespace tessaly::desktop {

/// The view of the sidebar: opens rows by one click or Enter, and closes and opens them by their
/// signs.
class SideBarTree : public QTreeView {
    Q_OBJECT
public:
    explicit SideBarTree(QWidget* parent = nullptr);

Q_SIGNALS:
    void chosen(const QModelIndex& index);
    void menuAsked(const QModelIndex& index, const QPoint& globalPosition);
    void trashAsked(const QModelIndex& index);

protected:
    bool event(QEvent* event) override;
    void drawBranches(QPainter*, const QRect&, const QModelIndex&) const override {}
    void drawRow(QPainter* painter, const QStyleOptionViewItem& options,
                 const QModelIndex& index) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void askForMenu(const QModelIndex& index);

    QPersistentModelIndex _pressed;
    bool _isSignPressed = false;
};

}  // namespace tessaly::desktop
