// SPDX-License-Identifier: MIT
#pragma once

#include <QListView>
#include <vector>

#include "desktop/result_model.h"

namespace tessaly::desktop {

/// The row of a list that stays where it is in sight while the list gets other rows.
class ListAnchor {
public:
    /// The current row while it is in sight, else the first in sight; at the top, none.
    explicit ListAnchor(const QListView& list);
    /// Scrolls back to it, or to what stands in its place. `newRows` as `ResultModel::show` gives
    /// them.
    void restore(QListView& list, const std::vector<int>& newRows) const;

private:
    int _row = -1;
    int _top = 0;
};

/// Where a row went, or the next one that is still there and can be selected, else the one before;
/// -1: there is none.
int rowInPlaceOf(int oldRow, const std::vector<int>& newRows, const ResultModel& model);

}  // namespace tessaly::desktop
