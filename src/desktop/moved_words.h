// SPDX-License-Identifier: MIT
#pragma once

#include <QMouseEvent>
#include <QPointF>
#include <memory>

namespace tessaly::desktop {

/// A click puts the caret into a line, whose markup is shown then and moves its words away from
/// below the pointer. The clicks that make a double or triple one of it mean the words that the
/// first has hit. Places are the viewport's.
class MovedWords {
public:
    /// A click is over that has moved what lies at `place` by `way`.
    void moved(QPointF place, QPointF way);
    /// A press that begins a click. One that may belong to the click before follows the words.
    void press(const QMouseEvent& event);
    /// The event where its words are now.
    std::unique_ptr<QMouseEvent> follow(const QMouseEvent& event) const;

private:
    bool isNear(const QMouseEvent& event) const;

    QPointF _place;
    QPointF _way;
    quint64 _pressedAt = 0;  ///< milliseconds, as events have it
};

}  // namespace tessaly::desktop
