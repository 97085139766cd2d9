// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace tessaly::desktop {

/// Paints the rows of a `SideBarModel`, and edits their names in place. For a `QTreeView`.
class SideBarDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Where the sign that opens and closes a row is clicked; empty: the row has none.
    static QRect chevronOf(const QRect& row, const QModelIndex& index,
                           Qt::LayoutDirection direction);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

protected:
    bool eventFilter(QObject* editor, QEvent* event) override;
};

}  // namespace tessaly::desktop
