// SPDX-License-Identifier: MIT
#include "desktop/list_anchor.h"

#include <QScrollBar>

namespace tessaly::desktop {

ListAnchor::ListAnchor(const QListView& list) {
    const QModelIndex current = list.currentIndex();
    const QRect place = list.visualRect(current);
    if (current.isValid() && list.viewport()->rect().intersects(place)) {
        _row = current.row();
        _top = place.top();
        return;
    }
    const QModelIndex first = list.indexAt(QPoint(list.viewport()->width() / 2, 1));
    if (first.isValid() && list.verticalScrollBar()->value() > 0) {
        _row = first.row();
        _top = list.visualRect(first).top();
    }
}

void ListAnchor::restore(QListView& list, const std::vector<int>& newRows) const {
    const auto& model = static_cast<const ResultModel&>(*list.model());
    const int row = _row < 0 ? -1 : rowInPlaceOf(_row, newRows, model);
    if (row >= 0) {
        QScrollBar* const bar = list.verticalScrollBar();
        bar->setValue(bar->value() + list.visualRect(model.index(row)).top() - _top);
    }
}

int rowInPlaceOf(int oldRow, const std::vector<int>& newRows, const ResultModel& model) {
    const auto isThere = [&](std::size_t row) {
        return newRows[row] >= 0 && model.isSelectable(newRows[row]);
    };
    const auto start = static_cast<std::size_t>(oldRow);
    for (std::size_t row = start; row < newRows.size(); ++row) {
        if (isThere(row)) {
            return newRows[row];
        }
    }
    for (std::size_t row = start; row-- > 0;) {
        if (isThere(row)) {
            return newRows[row];
        }
    }
    return -1;
}

}  // namespace tessaly::desktop
