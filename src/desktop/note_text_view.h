// SPDX-License-Identifier: MIT
#pragma once

#include <QTextCursor>
#include <QTextEdit>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include "base/text_range.h"
#include "grammar/todo.h"

namespace tessaly::desktop {

class NoteLayout;

/// How a note's text looks: a column in the middle, its colours, the ranges that are marked, and
/// what is pointed at beside it or between its lines.
class NoteTextView : public QTextEdit {
    Q_OBJECT
public:
    struct Look {
        QFont font;
        int textWidth = 720;  ///< widest that the column gets, in pixels
        grammar::MarkerSettings markers;
        bool isRenderingMarkdown = true;
    };

    explicit NoteTextView(QWidget* parent = nullptr);

    void setLook(const Look& look);
    /// `column` in UTF-16 units, at most the line's length.
    void goToLine(int line, int column = 0);
    /// Of the caret, in global coordinates.
    QRect caretPlace() const;
    /// Ranges that are marked, in order, and which of them is the current one.
    void setMatches(std::vector<base::TextRange> matches, std::optional<std::size_t> current);
    /// Shown where there is no text. In the place of the base's, which knows nothing of the column.
    void setPlaceholderText(const QString& text);

Q_SIGNALS:
    /// The user has clicked the box of the task in this line.
    void boxClicked(int line);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    /// Does something to text or layout, during which what is seen stays where it is.
    void keepSight(const std::function<void()>& change);

private:
    bool forwardMarginEvent(QEvent& event);
    int boxAt(const QMouseEvent& event) const;
    bool pressBox(const QMouseEvent& event);
    void paintPlaceholder(const QRect& clip);
    void measureSight();
    void layOutColumn();
    void paintTheme();
    void showMatches();
    void showMarkup();

    NoteLayout* const _layout;
    int _textWidth = 720;
    int _pressedBox = -1;
    QString _placeholder;
    std::vector<base::TextRange> _matches;
    std::optional<std::size_t> _currentMatch;
};

}  // namespace tessaly::desktop
