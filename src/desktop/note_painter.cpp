// SPDX-License-Identifier: MIT
#include "desktop/note_painter.h"

#include <QPainter>
#include <QTextBlock>
#include <algorithm>
#include <cmath>
#include <vector>

#include "desktop/block_pictures.h"
#include "desktop/line_handles.h"
#include "desktop/task_rows.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

using app::SpanKind;
using LineKind = app::LineLook::Kind;
using PaintContext = QAbstractTextDocumentLayout::PaintContext;

constexpr qreal boxSize = 17;
constexpr qreal boxBefore = 27;  ///< the text
constexpr qreal dotBefore = 18.5;
constexpr qreal groundHeight = 21;
constexpr qreal groundRadius = 5;
constexpr qreal groundRoom = 4;
constexpr qreal codeRadius = 7;
constexpr qreal lineEndWidth = 5;

/// In the layout, of a place in the text.
int layoutPlace(const QTextLayout& text, int place) {
    const int preedit = text.preeditAreaPosition();
    const auto length = static_cast<int>(text.preeditAreaText().size());
    return length > 0 && place > preedit ? place + length : place;
}

struct Stretch {
    qreal left;
    qreal right;
};

/// What a range covers of a line: several stretches where directions mix.
std::vector<Stretch> stretchesOf(const QTextLine& line, int from, int to) {
    std::vector<Stretch> found;
    from = std::max(from, line.textStart());
    to = std::min(to, line.textStart() + line.textLength());
    for (int place = from; place < to; ++place) {
        const qreal a = line.cursorToX(place, QTextLine::Leading);
        const qreal b = line.cursorToX(place, QTextLine::Trailing);
        const Stretch next{std::min(a, b), std::max(a, b)};
        if (!found.empty() && std::abs(found.back().right - next.left) < 0.6) {
            found.back().right = std::max(found.back().right, next.right);
        } else if (!found.empty() && std::abs(found.back().left - next.right) < 0.6) {
            found.back().left = std::min(found.back().left, next.left);
        } else {
            found.push_back(next);
        }
    }
    return found;
}

class BlockPainter {
public:
    BlockPainter(QPainter& painter, const PaintedBlock& painted, const PaintContext& context)
        : _painter(painter),
          _painted(painted),
          _context(context),
          _text(*painted.block.layout()),
          _line(painted.look.line),
          _colors(Theme::instance().colors()),
          _scale(scaleOf(painted.font)) {}

    void paint() {
        paintBlockGround();
        for (const app::LookSpan& span : _line.spans) {
            if (hasGround(_line, span.kind)) {
                paintGround(span);
            }
        }
        for (const auto& selection : _context.selections) {
            paintSelection(selection);
        }
        paintMarker();
        if (_painted.images != nullptr) {
            paintPictures(_painter, _painted, *_painted.images, _context);
        }
        _painter.setPen(_context.palette.color(QPalette::Text));
        // Stands at its own place.
        _text.draw(&_painter, {}, {}, _context.clip);
        paintHandle(_painter, _painted);
        paintFoldMark(_painter, _painted);
        paintCaret();
    }

private:
    bool isMirrored() const { return _painted.look.isRightToLeft; }
    bool isQuiet() const { return _painted.look.markup == Markup::quiet; }

    QRectF mirrored(const QRectF& place) const { return mirroredIn(_painted, place); }

    QRectF lineArea(int i) const {
        const BlockShape& shape = _painted.look.shape;
        const QRectF& area = _painted.area;
        const QTextLine line = _text.lineAt(i);
        const qreal top = i == 0 ? shape.above : middleOf(_text.lineAt(i - 1), line);
        const qreal bottom = i + 1 == _text.lineCount() ? area.height() - shape.below
                                                        : middleOf(line, _text.lineAt(i + 1));
        return {area.left(), area.top() + top, area.width(), bottom - top};
    }

    /// Of a long line, most is out of sight.
    bool isPainted(const QRectF& area) const {
        return !_context.clip.isValid() || area.intersects(_context.clip);
    }

