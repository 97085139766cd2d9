// SPDX-License-Identifier: MIT
// Draws an SVG icon for desktops that want pixels: render_icon SVG SIZE PNG
#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
    const int size = argc == 4 ? QByteArray(argv[2]).toInt() : 0;
    if (size <= 0) {
        std::fputs("render_icon SVG SIZE PNG\n", stderr);
        return 2;
    }
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    painter.end();
    if (!drawing.isValid() || !image.save(QString::fromLocal8Bit(argv[3]))) {
        std::fprintf(stderr, "render_icon: cannot draw %s as %s\n", argv[1], argv[3]);
        return 1;
    }
    return 0;
}
