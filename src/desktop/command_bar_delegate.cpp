// SPDX-License-Identifier: MIT
#include "desktop/command_bar_delegate.h"

#include <QPainter>
#include <QTextLayout>
#include <algorithm>

#include "desktop/command_bar_model.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int rowInset = 8;
constexpr int rowRadius = 7;
constexpr int barIconSize = 18;
constexpr int iconStart = 12;
constexpr int titleStart = 42;
constexpr int rowEnd = 12;
constexpr int betweenParts = 12;

/// Draws the part of the row that lies `[start, end)` when it is read from the left.
class BarRowPainter {
public:
    BarRowPainter(QPainter& painter, const QStyleOptionViewItem& option)
        : _painter(painter),
          _direction(option.direction),
          _row(option.rect.adjusted(rowInset, 0, -rowInset, 0)) {}

    int width() const { return _row.width(); }

    QRect place(int start, int end) const {
        const QRect read(_row.left() + start, _row.top(), end - start, _row.height());
        return QStyle::visualRect(_direction, _row, read);
    }

    void text(const QString& text, const QFont& font, const QColor& color, int start, int end) {
        _painter.setFont(font);
        _painter.setPen(color);
        const QString shown = QFontMetrics(font).elidedText(text, Qt::ElideRight, end - start);
        // The names of keys are read from the left everywhere.
        _painter.setLayoutDirection(shown.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        _painter.drawText(place(start, end), static_cast<int>(edge() | Qt::AlignVCenter), shown);
    }

    /// With what answers in the accent's colour; the width that it took.
    int title(const CommandBarRow& row, int start, int end) {
        const Theme& theme = Theme::instance();
        const QFont font = theme.uiFont(14);
        const QString shown = QFontMetrics(font).elidedText(row.title, Qt::ElideRight, end - start);
        QTextLayout layout(shown, font);
        QTextOption option(edge());
        option.setTextDirection(shown.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        option.setWrapMode(QTextOption::NoWrap);
        layout.setTextOption(option);
        layout.setFormats(formatsOf(row));
        const QRect room = place(start, end);
        layout.beginLayout();
        QTextLine line = layout.createLine();
        line.setLineWidth(room.width());
        layout.endLayout();
        _painter.setPen(theme.colors().text);
        layout.draw(&_painter, QPointF(room.left(), room.center().y() - line.height() / 2 + 1));
        return static_cast<int>(line.naturalTextWidth()) + 1;
    }

private:
    Qt::Alignment edge() const {
        return (_direction == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute;
    }

    static QList<QTextLayout::FormatRange> formatsOf(const CommandBarRow& row) {
        QList<QTextLayout::FormatRange> formats;
        for (const base::TextRange& range : row.ranges) {
            QTextCharFormat format;
            format.setForeground(Theme::instance().colors().link);
            format.setFontWeight(QFont::DemiBold);
            formats.append(
                {static_cast<int>(range.location), static_cast<int>(range.length), format});
        }
        return formats;
    }

    QPainter& _painter;
    const Qt::LayoutDirection _direction;
    const QRect _row;
};

}  // namespace

void CommandBarDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const {
    const auto& row = static_cast<const CommandBarModel*>(index.model())->row(index.row());
    const Theme& theme = Theme::instance();
    const Colors& colors = theme.colors();
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    BarRowPainter parts(*painter, option);
    if (isSelected || option.state.testFlag(QStyle::State_MouseOver)) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(isSelected ? colors.rowSelected : colors.rowHover);
        painter->drawRoundedRect(parts.place(0, parts.width()), rowRadius, rowRadius);
    }
    QRectF iconPlace(0, 0, barIconSize, barIconSize);
    iconPlace.moveCenter(parts.place(iconStart, iconStart + barIconSize).toRectF().center());
    paintIcon(*painter, iconPlace, row.icon, isSelected ? colors.accent : colors.text2);

    const QFont keyFont = theme.uiFont(11, QFont::Medium);
    const QFont detailFont = theme.uiFont(12);
    const int keyWidth =
        row.key.isEmpty() ? 0 : QFontMetrics(keyFont).horizontalAdvance(row.key) + 2;
    const int end = parts.width() - rowEnd;
    const int titleEnd = end - keyWidth - (keyWidth == 0 ? 0 : betweenParts);
    const int titleWidth = parts.title(row, titleStart, titleEnd);
    parts.text(row.key, keyFont, colors.text2, end - keyWidth, end);
    const int detailStart = titleStart + titleWidth + betweenParts;
    constexpr int leastDetail = 40;
    if (titleEnd - detailStart > leastDetail) {
        parts.text(row.detail, detailFont, colors.text2, detailStart, titleEnd);
    }
    painter->restore();
}

QSize CommandBarDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const {
    return {0, rowHeight};
}

}  // namespace tessaly::desktop