    void paintBlockGround() {
        const QRectF& area = _painted.area;
        _painter.setPen(Qt::NoPen);
        if (_line.kind == LineKind::code) {
            _painter.fillRect(area, _colors.codeBack);
        } else if (_line.kind == LineKind::fence) {
            paintFenceGround();
        } else if (_line.kind == LineKind::quote) {
            const qreal x = area.left() + _painted.look.shape.indent - 18 * _scale;
            _painter.fillRect(mirrored({x, area.top(), 3, area.height()}), _colors.line);
        } else if (_painted.look.rule > 0) {
            const qreal x = area.left() + _painted.look.shape.indent;
            _painter.fillRect(mirrored({x, std::round(area.center().y()), _painted.look.rule, 1}),
                              _colors.line);
        } else if (_line.kind == LineKind::rule && isQuiet()) {
            _painter.fillRect(QRectF(area.left(), std::round(area.center().y()), area.width(), 1),
                              _colors.line);
        }
    }

    /// Round where the code begins and ends.
    void paintFenceGround() {
        const QRectF& area = _painted.area;
        const bool isOpening = _painted.look.opensFence;
        _painter.save();
        _painter.setClipRect(area, Qt::IntersectClip);
        _painter.setRenderHint(QPainter::Antialiasing);
        _painter.setBrush(_colors.codeBack);
        _painter.drawRoundedRect(
            area.adjusted(0, isOpening ? 0 : -codeRadius, 0, isOpening ? codeRadius : 0),
            codeRadius, codeRadius);
        _painter.restore();
    }

    void paintGround(const app::LookSpan& span) {
        const bool isMark = span.kind == SpanKind::marked;
        const QColor color = isMark ? _colors.mark : groundColor(span.kind);
        const qreal room = isMark ? 0 : groundRoom;
        const qreal height = std::round(groundHeight * _scale);
        const int from = layoutPlace(_text, static_cast<int>(span.range.location));
        const int to = layoutPlace(_text, static_cast<int>(span.range.end()));
        _painter.setRenderHint(QPainter::Antialiasing);
        _painter.setPen(Qt::NoPen);
        _painter.setBrush(color);
        for (int i = 0; i < _text.lineCount(); ++i) {
            const QTextLine line = _text.lineAt(i);
            const qreal y = _painted.area.top() + line.y() + (line.height() - height) / 2;
            for (const Stretch& stretch : stretchesOf(line, from, std::min(to, endOfWords(line)))) {
                const QRectF ground(stretch.left - room, std::round(y),
                                    stretch.right - stretch.left + 2 * room, height);
                _painter.drawRoundedRect(ground, isMark ? 2 : groundRadius,
                                         isMark ? 2 : groundRadius);
            }
        }
        _painter.setRenderHint(QPainter::Antialiasing, false);
    }

    /// Of a line, in its layout: a blank that it is broken at has no ground.
    int endOfWords(const QTextLine& line) const {
        const QString text = _painted.block.text();
        const int start = line.textStart();
        int end = start + line.textLength();
        while (_text.preeditAreaText().isEmpty() && end > start && end <= text.size() &&
               text[end - 1] == u' ') {
            --end;
        }
        return end;
    }

    QColor groundColor(SpanKind kind) const {
        switch (kind) {
            case SpanKind::code: return _colors.codeBack;
            case SpanKind::hashtag:
            case SpanKind::mention: return _colors.tagBack;
            default: return _colors.dateBack;
        }
    }

