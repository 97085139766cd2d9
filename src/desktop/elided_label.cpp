// SPDX-License-Identifier: MIT
#include "desktop/elided_label.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include "desktop/theme.h"

namespace tessaly::desktop {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void ElidedLabel::setTone(Tone tone) {
    if (tone != _tone) {
        _tone = tone;
        updateGeometry();
        update();
    }
}

int ElidedLabel::margin() const {
    return _tone == Tone::loud ? 8 : 0;
}

QString ElidedLabel::shown() const {
    if (_isWholeOnly && width() < sizeHint().width()) {
        return {};
    }
    // What is wrong stands first, and the reason last.
    const auto mode = _tone == Tone::loud ? Qt::ElideMiddle : Qt::ElideRight;
    return fontMetrics().elidedText(text(), mode, width() - 2 * margin());
}

QSize ElidedLabel::sizeHint() const {
    const int width = text().isEmpty() ? 0 : fontMetrics().horizontalAdvance(text()) + 1;
    return {width + 2 * margin(), fontMetrics().height() + 6};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, sizeHint().height()};
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* help = static_cast<QHelpEvent*>(event);
        QToolTip::showText(help->globalPos(), shown() == text() ? QString() : text(), this);
        return true;
    }
    return QLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    const Colors& colors = Theme::instance().colors();
    QPainter painter(this);
    if (_tone == Tone::loud && !text().isEmpty()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colors.conflict);
        painter.drawRoundedRect(rect(), 6, 6);
        painter.setPen(Qt::white);
    } else {
        painter.setPen(_tone == Tone::muted ? colors.text2 : colors.text);
    }
    const Qt::Alignment place = QStyle::visualAlignment(layoutDirection(), alignment());
    painter.drawText(rect().adjusted(margin(), 0, -margin(), 0),
                     static_cast<int>(place | Qt::AlignVCenter) | Qt::TextSingleLine, shown());
}

}  // namespace tessaly::desktop
