// SPDX-License-Identifier: GPL-3.0-or-later
// Makes pictures of drawings: for desktops and software centres that read no SVG, and for the
// program itself, which starts sooner without the library that does.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

namespace {

/// A null image when `drawing` cannot be read.
QImage rendered(const QString& drawing, int side) {
    QFile file(drawing);
    if (side <= 0 || !file.open(QIODevice::ReadOnly)) return {};
    QSvgRenderer renderer(file.readAll().replace("currentColor", "#000000"));
    QImage picture(side, side, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    renderer.render(&painter);
    painter.end();
    return renderer.isValid() ? picture : QImage();
}

/// A byte for the opacity of each pixel, row by row, and nothing else.
bool write_mask(const QImage& picture, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return false;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (!file.putChar(static_cast<char>(qAlpha(picture.pixel(x, y))))) return false;
    return file.flush();
}

bool make(const QString& kind, const QString& drawing, int side, const QString& path) {
    const QImage picture = rendered(drawing, side);
    if (picture.isNull()) return false;
    return kind == QLatin1String("mask") ? write_mask(picture, path) : picture.save(path, "PNG");
}

}  // namespace

/// render_icon png|mask FOLDER SIDE[,SIDE]... DRAWING.svg...
/// makes FOLDER/DRAWING-SIDE.png (or .mask) of each drawing for each side, in pixels.
int main(int argc, char** argv) {
    if (argc < 5) return 2;
    const QString kind = QString::fromLocal8Bit(argv[1]);
    const QDir folder(QString::fromLocal8Bit(argv[2]));
    folder.mkpath(QStringLiteral("."));
    const QStringList sides = QString::fromLocal8Bit(argv[3]).split(u',');
    for (int i = 4; i < argc; ++i) {
        const QString drawing = QString::fromLocal8Bit(argv[i]);
        for (const QString& side : sides) {
            const QString name = QFileInfo(drawing).completeBaseName();
            const QString path = folder.filePath(QStringLiteral("%1-%2.%3").arg(name, side, kind));
            if (make(kind, drawing, side.toInt(), path)) continue;
            std::fprintf(stderr, "render_icon: cannot make %s\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
