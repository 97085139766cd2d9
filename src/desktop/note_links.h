// SPDX-License-Identifier: MIT
#pragma once

#include <QMouseEvent>
#include <QPointF>
#include <QString>
#include <QTextCursor>
#include <memory>
#include <optional>

#include "app/line_look.h"
#include "desktop/block_style.h"

namespace tessaly::desktop {

class NoteLayout;

/// A link, a note's title or an image in a text that is laid out.
struct ShownLink {
    int block = -1;
    Markup markup = Markup::quiet;  ///< of its line
    app::LookSpan span;
    QString words;  ///< that the span covers

    bool operator==(const ShownLink&) const = default;
};

/// Whose words lie at a place of the document, in pixels.
std::optional<ShownLink> linkAt(const NoteLayout& layout, const QPointF& place);
/// Whose picture lies there.
std::optional<ShownLink> pictureAt(const NoteLayout& layout, const QPointF& place);
/// That the caret is in or beside, its signs and address included.
std::optional<ShownLink> linkAtCaret(const QTextCursor& caret);
/// Where it leads, in words that a tool tip does not take for markup; empty: the text says it.
QString linkToolTip(const ShownLink& link);

/// A press on a link until it is over: a click, or the beginning of a selection.
class LinkPress {
public:
    bool isHeld() const { return _press != nullptr; }
    void begin(const ShownLink& link, const QMouseEvent& press);
    /// The press for whom it concerns instead, once the pointer has gone too far for a click; null:
    /// it has not.
    std::unique_ptr<QMouseEvent> dragged(const QMouseEvent& move);
    struct End {
        std::optional<ShownLink> clicked;
        std::unique_ptr<QMouseEvent> press;  ///< where none was
    };
    /// `under`: the link that the pointer is on.
    End end(const std::optional<ShownLink>& under);

private:
    ShownLink _link;
    std::unique_ptr<QMouseEvent> _press;
};

}  // namespace tessaly::desktop
