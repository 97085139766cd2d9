// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QStyledItemDelegate>

#include "desktop/result_model.h"

namespace tessaly::desktop {

/// Paints the rows of a `ResultModel`: heights depend on the kind of row alone.
class ResultDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Where a click on the row's box goes; empty for rows without one. `row` is the row's place.
    static QRect boxPlace(const QRect& row, ResultModel::Kind kind, Qt::LayoutDirection direction);
};

}  // namespace tessaly::desktop
