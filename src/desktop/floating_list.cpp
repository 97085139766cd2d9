// SPDX-License-Identifier: MIT
#include "desktop/floating_list.h"

#include <QAccessible>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextLayout>
#include <algorithm>

#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr int rowPadding = 8;
constexpr int betweenTexts = 16;
constexpr int detailRole = Qt::UserRole;
constexpr int rangesRole = Qt::UserRole + 1;

QFont rowFont() {
    return Theme::instance().uiFont(13);
}

QFont rowDetailFont() {
    return Theme::instance().uiFont(12);
}

QList<QTextLayout::FormatRange> answeringFormats(const QModelIndex& index) {
    QTextCharFormat format;
    format.setForeground(Theme::instance().colors().link);
    format.setFontWeight(QFont::DemiBold);
    QList<QTextLayout::FormatRange> formats;
    for (const auto& range : index.data(rangesRole).value<std::vector<base::TextRange>>()) {
        formats.append({static_cast<int>(range.location), static_cast<int>(range.length), format});
    }
    return formats;
}

class FloatingDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const Colors& colors = Theme::instance().colors();
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        if (isSelected || option.state.testFlag(QStyle::State_MouseOver)) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(isSelected ? colors.rowSelected : colors.rowHover);
            painter->drawRoundedRect(option.rect, 6, 6);
        }
        const QRect place = option.rect.adjusted(rowPadding, 0, -rowPadding, 0);
        const QString detail = index.data(detailRole).toString();
        painter->setFont(rowDetailFont());
        painter->setPen(colors.text2);
        painter->drawText(place, static_cast<int>(edge(option, Qt::AlignRight) | Qt::AlignVCenter),
                          detail);
        const int taken =
            detail.isEmpty() ? 0 : painter->fontMetrics().horizontalAdvance(detail) + betweenTexts;
        const QRect room =
            QStyle::visualRect(option.direction, place, place.adjusted(0, 0, -taken, 0));
        painter->setPen(colors.text);
        drawText(*painter, option, index, room);
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return {80, FloatingList::rowHeight};
    }

private:
    static Qt::Alignment edge(const QStyleOptionViewItem& option, Qt::Alignment side) {
        return QStyle::visualAlignment(option.direction, side) | Qt::AlignAbsolute;
    }

    static void drawText(QPainter& painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index, const QRect& room) {
        const QFont font = rowFont();
        const QString text =
            QFontMetrics(font).elidedText(index.data().toString(), Qt::ElideRight, room.width());
        QTextLayout layout(text, font);
        QTextOption lineOption(edge(option, Qt::AlignLeft));
        lineOption.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
        lineOption.setWrapMode(QTextOption::NoWrap);
        layout.setTextOption(lineOption);
        layout.setFormats(answeringFormats(index));
        layout.beginLayout();
        QTextLine line = layout.createLine();
        line.setLineWidth(room.width());
        layout.endLayout();
        layout.draw(&painter, QPointF(room.left(), room.center().y() - line.height() / 2 + 1));
    }
};

}  // namespace

FloatingList::FloatingList(QWidget* parent) : QListWidget(parent) {
    setItemDelegate(new FloatingDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setUniformItemSizes(true);
    viewport()->setAutoFillBackground(false);
    // The delegate draws what is chosen.
    QPalette plain = palette();
    plain.setColor(QPalette::Highlight, Qt::transparent);
    plain.setColor(QPalette::Base, Qt::transparent);
    setPalette(plain);
}

void FloatingList::setRows(const std::vector<FloatingRow>& rows) {
    clear();
    for (const FloatingRow& row : rows) {
        auto* const item = new QListWidgetItem(row.text, this);
        item->setData(detailRole, row.detail);
        item->setData(rangesRole, QVariant::fromValue(row.ranges));
        item->setData(Qt::AccessibleTextRole, row.spoken);
    }
    setFixedHeight(rowHeight * count());
}

void FloatingList::choose(int row) {
    if (row == currentRow()) {
        return;
    }
    setCurrentRow(row);
    if (row < 0) {
        clearSelection();
    } else if (!hasFocus()) {
        QAccessibleEvent focus(this, QAccessible::Focus);
        focus.setChild(row);
        QAccessible::updateAccessibility(&focus);
    }
}

int FloatingList::wantedWidth() const {
    const QFontMetrics bold(Theme::instance().uiFont(13, QFont::DemiBold));
    const QFontMetrics small(rowDetailFont());
    int width = 0;
    for (int row = 0; row < count(); ++row) {
        const QString detail = item(row)->data(detailRole).toString();
        const int detailWidth =
            detail.isEmpty() ? 0 : small.horizontalAdvance(detail) + betweenTexts;
        width = std::max(width, bold.horizontalAdvance(item(row)->text()) + detailWidth);
    }
    return width + 2 * rowPadding + 2;
}

}  // namespace tessaly::desktop