    void paintSelection(const QAbstractTextDocumentLayout::Selection& selection) {
        const int start = selection.cursor.selectionStart() - _painted.block.position();
        const int end = selection.cursor.selectionEnd() - _painted.block.position();
        const int length = _painted.block.length() - 1;
        if (start >= end || end < 0 || start > length) {
            return;
        }
        const QBrush brush = selection.format.background();
        const int from = layoutPlace(_text, std::max(start, 0));
        const int to = layoutPlace(_text, std::min(end, length));
        for (int i = 0; i < _text.lineCount(); ++i) {
            const QTextLine line = _text.lineAt(i);
            const QRectF area = lineArea(i);
            if (!isPainted(area)) {
                continue;
            }
            for (const Stretch& stretch : stretchesOf(line, from, to)) {
                _painter.fillRect(
                    QRectF(stretch.left, area.top(), stretch.right - stretch.left, area.height()),
                    brush);
            }
            // A line end that is selected can be seen, too, unless its line is hidden.
            if (end > length && i + 1 == _text.lineCount() && _painted.look.shape.pitch > 0) {
                const QRectF words = line.naturalTextRect();
                const qreal x = isMirrored() ? words.left() - lineEndWidth : words.right();
                _painter.fillRect(QRectF(x, area.top(), lineEndWidth, area.height()), brush);
            }
        }
    }

    void paintMarker() {
        if (!isQuiet() || _text.lineCount() == 0) {
            return;
        }
        if (hasBox(_line)) {
            paintTaskBox(_painter, taskBoxOf(_painted), _line.state, _painted.isBoxHovered,
                         _line.kind == LineKind::checklist ? BoxShape::square : BoxShape::circle);
        } else if (_line.kind == LineKind::bullet) {
            const QRectF line = lineArea(0);
            const qreal x = _painted.area.left() + _painted.look.shape.indent - dotBefore * _scale;
            const qreal radius = 2.5 * _scale;
            _painter.setRenderHint(QPainter::Antialiasing);
            _painter.setPen(Qt::NoPen);
            _painter.setBrush(_colors.text2);
            _painter.drawEllipse(
                mirrored({x - radius, line.center().y() - radius + 0.5, 2 * radius, 2 * radius}));
            _painter.setRenderHint(QPainter::Antialiasing, false);
        }
    }

    void paintCaret() {
        int place = _context.cursorPosition;
        if (place < -1) {
            // Within words that an input method has not finished.
            if (_text.preeditAreaText().isEmpty()) {
                return;
            }
            place = _text.preeditAreaPosition() - (place + 2);
        } else {
            place -= _painted.block.position();
            if (place < 0 || place >= _painted.block.length()) {
                return;
            }
            place = layoutPlace(_text, place);
        }
        const QTextLine line = _text.lineForTextPosition(place);
        if (line.isValid()) {
            const int width =
                _painted.block.document()->documentLayout()->property("cursorWidth").toInt();
            _painter.fillRect(QRectF(line.cursorToX(place), _painted.area.top() + line.y(),
                                     std::max(1, width), line.height()),
                              _colors.accent);
        }
    }

    QPainter& _painter;
    const PaintedBlock& _painted;
    const PaintContext& _context;
    const QTextLayout& _text;
    const app::LineLook& _line;
    const Colors& _colors;
    const qreal _scale;
};

}  // namespace

void paintBlock(QPainter& painter, const PaintedBlock& painted, const PaintContext& context) {
    painter.save();
    BlockPainter(painter, painted, context).paint();
    painter.restore();
}

QRectF taskBoxOf(const PaintedBlock& painted) {
    const QTextLayout& text = *painted.block.layout();
    if (!hasBox(painted.look.line) || text.lineCount() == 0) {
        return {};
    }
    const qreal scale = scaleOf(painted.font);
    const qreal size = std::round(boxSize * scale);
    const QTextLine line = text.lineAt(0);
    const qreal before = painted.look.shape.indent - boxBefore * scale;
    const bool isMirrored = painted.look.isRightToLeft;
    const qreal x =
        isMirrored ? painted.area.right() - before - size : painted.area.left() + before;
    const qreal y = painted.area.top() + line.y() + (line.height() - size) / 2;
    return {std::round(x), std::round(y), size, size};
}

qreal middleOf(const QTextLine& upper, const QTextLine& lower) {
    return (upper.y() + upper.height() + lower.y()) / 2;
}

}  // namespace tessaly::desktop
