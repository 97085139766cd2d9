// SPDX-License-Identifier: MIT
#pragma once

#include <QListWidget>
#include <vector>

#include "base/text_range.h"

namespace tessaly::desktop {

/// A row of a floating panel: "Tomorrow" and, quieter at its end, "Wed, 6 Mar".
struct FloatingRow {
    QString text;
    QString detail;
    QString spoken;                       ///< for who cannot see it
    std::vector<base::TextRange> ranges;  ///< of `text`, that answer what was typed
};

/// The rows of a floating panel, none of them out of sight.
class FloatingList : public QListWidget {
    Q_OBJECT
public:
    explicit FloatingList(QWidget* parent = nullptr);

    /// None is the current one then.
    void setRows(const std::vector<FloatingRow>& rows);
    /// Makes a row the current one and tells screen readers of it, also while another widget has
    /// the keys; -1: none.
    void choose(int row);
    /// In which all texts are seen whole, in pixels.
    int wantedWidth() const;

    static constexpr int rowHeight = 28;
};

}  // namespace tessaly::desktop
