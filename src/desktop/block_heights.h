// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace tessaly::desktop {

/// How high each block of a text is, measured or estimated, and where it therefore begins. Asking
/// for a place costs a sum over what has changed before it.
class BlockHeights {
public:
    int count() const { return static_cast<int>(_rows.size()); }
    /// Puts blocks with these estimates in the place of `oldCount` from `first` on.
    void replace(int first, int oldCount, const std::vector<float>& estimates);
    void setMeasured(int block, float height);
    /// What was measured counts as an estimate from now on.
    void forget(int block) { _rows[at(block)].isMeasured = false; }
    bool isMeasured(int block) const { return _rows[at(block)].isMeasured; }

    double height(int block) const { return static_cast<double>(_rows[at(block)].height); }
    /// Of the first one it is 0; `count()` has one, too: the height of all.
    double top(int block) const;
    /// The block that covers `y`, else the nearest one that has a height; -1: there is none.
    int blockAt(double y) const;

private:
    struct Row {
        float height = 0;
        bool isMeasured = false;
    };
    static std::size_t at(int block) { return static_cast<std::size_t>(block); }

    std::vector<Row> _rows;
    mutable std::vector<double> _tops{0};  ///< those before the first change
};

}  // namespace tessaly::desktop
