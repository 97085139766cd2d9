// SPDX-License-Identifier: MIT
#include "desktop/block_lines.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <optional>

#include "desktop/block_style.h"
#include "desktop/line_formats.h"

namespace tessaly::desktop {

namespace {

/// Words that an input method has not finished stand in the layout, and not in the text.
QList<QTextLayout::FormatRange> aroundPreedit(QList<QTextLayout::FormatRange> formats,
                                              const QTextLayout& text) {
    const auto length = static_cast<int>(text.preeditAreaText().size());
    if (length == 0) {
        return formats;
    }
    const int place = text.preeditAreaPosition();
    for (QTextLayout::FormatRange& range : formats) {
        const bool isBehind = range.start >= place;
        range.start += isBehind ? length : 0;
        range.length += !isBehind && range.start + range.length > place ? length : 0;
    }
    QTextCharFormat underlined;
    underlined.setFontUnderline(true);
    formats.push_back({place, length, underlined});
    return formats;
}

void styleText(const QTextBlock& block, const BlockLook& look) {
    QTextLayout& text = *block.layout();
    const QTextDocument& document = *block.document();
    QTextOption option = document.defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(look.isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    text.setTextOption(option);
    text.setFormats(aroundPreedit(
        formatsOf(look.line, block.text(), look.markup, document.defaultFont()) + look.formats,
        text));
}

/// From the side that reading begins at; the line is as wide as there is room then.
qreal indentLine(QTextLine& line, const BlockShape& shape, const TextColumn& column) {
    const qreal end = column.sideRoom + column.width;
    qreal indent = column.sideRoom + shape.indent;
    line.setLineWidth(end - indent);
    if (line.textStart() == 0 && shape.prefix > 0) {
        const int words = std::min(shape.prefix, line.textLength());
        const qreal prefix = std::abs(line.cursorToX(words) - line.cursorToX(0));
        // The toolkit takes no place before 0 for one of a character.
        indent = std::max(indent - prefix, 0.0);
        line.setLineWidth(end - indent);
    }
    return indent;
}

/// Whether the signs before a text stand in a line by themselves, as what follows has no place to
/// be broken at.
bool standsAlone(const QTextLine& line, const BlockShape& shape, int length) {
    return line.textStart() == 0 && shape.prefix > 0 && line.textLength() <= shape.prefix &&
           line.textLength() < length;
}

enum class Words { whole, broken };

/// How high the lines are with what stands above them; nothing: the signs would stand alone.
std::optional<qreal> layOutLines(const QTextBlock& block, const BlockLook& look,
                                 const TextColumn& column, Words words) {
    QTextLayout& text = *block.layout();
    const qreal whole = column.width + 2 * column.sideRoom;
    qreal bottom = look.shape.above;
    text.beginLayout();
    for (QTextLine line = text.createLine(); line.isValid(); line = text.createLine()) {
        const qreal indent = indentLine(line, look.shape, column);
        if (words == Words::whole && standsAlone(line, look.shape, block.length() - 1)) {
            text.endLayout();
            return std::nullopt;
        }
        const qreal pitch = std::max(look.shape.pitch, std::ceil(line.height()));
        const qreal x = look.isRightToLeft ? whole - indent - line.horizontalAdvance() : indent;
        line.setPosition({x, bottom + std::floor((pitch - line.height()) / 2)});
        bottom += pitch;
    }
    text.endLayout();
    return bottom;
}

}  // namespace

qreal layOutBlock(const QTextBlock& block, const BlockLook& look, const TextColumn& column) {
    styleText(block, look);
    auto bottom = layOutLines(block, look, column, Words::whole);
    if (!bottom) {
        QTextOption option = block.layout()->textOption();
        option.setWrapMode(QTextOption::WrapAnywhere);
        block.layout()->setTextOption(option);
        bottom = layOutLines(block, look, column, Words::broken);
    }
    return *bottom + look.shape.below;
}

}  // namespace tessaly::desktop
