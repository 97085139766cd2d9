// SPDX-License-Identifier: MIT
#include "desktop/icons.h"

#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>
#include <array>
#include <iterator>
#include <utility>

namespace tessaly::desktop {

namespace {

/// The inner part of an SVG file of 24 x 24, drawn with round strokes of 1.7.
struct IconDrawing {
    IconName name;
    const char* elements;
};

constexpr IconDrawing iconDrawings[] = {
    {IconName::calendar,
     "<rect x='3.5' y='5' width='17' height='15.5' rx='3'/>"
     "<path d='M3.5 9.8h17M8 2.8v4M16 2.8v4'/>"},
    {IconName::week,
     "<rect x='3.5' y='5' width='17' height='15.5' rx='3'/>"
     "<path d='M3.5 9.8h17M8 2.8v4M16 2.8v4M7.5 13.5h9M7.5 16.8h5.5'/>"},
    {IconName::inbox,
     "<path d='M3.5 13.5h4.6l1.5 2.6h4.8l1.5-2.6h4.6'/>"
     "<path d='M6.2 5h11.6l2.7 8.5v4a2.5 2.5 0 0 1-2.5 2.5H6a2.5 2.5 0 0 1-2.5-2.5v-4z'/>"},
    {IconName::recent, "<circle cx='12' cy='12' r='8.5'/><path d='M12 7.3V12l3.2 2'/>"},
    {IconName::note,
     "<path d='M13.5 3.5H7.5A2.5 2.5 0 0 0 5 6v12a2.5 2.5 0 0 0 2.5 2.5h9A2.5 2.5 0 0 0 19 "
     "18V9z'/><path d='M13.5 3.5V9H19M8.8 13h6.4M8.8 16.5h4.2'/>"},
    {IconName::folder,
     "<path d='M3.5 17.5v-11A2 2 0 0 1 5.5 4.5h3.6a2 2 0 0 1 1.5.7l1.5 1.8h6.4a2 2 0 0 1 2 "
     "2v8.5a2 2 0 0 1-2 2h-13a2 2 0 0 1-2-2z'/>"},
    {IconName::folderOpen,
     "<path d='M3.5 17.5v-11A2 2 0 0 1 5.5 4.5h3.6a2 2 0 0 1 1.5.7l1.5 1.8h5.4a2 2 0 0 1 "
     "2 2V11'/><path d='M3.5 17.8 6 11.9a1.5 1.5 0 0 1 1.4-.9h12.9a1 1 0 0 1 "
     ".9 1.4l-2.4 5.9a2 2 0 0 1-1.8 1.2H5a1.6 1.6 0 0 1-1.5-1.7z'/>"},
    {IconName::archive,
     "<rect x='3' y='4.5' width='18' height='4.6' rx='1.4'/>"
     "<path d='M4.8 9.1v8.4a2 2 0 0 0 2 2h10.4a2 2 0 0 0 2-2V9.1M10 13h4'/>"},
    {IconName::trash,
     "<path d='M4.5 6.5h15M9.5 6.2V4.7a1.2 1.2 0 0 1 1.2-1.2h2.6a1.2 1.2 0 0 1 1.2 1.2v1.5'/>"
     "<path d='M6.2 6.8l.9 11.8a2 2 0 0 0 2 1.9h5.8a2 2 0 0 0 2-1.9l.9-11.8'/>"},
    {IconName::view,
     "<path d='M12 4 3.5 8.4 12 12.8l8.5-4.4z'/><path d='M3.9 12.3 12 16.4l8.1-4.1M3.9 16.1 12 "
     "20.2l8.1-4.1'/>"},
    {IconName::hashtag, "<path d='M9.4 4 7.4 20M16.6 4l-2 16M4.5 9h15.4M4 15h15.4'/>"},
    {IconName::mention,
     "<circle cx='12' cy='12' r='3.7'/><path d='M15.7 8.4v4.9a2.4 2.4 0 0 0 4.8 0V12a8.5 8.5 0 "
     "1 0-3.4 6.8'/>"},
    {IconName::preferences,
     "<path d='M4 7.5h8.3M16.9 7.5H20M4 16.5h3.1M11.7 16.5H20'/>"
     "<circle cx='14.6' cy='7.5' r='2.3'/><circle cx='9.4' cy='16.5' r='2.3'/>"},
    {IconName::help,
     "<circle cx='12' cy='12' r='8.5'/><path d='M9.6 9.6a2.5 2.5 0 1 1 3.6 2.2c-.8.4-1.2.9-1.2 "
     "1.8'/><path d='M12 16.6v.05'/>"},
    {IconName::search, "<circle cx='10.8' cy='10.8' r='6.3'/><path d='m15.5 15.5 4.7 4.7'/>"},
    {IconName::plus, "<path d='M12 5v14M5 12h14'/>"},
    {IconName::more,
     "<g fill='@' stroke='none'><circle cx='5.5' cy='12' r='1.7'/><circle cx='12' cy='12' "
     "r='1.7'/><circle cx='18.5' cy='12' r='1.7'/></g>"},
    {IconName::close, "<path d='m6.5 6.5 11 11M17.5 6.5l-11 11'/>"},
    {IconName::check, "<path d='m5 12.6 4.6 4.6L19.2 7.2'/>"},
    {IconName::cancel, "<circle cx='12' cy='12' r='8.5'/><path d='m9 9 6 6M15 9l-6 6'/>"},
    {IconName::schedule,
     "<path d='M20.5 11.5V8a3 3 0 0 0-3-3h-11a3 3 0 0 0-3 3v9.5a3 3 0 0 0 3 3h4'/>"
     "<path d='M3.5 9.8h17M8 2.8v4M16 2.8v4'/><circle cx='17' cy='17' r='4.5'/>"
     "<path d='M17 14.9V17l1.4 1'/>"},
    {IconName::back, "<path d='M14.5 5.5 8 12l6.5 6.5'/>"},
    {IconName::forward, "<path d='M9.5 5.5 16 12l-6.5 6.5'/>"},
    {IconName::chevronDown, "<path d='M6 9.5l6 6 6-6'/>"},
    {IconName::chevronRight, "<path d='M9.5 6l6 6-6 6'/>"},
    {IconName::sideBar,
     "<rect x='3.5' y='4.5' width='17' height='15' rx='3'/><path d='M9.5 4.5v15M6 8.5h1M6 "
     "11.5h1'/>"},
    {IconName::rightPane,
     "<rect x='3.5' y='4.5' width='17' height='15' rx='3'/><path d='M14.5 4.5v15M17 "
     "8.5h1M17 11.5h1'/>"},
    {IconName::list, "<path d='M9 6.5h11M9 12h11M9 17.5h11M4.6 6.5v.05M4.6 12v.05M4.6 17.5v.05'/>"},
    {IconName::open,
     "<path d='M13.5 4.5h6v6M19.5 4.5l-8.5 8.5M17.5 14v3.5a2 2 0 0 1-2 2h-9a2 2 0 0 1-2-2v-9a2 2 "
     "0 0 1 2-2H10'/>"},
    {IconName::filter, "<path d='M4 6.5h16M7 12h10M10 17.5h4'/>"},
    {IconName::undo, "<path d='M8.5 5 4 9.5 8.5 14'/><path d='M4.4 9.5h9.8a5 5 0 0 1 0 10H9'/>"},
    {IconName::warning,
     "<path d='M10.4 4.9 3.2 17.3a1.9 1.9 0 0 0 1.6 2.8h14.4a1.9 1.9 0 0 0 1.6-2.8L13.6 4.9a1.85 "
     "1.85 0 0 0-3.2 0z'/><path d='M12 9.5v4.3M12 16.8v.05'/>"},
    {IconName::save,
     "<path d='M12 4v10.5M7.5 10.3 12 14.8l4.5-4.5M4.5 16.5v1.5a2 2 0 0 0 2 2h11a2 2 0 0 0 "
     "2-2v-1.5'/>"},
    {IconName::jump, "<path d='M5 5v6a4 4 0 0 0 4 4h10M14.5 10.5 19 15l-4.5 4.5'/>"},
    {IconName::overdue,
     "<path d='M20.5 13V8a3 3 0 0 0-3-3h-11a3 3 0 0 0-3 3v9.5a3 3 0 0 0 3 3h6'/>"
     "<path d='M3.5 9.8h17M8 2.8v4M16 2.8v4M18 15.5v3M18 21.3v.05'/>"},
    {IconName::task, "<circle cx='12' cy='12' r='8.5'/>"},
    {IconName::taskDone, "<circle cx='12' cy='12' r='8.5'/><path d='m8.2 12.3 2.7 2.7 5-5.4'/>"},
    {IconName::taskCancelled, "<circle cx='12' cy='12' r='8.5'/><path d='m9 9 6 6M15 9l-6 6'/>"},
    {IconName::taskScheduled,
     "<circle cx='12' cy='12' r='8.5'/><path d='m10.3 8.2 3.8 3.8-3.8 3.8'/>"},
    {IconName::chevronLeft, "<path d='M14.5 6l-6 6 6 6'/>"},
    {IconName::arrowLeft, "<path d='M19 12H5.5M11 6l-6 6 6 6'/>"},
    {IconName::arrowRight, "<path d='M5 12h13.5M13 6l6 6-6 6'/>"},
};

constexpr bool areIconsInOrder() {
    for (std::size_t index = 0; index < std::size(iconDrawings); ++index) {
        if (static_cast<std::size_t>(iconDrawings[index].name) != index) {
            return false;
        }
    }
    return std::size(iconDrawings) == static_cast<std::size_t>(IconName::arrowRight) + 1;
}
static_assert(areIconsInOrder());

QByteArray svgOf(IconName name, const QColor& color) {
    const QByteArray stroke = color.name(QColor::HexRgb).toLatin1();
    const QByteArray opacity = QByteArray::number(color.alphaF());
    QByteArray elements = iconDrawings[static_cast<std::size_t>(name)].elements;
    elements.replace('@', stroke);
    return "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24'><g fill='none' stroke='" +
           stroke + "' opacity='" + opacity +
           "' stroke-width='1.7' stroke-linecap='round' stroke-linejoin='round'>" + elements +
           "</g></svg>";
}

struct PixmapKey {
    IconName name;
    QRgb color;
    int pixels;
    qreal ratio;
    bool operator==(const PixmapKey&) const = default;
};

size_t qHash(const PixmapKey& key, size_t seed = 0) {
    return qHashMulti(seed, static_cast<int>(key.name), key.color, key.pixels, key.ratio);
}

QPixmap drawnPixmap(const PixmapKey& key, const QColor& color) {
    QPixmap pixmap(key.pixels, key.pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QSvgRenderer(svgOf(key.name, color)).render(&painter, QRectF(0, 0, key.pixels, key.pixels));
    painter.end();
    pixmap.setDevicePixelRatio(key.ratio);
    return pixmap;
}

/// Draws at the size it is asked for, so that no scale blurs it.
class StrokeIconEngine : public QIconEngine {
public:
    StrokeIconEngine(IconName name, QColor color) : _name(name), _color(std::move(color)) {}

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode, QIcon::State) override {
        paintIcon(*painter, place, _name, colorOf(mode));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return iconPixmap(_name, colorOf(mode), qMin(size.width(), size.height()), 1);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal ratio) override {
        // The size that comes here is in the screen's own pixels.
        const int pixels = qMin(size.width(), size.height());
        return iconPixmap(_name, colorOf(mode), qRound(pixels / ratio), ratio);
    }
    QIconEngine* clone() const override { return new StrokeIconEngine(_name, _color); }

private:
    QColor colorOf(QIcon::Mode mode) const {
        QColor color = _color;
        if (mode == QIcon::Disabled) {
            color.setAlphaF(color.alphaF() * 0.4F);
        }
        return color;
    }

    IconName _name;
    QColor _color;
};

}  // namespace

QIcon icon(IconName name, const QColor& color) {
    return QIcon(new StrokeIconEngine(name, color));
}

QPixmap iconPixmap(IconName name, const QColor& color, int size, qreal devicePixelRatio) {
    static QHash<PixmapKey, QPixmap> drawn;
    constexpr qsizetype mostPixmaps = 1000;  // changes of theme and scale leave old ones behind
    const PixmapKey key{name, color.rgba(), qRound(size * devicePixelRatio), devicePixelRatio};
    const auto known = drawn.constFind(key);
    if (known != drawn.cend()) {
        return *known;
    }
    if (drawn.size() >= mostPixmaps) {
        drawn.clear();
    }
    return *drawn.insert(key, drawnPixmap(key, color));
}

void paintIcon(QPainter& painter, const QRectF& place, IconName name, const QColor& color) {
    const qreal ratio = painter.device()->devicePixelRatioF();
    const int size = qRound(qMin(place.width(), place.height()));
    if (size <= 0) {
        return;
    }
    const QPointF corner = place.center() - QPointF(size / 2.0, size / 2.0);
    painter.drawPixmap(corner, iconPixmap(name, color, size, ratio));
}

}  // namespace tessaly::desktop
