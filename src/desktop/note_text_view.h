// SPDX-License-Identifier: MIT
#pragma once

#include <QPlainTextEdit>
#include <cstddef>
#include <optional>
#include <vector>

#include "base/text_range.h"

namespace tessaly::desktop {

/// How a note's text looks: a column in the middle, its colours, the ranges that are marked, and
/// what is pointed at beside it or between its lines.
class NoteTextView : public QPlainTextEdit {
    Q_OBJECT
public:
    struct Look {
        QFont font;
        int textWidth = 720;  ///< widest that the column gets, in pixels
        bool operator==(const Look&) const = default;
    };

    explicit NoteTextView(QWidget* parent = nullptr);

    void setLook(const Look& look);
    /// `column` in UTF-16 units, at most the line's length.
    void goToLine(int line, int column = 0);
    /// Of the caret, in global coordinates.
    QRect caretPlace() const;
    /// Ranges that are marked, in order, and which of them is the current one.
    void setMatches(std::vector<base::TextRange> matches, std::optional<std::size_t> current);

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    bool forwardMarginEvent(QEvent& event);
    QPointF inLine(QPointF place) const;
    void paintSelectedGaps(QPainter& painter, const QTextBlock& block, const QRectF& place) const;
    void layOutColumn();
    void paintTheme();
    void showMatches();

    int _textWidth = 720;
    std::vector<base::TextRange> _matches;
    std::optional<std::size_t> _currentMatch;
};

}  // namespace tessaly::desktop
