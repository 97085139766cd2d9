// SPDX-License-Identifier: MIT
#include "desktop/empty_list_view.h"

#include <QPainter>

#include "desktop/icons.h"
#include "desktop/qt_text.h"
#include "desktop/theme.h"

namespace tessaly::desktop {

EmptyListView::EmptyListView(QWidget* parent) : QWidget(parent) {
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void EmptyListView::setWords(const app::EmptyList& words) {
    _title = qt(words.title);
    _hints.clear();
    for (const std::string& hint : words.hints) {
        _hints.append(qt(hint));
    }
    setAccessibleName(_title);
    setAccessibleDescription(_hints.join(QLatin1Char('\n')));
    update();
}

void EmptyListView::paintEvent(QPaintEvent*) {
    if (_title.isEmpty()) {
        return;
    }
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr int margin = 28;
    constexpr int signSize = 28;
    QRect room = rect().adjusted(margin, height() / 6, -margin, 0);
    const QRectF sign(room.center().x() - signSize / 2.0, room.top(), signSize, signSize);
    paintIcon(painter, sign, IconName::search, theme.colors().text3);
    room.setTop(room.top() + signSize + 14);
    const int flags = Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap;
    const auto draw = [&](const QString& words, const QFont& font, const QColor& color) {
        painter.setFont(font);
        painter.setPen(color);
        QRect drawn;
        painter.drawText(room, flags, words, &drawn);
        constexpr int gap = 8;
        room.setTop(drawn.bottom() + gap);
    };
    draw(_title, theme.uiFont(15, QFont::DemiBold), theme.colors().text);
    for (const QString& hint : _hints) {
        draw(hint, theme.uiFont(12), theme.colors().text2);
    }
}

}  // namespace tessaly::desktop
