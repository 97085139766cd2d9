// SPDX-License-Identifier: MIT
#include "desktop/block_style.h"

#include <QTextBlock>
#include <algorithm>
#include <cmath>
#include <iterator>

namespace tessaly::desktop {

namespace {

using app::SpanKind;
using grammar::TodoType;
using LineKind = app::LineLook::Kind;

constexpr qreal listIndent = 30;
constexpr qreal levelIndent = 28;
constexpr qreal quoteIndent = 18;
constexpr qreal codeIndent = 14;
constexpr qreal codePitch = 22;
constexpr qreal fencePitch = 17;
constexpr qreal listGap = 3;
constexpr int spacesOfLevel = 4;

constexpr HeadingStyle headings[] = {{26, QFont::Bold, -0.4, 38, 2},
                                     {20, QFont::DemiBold, -0.2, 32, 4},
                                     {16, QFont::DemiBold, 0, 27, 2},
                                     {15, QFont::DemiBold, 0, 25, 0}};

bool isInCode(const app::LineLook& line) {
    return line.kind == LineKind::code || line.kind == LineKind::fence;
}

int levelOf(const QString& indent) {
    const auto tabs = indent.count(u'\t');
    return static_cast<int>(tabs + (indent.size() - tabs) / spacesOfLevel);
}

}  // namespace

const HeadingStyle& headingStyle(std::size_t level) {
    return headings[std::clamp<std::size_t>(level, 1, std::size(headings)) - 1];
}

const BlockLook* BlockLook::of(const QTextBlock& block) {
    return static_cast<const BlockLook*>(block.userData());
}

qreal scaleOf(const QFont& font) {
    return std::max(1, font.pixelSize()) / 15.0;
}

qreal linePitch(const QFont& font) {
    return std::round(font.pixelSize() * 5.0 / 3);
}

bool readsRightToLeft(const app::LineLook& line, const QString& text) {
    return text.mid(static_cast<int>(line.marker.end())).isRightToLeft();
}

qreal levelWidth(const QFont& font) {
    return levelIndent * scaleOf(font);
}

BlockShape shapeOf(const app::LineLook& line, const QString& text, const QFont& font) {
    const qreal scale = scaleOf(font);
    BlockShape shape;
    shape.pitch = linePitch(font);
    if (line.kind == LineKind::plain) {
        return shape;
    }
    shape.prefix = static_cast<int>(std::max(line.indent.end(), line.marker.end()));
    if (line.kind == LineKind::heading) {
        const HeadingStyle& style = headingStyle(line.headingLevel);
        shape.pitch = std::round(style.pitch * scale);
        shape.above = std::round(style.above * scale);
    } else if (line.kind == LineKind::quote) {
        shape.indent = std::round(quoteIndent * scale);
    } else if (isInCode(line)) {
        shape.indent = std::round(codeIndent * scale);
        const bool isFence = line.kind == LineKind::fence;
        shape.pitch = std::round((isFence ? fencePitch : codePitch) * scale);
        shape.prefix = 0;
    } else if (hasSigns(line)) {
        shape.indent = std::round(listIndent * scale);
        shape.below = std::round(listGap * scale);
    }
    shape.indent +=
        std::round(levelOf(text.left(static_cast<int>(line.indent.end()))) * levelWidth(font));
    return shape;
}

bool hasBox(const app::LineLook& line) {
    return line.kind == LineKind::task || line.kind == LineKind::checklist;
}

bool hasSigns(const app::LineLook& line) {
    return line.kind == LineKind::bullet || line.kind == LineKind::numbered || hasBox(line);
}

bool isOver(const app::LineLook& line) {
    return hasBox(line) && (line.state == TodoType::done || line.state == TodoType::cancelled);
}

bool hasGround(const app::LineLook& line, SpanKind kind) {
    switch (kind) {
        case SpanKind::code:
        case SpanKind::marked: return true;
        case SpanKind::hashtag:
        case SpanKind::mention:
        case SpanKind::scheduleTag:
        case SpanKind::backLink:
        case SpanKind::plainDate: return !isOver(line);
        default: return false;
    }
}

}  // namespace tessaly::desktop
