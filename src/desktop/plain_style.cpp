// SPDX-License-Identifier: MIT
#include "desktop/plain_style.h"

#include <QPainter>
#include <QStyleFactory>
#include <QStyleOption>

#include "desktop/icons.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

namespace {

constexpr double frameRadius = 6;
constexpr double checkRadius = 4.5;
constexpr int arrowSize = 12;

void paintCheckBox(QPainter& painter, const QStyleOption& option) {
    const Colors& colors = Theme::instance().colors();
    const bool isChecked = option.state.testFlag(QStyle::State_On);
    const bool isMarked = isChecked || option.state.testFlag(QStyle::State_HasFocus) ||
                          option.state.testFlag(QStyle::State_MouseOver);
    painter.setPen(QPen(isMarked ? colors.accent : colors.text3, 1.4));
    painter.setBrush(isChecked ? colors.accent : colors.window);
    const QRectF box = QRectF(option.rect).adjusted(0.7, 0.7, -0.7, -0.7);
    painter.drawRoundedRect(box, checkRadius, checkRadius);
    if (isChecked) {
        paintIcon(painter, box.adjusted(1, 1, -1, -1), IconName::check, colors.onAccent);
    }
}

void paintComboFrame(QPainter& painter, const QStyleOption& option) {
    const Colors& colors = Theme::instance().colors();
    const bool isFocused = option.state.testFlag(QStyle::State_HasFocus);
    painter.setPen(QPen(isFocused ? colors.accent : colors.line, 1));
    painter.setBrush(option.state.testFlag(QStyle::State_MouseOver) ? colors.rowHover
                                                                    : colors.window);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), frameRadius,
                            frameRadius);
    const QRect arrow(option.rect.right() - arrowSize - 8,
                      option.rect.center().y() - arrowSize / 2 + 1, arrowSize, arrowSize);
    paintIcon(painter, QStyle::visualRect(option.direction, option.rect, arrow),
              IconName::chevronDown, colors.text2);
}

/// Where a dragged row would go: into what is framed.
void paintDropPlace(QPainter& painter, const QStyleOption& option) {
    painter.setPen(QPen(Theme::instance().colors().accent, 1.6));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(8, 1, -8, -1), frameRadius, frameRadius);
}

}  // namespace

PlainStyle::PlainStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

void PlainStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    if (element != PE_IndicatorCheckBox && element != PE_IndicatorItemViewItemDrop) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    element == PE_IndicatorCheckBox ? paintCheckBox(*painter, *option)
                                    : paintDropPlace(*painter, *option);
    painter->restore();
}

void PlainStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    if (control != CC_ComboBox) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintComboFrame(*painter, *option);
    painter->restore();
}

int PlainStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* returned) const {
    return hint == SH_DialogButtonBox_ButtonsHaveIcons
               ? 0
               : QProxyStyle::styleHint(hint, option, widget, returned);
}

}  // namespace tessaly::desktop
