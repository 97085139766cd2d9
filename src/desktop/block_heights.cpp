// SPDX-License-Identifier: MIT
#include "desktop/block_heights.h"

#include <algorithm>

namespace tessaly::desktop {

void BlockHeights::replace(int first, int oldCount, const std::vector<float>& estimates) {
    const auto start = _rows.begin() + first;
    const auto at = _rows.erase(start, start + oldCount);
    std::vector<Row> rows;
    rows.reserve(estimates.size());
    for (const float estimate : estimates) {
        rows.push_back({estimate, false});
    }
    _rows.insert(at, rows.begin(), rows.end());
    _tops.resize(std::min(_tops.size(), static_cast<std::size_t>(first) + 1));
}

void BlockHeights::setMeasured(int block, float height) {
    Row& row = _rows[at(block)];
    row.isMeasured = true;
    if (row.height != height) {
        row.height = height;
        _tops.resize(std::min(_tops.size(), at(block) + 1));
    }
}

double BlockHeights::top(int block) const {
    while (_tops.size() <= at(block)) {
        _tops.push_back(_tops.back() + static_cast<double>(_rows[_tops.size() - 1].height));
    }
    return _tops[at(block)];
}

int BlockHeights::blockAt(double y) const {
    top(count());
    const auto below = std::upper_bound(_tops.begin(), _tops.end(), y);
    int block = std::clamp(static_cast<int>(below - _tops.begin()) - 1, std::min(0, count() - 1),
                           count() - 1);
    while (block > 0 && height(block) == 0) {
        --block;
    }
    return block;
}

}  // namespace tessaly::desktop
