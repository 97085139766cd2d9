// SPDX-License-Identifier: MIT
#include "desktop/note_links.h"

#include <QApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <algorithm>
#include <utility>

#include "desktop/block_pictures.h"
#include "desktop/note_layout.h"
#include "desktop/note_painter.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

using app::SpanKind;

constexpr int longestToolTip = 300;

bool isLink(const app::LookSpan& span) {
    return span.kind == SpanKind::link || span.kind == SpanKind::noteLink ||
           span.kind == SpanKind::image;
}

ShownLink shownLink(const QTextBlock& block, const BlockLook& look, const app::LookSpan& span) {
    const QString words = block.text().mid(static_cast<qsizetype>(span.range.location),
                                           static_cast<qsizetype>(span.range.length));
    return {block.blockNumber(), look.markup, span, words};
}

/// The block at a place, once it is laid out.
QTextBlock blockOf(const NoteLayout& layout, const QPointF& place) {
    const QTextBlock block = layout.document()->findBlockByNumber(layout.blockAt(place.y()));
    return layout.blockBoundingRect(block).contains(place) && BlockLook::of(block) != nullptr
               ? block
               : QTextBlock();
}

/// Of the letter that covers a place of the block; -1: none does.
int letterAt(const QTextBlock& block, const QPointF& place) {
    const QTextLayout& text = *block.layout();
    for (int i = 0; i < text.lineCount(); ++i) {
        const QTextLine line = text.lineAt(i);
        if (!line.naturalTextRect().contains(place)) {
            continue;
        }
        const int letter = line.xToCursor(place.x(), QTextLine::CursorOnCharacter);
        // What an input method has not finished is no part of the text.
        const auto unfinished = static_cast<int>(text.preeditAreaText().size());
        return unfinished > 0 && letter >= text.preeditAreaPosition()
                   ? std::max(letter - unfinished, text.preeditAreaPosition())
                   : letter;
    }
    return -1;
}

bool holdsLetter(base::TextRange range, int letter) {
    return static_cast<int>(range.location) <= letter && letter < static_cast<int>(range.end());
}

/// Of a span the range with its signs and address: those that touch it.
base::TextRange wholeLink(const app::LineLook& line, const app::LookSpan& link) {
    std::size_t start = link.range.location;
    std::size_t end = link.range.end();
    for (const app::LookSpan& span : line.spans) {
        const bool isSign = span.kind == SpanKind::markup || span.kind == SpanKind::address;
        if (isSign && span.range.end() == start) {
            start = span.range.location;
        } else if (isSign && span.range.location == end) {
            end = span.range.end();
        }
    }
    return {start, end - start};
}

}  // namespace

std::optional<ShownLink> linkAt(const NoteLayout& layout, const QPointF& place) {
    const QTextBlock block = blockOf(layout, place);
    if (!block.isValid()) {
        return std::nullopt;
    }
    const BlockLook& look = *BlockLook::of(block);
    const int letter = letterAt(block, place - layout.blockBoundingRect(block).topLeft());
    const auto found = std::find_if(
        look.line.spans.begin(), look.line.spans.end(),
        [&](const app::LookSpan& span) { return isLink(span) && holdsLetter(span.range, letter); });
    return found == look.line.spans.end() ? std::nullopt
                                          : std::optional(shownLink(block, look, *found));
}

std::optional<ShownLink> pictureAt(const NoteLayout& layout, const QPointF& place) {
    const QTextBlock block = blockOf(layout, place);
    if (!block.isValid()) {
        return std::nullopt;
    }
    const BlockLook& look = *BlockLook::of(block);
    const PaintedBlock painted{block, look, layout.document()->defaultFont(),
                               layout.columnOf(block)};
    const auto found =
        std::find_if(look.pictures.begin(), look.pictures.end(), [&](const BlockPicture& picture) {
            return picture.problem.isEmpty() && pictureArea(painted, picture).contains(place);
        });
    return found == look.pictures.end()
               ? std::nullopt
               : std::optional(shownLink(block, look, look.line.spans[found->span]));
}

std::optional<ShownLink> linkAtCaret(const QTextCursor& caret) {
    const QTextBlock block = caret.block();
    (void)caret.document()->documentLayout()->blockBoundingRect(block);
    const BlockLook* look = BlockLook::of(block);
    if (look == nullptr) {
        return std::nullopt;
    }
    const auto place = static_cast<std::size_t>(caret.positionInBlock());
    const auto found = std::find_if(
        look->line.spans.begin(), look->line.spans.end(), [&](const app::LookSpan& span) {
            const base::TextRange whole = isLink(span) ? wholeLink(look->line, span) : span.range;
            return isLink(span) && whole.location <= place && place <= whole.end();
        });
    return found == look->line.spans.end() ? std::nullopt
                                           : std::optional(shownLink(block, *look, *found));
}

QString linkToolTip(const ShownLink& link) {
    const QString target = qt(link.span.target);
    QString tip = link.words == target || link.span.kind == SpanKind::noteLink ? QString() : target;
    if (tip.size() > longestToolTip) {
        tip = tip.left(longestToolTip) + QStringLiteral("…");
    }
    if (link.markup == Markup::shown) {
        tip += (tip.isEmpty() ? QString() : QStringLiteral("\n")) +
               trText("Ctrl+Click opens the link");
    }
    tip = tip.toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
    return tip.isEmpty() ? tip : QStringLiteral("<span>%1</span>").arg(tip);
}

void LinkPress::begin(const ShownLink& link, const QMouseEvent& press) {
    _link = link;
    _press.reset(press.clone());
}

std::unique_ptr<QMouseEvent> LinkPress::dragged(const QMouseEvent& move) {
    const bool isFar =
        _press != nullptr && (move.position() - _press->position()).manhattanLength() >=
                                 QApplication::startDragDistance();
    return isFar ? std::move(_press) : nullptr;
}

LinkPress::End LinkPress::end(const std::optional<ShownLink>& under) {
    std::unique_ptr<QMouseEvent> press = std::move(_press);
    if (under == _link) {
        return {under, nullptr};
    }
    return {std::nullopt, std::move(press)};
}

}  // namespace tessaly::desktop
