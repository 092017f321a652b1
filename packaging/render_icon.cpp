// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the program's icon at one size, for desktops and software centres that read no SVG.
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

/// render_icon DRAWING.svg SIDE PICTURE.png
int main(int argc, char** argv) {
    const int side = argc == 4 ? QByteArray(argv[2]).toInt() : 0;
    if (side <= 0) return 2;
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    drawing.render(&painter);
    painter.end();
    if (drawing.isValid() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG")) return 0;
    std::fprintf(stderr, "render_icon: cannot make %s from %s\n", argv[3], argv[1]);
    return 1;
}
