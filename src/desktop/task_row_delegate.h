// SPDX-License-Identifier: MIT
#pragma once

#include <QPersistentModelIndex>
#include <QRect>
#include <QStyledItemDelegate>

#include "desktop/task_rows.h"

namespace tessaly::desktop {

/// What lies below a point of a row.
enum class TaskRowPart { none, body, box, schedule, jump };

/// Paints the rows of a `TaskRowsModel`, and tells what lies where in them. Everything is mirrored
/// where the view runs from right to left.
class TaskRowDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit TaskRowDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

    /// `textSize` of a task, in pixels; `mostLines` may be filled by it before it is cut.
    void setMeasure(int textSize, int mostLines);
    /// The part of which row the pointer is over; an invalid index: of none.
    void setHovered(const QModelIndex& index, TaskRowPart part);

    /// `rect` is the row's, in the same coordinates as `point`.
    TaskRowPart partAt(const TaskRow& row, const QRect& rect, const QPoint& point,
                       Qt::LayoutDirection direction) const;
    /// The place of a part of a task's row.
    QRect partRect(const TaskRow& row, TaskRowPart part, const QRect& rect,
                   Qt::LayoutDirection direction) const;

    /// Whether not all of a task's text is seen in a row of that width.
    bool isCut(const TaskRow& row, int width) const;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintTask(QPainter& painter, const QStyleOptionViewItem& option,
                   const QModelIndex& index) const;
    void paintButtons(QPainter& painter, const QStyleOptionViewItem& option,
                      const QModelIndex& index) const;

    int _textSize = 13;
    int _mostLines = 2;
    QPersistentModelIndex _hovered;
    TaskRowPart _hoveredPart = TaskRowPart::none;
};

}  // namespace tessaly::desktop
