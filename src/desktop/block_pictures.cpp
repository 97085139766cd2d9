// SPDX-License-Identifier: MIT
#include "desktop/block_pictures.h"

#include <QImage>
#include <QPainter>
#include <QTextBlock>
#include <algorithm>
#include <cmath>
#include <utility>

#include "app/link_target.h"
#include "desktop/line_formats.h"
#include "desktop/note_images.h"
#include "desktop/note_painter.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

using app::SpanKind;
using PictureState = NoteImages::Look::State;

constexpr qreal roomAround = 6;
constexpr qreal pictureRadius = 6;
constexpr int problemSize = 13;
constexpr qreal problemPitch = 22;
constexpr float selectedOpacity = 0.35F;

QSizeF fittingSize(QSize size, const PictureRoom& room) {
    const QSizeF whole(size);
    const qreal scale = std::min({1.0, room.width / whole.width(), room.height / whole.height()});
    return {std::max(1.0, std::floor(whole.width() * scale)),
            std::max(1.0, std::floor(whole.height() * scale))};
}

/// Whether nothing but images stands in the line.
bool holdsImagesAlone(const app::LineLook& line, const QString& text) {
    if (line.marker.length > 0) {
        return false;
    }
    QString rest = text;
    for (const app::LookSpan& span : line.spans) {
        if (span.kind == SpanKind::image) {
            const auto length = static_cast<qsizetype>(span.range.length);
            rest.replace(static_cast<qsizetype>(span.range.location), length,
                         QString(length, u' '));
        }
    }
    return rest.trimmed().isEmpty();
}

QFont problemFont(const QFont& font) {
    QFont quiet = font;
    quiet.setPixelSize(std::max(1, static_cast<int>(std::lround(problemSize * scaleOf(font)))));
    return quiet;
}

/// The picture, or what stands in its place; false: it is not known yet which.
bool measurePicture(BlockPicture& picture, NoteImages& images, const PictureRoom& room,
                    const QFont& font) {
    const NoteImages::Look& look = images.look(picture.name);
    if (look.state == PictureState::shown) {
        picture.place.setSize(fittingSize(look.size, room));
    } else if (look.state == PictureState::refused) {
        picture.problem = look.problem;
        const qreal words = QFontMetricsF(problemFont(font)).horizontalAdvance(look.problem);
        picture.place.setSize(
            {std::min(room.width, std::ceil(words) + 1), std::round(problemPitch * scaleOf(font))});
    }
    return look.state != PictureState::awaited;
}

void hideText(BlockLook& look, const QString& text) {
    look.formats.push_back({0, static_cast<int>(text.size()), hiddenFormat()});
    look.shape.pitch = 0;
}

/// The middle of the hairline around it.
QRectF frameOf(const QRectF& place) {
    return place.adjusted(0.5, 0.5, -0.5, -0.5);
}

void paintImage(QPainter& painter, const QRectF& place, const QImage& image) {
    QBrush brush(Theme::instance().colors().codeBack);  // while it is being decoded
    if (!image.isNull()) {
        brush = QBrush(image);
        brush.setTransform(
            QTransform::fromTranslate(place.left(), place.top())
                .scale(place.width() / image.width(), place.height() / image.height()));
    }
    painter.setBrush(brush);
    painter.drawRoundedRect(frameOf(place), pictureRadius, pictureRadius);
}

/// As far as it lies in what is selected.
bool isSelected(const PaintedBlock& painted, const BlockPicture& picture,
                const QAbstractTextDocumentLayout::PaintContext& context) {
    const base::TextRange range = painted.look.line.spans[picture.span].range;
    const int start = painted.block.position() + static_cast<int>(range.location);
    const int end = painted.block.position() + static_cast<int>(range.end());
    return std::any_of(context.selections.begin(), context.selections.end(),
                       [&](const auto& selection) {
                           return selection.cursor.selectionStart() <= start &&
                                  selection.cursor.selectionEnd() >= end;
                       });
}

void paintProblem(QPainter& painter, const QRectF& place, const QString& problem, const QFont& font,
                  bool isMarked) {
    const Colors& colors = Theme::instance().colors();
    if (isMarked) {
        painter.fillRect(place, colors.selection);
    }
    painter.setPen(colors.text2);
    painter.setFont(font);
    painter.drawText(
        place, static_cast<int>(Qt::AlignVCenter),
        QFontMetricsF(font).elidedText(problem, Qt::ElideMiddle, std::ceil(place.width())));
}

}  // namespace

void addPictures(BlockLook& look, const QString& text, NoteImages& images, const PictureRoom& room,
                 const QFont& font) {
    const qreal bottom = look.shape.below;
    bool isAllKnown = true;
    for (std::size_t i = 0; i < look.line.spans.size(); ++i) {
        const app::LookSpan& span = look.line.spans[i];
        const auto name =
            span.kind == SpanKind::image ? app::pictureFile(span.target) : std::nullopt;
        BlockPicture picture{
            name.value_or(""), i, {0, look.shape.below - bottom + roomAround, 0, 0}, {}};
        if (!name || !measurePicture(picture, images, room, font)) {
            isAllKnown = isAllKnown && span.kind != SpanKind::image;
            continue;
        }
        look.shape.below += picture.place.height() + 2 * roomAround;
        look.pictures.push_back(std::move(picture));
    }
    const bool isInsteadOfText = isAllKnown && !look.pictures.empty() &&
                                 look.markup == Markup::quiet && holdsImagesAlone(look.line, text);
    if (isInsteadOfText) {
        hideText(look, text);
    }
}

QRectF pictureArea(const PaintedBlock& painted, const BlockPicture& picture) {
    const QTextLayout& text = *painted.block.layout();
    if (text.lineCount() == 0) {
        return {};
    }
    const QRectF& area = painted.area;
    const qreal top = area.bottom() - painted.look.shape.below;
    QRectF place = picture.place.translated(area.left() + painted.look.shape.indent, top);
    if (painted.block.textDirection() == Qt::RightToLeft) {
        place.moveLeft(area.left() + area.right() - place.right());
    }
    return place;
}

void paintPictures(QPainter& painter, const PaintedBlock& painted, NoteImages& images,
                   const QAbstractTextDocumentLayout::PaintContext& context) {
    const Colors& colors = Theme::instance().colors();
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    for (const BlockPicture& picture : painted.look.pictures) {
        const QRectF place = pictureArea(painted, picture);
        const bool isMarked = isSelected(painted, picture, context);
        if (!picture.problem.isEmpty()) {
            paintProblem(painter, place, picture.problem, problemFont(painted.font), isMarked);
            continue;
        }
        painter.setPen(Qt::NoPen);
        const qreal scale = painter.device()->devicePixelRatioF();
        paintImage(painter, place, images.picture(picture.name, (place.size() * scale).toSize()));
        if (isMarked) {
            QColor over = colors.accent;
            over.setAlphaF(selectedOpacity);
            painter.setBrush(over);
            painter.drawRoundedRect(frameOf(place), pictureRadius, pictureRadius);
        }
        painter.setPen(QPen(colors.line, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frameOf(place), pictureRadius, pictureRadius);
    }
    painter.restore();
}

}  // namespace tessaly::desktop
