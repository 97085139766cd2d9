// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace tessaly::desktop {

struct CommandBarRow;

/// Paints the rows of a `CommandBarModel`.
class CommandBarDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static constexpr int rowHeight = 40;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

}  // namespace tessaly::desktop
