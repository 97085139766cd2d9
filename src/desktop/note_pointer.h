// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointF>
#include <QTimer>
#include <optional>

#include "desktop/line_drag.h"

class QMouseEvent;
class QPainter;

namespace tessaly::desktop {

class NoteLayout;
class NoteTextView;

/// What the pointer does in a note beside placing the caret: it clicks boxes, folds lines, and
/// drags lines by their handle, box or bullet. A change of the text ends a drag. Events are the
/// viewport's.
class NotePointer : public QObject {
    Q_OBJECT
public:
    /// Both outlive it.
    NotePointer(NoteTextView& view, NoteLayout& layout);

    // True: the event was for something that is dealt with here.
    bool press(const QMouseEvent& event);
    bool move(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    void leave();

    /// The line whose box is at a place of the viewport; -1: none.
    int boxAt(const QPointF& place) const;
    bool isDragging() const { return _drag.has_value(); }
    void cancelDrag();
    /// Over the text; the painter's places are the document's.
    void paint(QPainter& painter) const;

Q_SIGNALS:
    /// The box of the task in this line was clicked.
    void boxClicked(int line);
    /// Handle or mark of a line that can be folded, or is.
    void foldClicked(int line);
    void dropped(Lines lines, LineTarget target);

private:
    enum class Part { none, box, handle, foldMark };
    struct Spot {
        Part part = Part::none;
        int line = -1;
        bool operator==(const Spot&) const = default;
    };
    Spot spotAt(const QPointF& place) const;
    QPointF inDocument(const QPointF& place) const;
    void point(const QPointF& place);
    void drag();
    void letGoWhenStale();
    void scrollAtEdge();

    NoteTextView& _view;
    NoteLayout& _layout;
    Spot _pressed;
    QPointF _pressedAt;
    int _revision = 0;  ///< of the document, when it was pressed
    QPointF _place;     ///< in the viewport
    std::optional<LineDrag> _drag;
    QTimer _scrolling;
};

}  // namespace tessaly::desktop
