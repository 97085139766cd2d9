// SPDX-License-Identifier: MIT
#pragma once

#include <QTextCursor>
#include <QTextEdit>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/line_look.h"
#include "base/text_range.h"
#include "desktop/line_moves.h"
#include "desktop/moved_words.h"
#include "desktop/note_links.h"
#include "grammar/todo.h"

namespace tessaly::desktop {

class NoteFolding;
class NoteImages;
class NoteLayout;
class NotePointer;

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
    ~NoteTextView() override;

    void setLook(const Look& look);
    /// `column` in UTF-16 units, at most the line's length.
    void goToLine(int line, int column = 0);
    /// Of the caret, in global coordinates.
    QRect caretPlace() const;
    /// What is open before a line, which the text has.
    app::FenceState fenceBefore(int line) const;
    /// Ranges that are marked, in order, and which of them is the current one.
    void setMatches(std::vector<base::TextRange> matches, std::optional<std::size_t> current);
    /// Does something to text or layout, during which what is seen stays where it is.
    void keepSight(const std::function<void()>& change);
    NoteFolding& folding() { return *_folding; }
    /// Shows pictures below their lines, while there is `images`.
    void setImages(NoteImages& images);
    /// Opens the link that the caret is in or beside; false: there is none.
    bool openLinkAtCaret();
    /// Shown where there is no text. In the place of the base's, which knows nothing of the column.
    void setPlaceholderText(const QString& text);
    /// Places in the view's own pixels; the base takes them for those of its viewport.
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    /// The user has clicked the box of the task in this line.
    void boxClicked(int line);
    /// The user has dragged lines somewhere else.
    void linesDropped(Lines lines, LineTarget target);
    /// The user wants to go where a link leads, or to see a picture by itself.
    void linkOpened(const tessaly::app::LookSpan& link);

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    NoteLayout& noteLayout() const { return *_layout; }
    NotePointer& pointer() const { return *_pointer; }
    /// A press is over of which nobody tells the release, since a menu has taken it.
    void endPress();
    /// The link or picture at a place of the viewport.
    std::optional<ShownLink> linkOrPictureAt(const QPointF& place) const;

private:
    bool forwardMarginEvent(QEvent& event);
    void onCaret();
    QPointF inDocument(const QPointF& place) const;
    /// That a click opens.
    std::optional<ShownLink> openableAt(const QPointF& place,
                                        Qt::KeyboardModifiers modifiers) const;
    bool pressLink(const QMouseEvent& event);
    bool releaseLink(QMouseEvent& event);
    void showLinkPointer(const QMouseEvent& event);
    void refreshPicture(const QString& name);
    void paintPlaceholder(const QRect& clip);
    void measureSight();
    void layOutColumn();
    void paintTheme();
    void showMatches();
    void showMarkup();

    NoteLayout* const _layout;
    const std::unique_ptr<NoteFolding> _folding;
    NotePointer* const _pointer;
    int _textWidth = 720;
    QFont _font;
    bool _isPressing = false;  ///< words must not move below the pointer
    MovedWords _movedWords;
    LinkPress _linkPress;
    QString _placeholder;
    std::vector<base::TextRange> _matches;
    std::optional<std::size_t> _currentMatch;
};

}  // namespace tessaly::desktop
