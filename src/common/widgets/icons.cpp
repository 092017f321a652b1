// SPDX-License-Identifier: GPL-3.0-or-later
#include "icons.h"

#include <QFile>
#include <QGuiApplication>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "contrast.h"

// The folder is a static library: its resources are linked only when somebody asks for them, and
// the macro wants to be outside of every namespace.
static void register_resources() {
    Q_INIT_RESOURCE(icons);
}

namespace m47 {
namespace {

/// The side, in pixels, at which a themed icon is judged: that of a toolbar at 100 %.
constexpr int kJudgedSide = 24;
/// The opacity, to 255, from which a pixel belongs to the drawing and not to its soft edge.
constexpr int kFilled = 0xc0;
/// How far the channels of a drawing in one colour may differ.
constexpr int kOneColour = 0x20;
/// How much of the text colour is left in the glyph of a disabled button.
constexpr double kDisabledShare = 0.4;

struct ThemedKey {
    const char* key;
    const char* name;
};

/// Only what every desktop draws alike. The plan's steps stay the program's own, so that they are
/// told apart from the program's steps next to them.
constexpr std::array kThemedKeys{
    ThemedKey{"open", "document-open"},        ThemedKey{"save", "document-save"},
    ThemedKey{"stampa", "document-print"},     ThemedKey{"cancella", "edit-clear"},
    ThemedKey{"previous_prog", "go-previous"}, ThemedKey{"next_prog", "go-next"},
};

QIcon desktop_icon(const QString& key) {
    for (const ThemedKey& themed : kThemedKeys) {
        const QString name = QString::fromLatin1(themed.name);
        if (key == QLatin1String(themed.key) && QIcon::hasThemeIcon(name)) {
            return QIcon::fromTheme(name);
        }
    }
    return {};
}

/// The colours of the pixels that `icon` fills, at a toolbar's size.
std::vector<QRgb> filled_pixels(const QIcon& icon) {
    const QPixmap pixmap = icon.pixmap(QSize(kJudgedSide, kJudgedSide), 1.0);
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    std::vector<QRgb> pixels;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) >= kFilled) pixels.push_back(image.pixel(x, y));
        }
    }
    return pixels;
}

int spread(const std::vector<QRgb>& pixels, int (*channel)(QRgb)) {
    const auto [least, most] = std::minmax_element(
        pixels.begin(), pixels.end(),
        [channel](QRgb one, QRgb other) { return channel(one) < channel(other); });
    return channel(*most) - channel(*least);
}

/// True when `icon` is a drawing in one colour, as the glyphs next to it are, and all of it can be
/// read on `background`. The coloured pictures of older themes would stand out, and half of each
/// is lost on a dark window.
bool fits_glyphs(const QIcon& icon, const QColor& background) {
    const std::vector<QRgb> pixels = filled_pixels(icon);
    return !pixels.empty() && spread(pixels, qRed) <= kOneColour &&
           spread(pixels, qGreen) <= kOneColour && spread(pixels, qBlue) <= kOneColour &&
           std::all_of(pixels.begin(), pixels.end(), [&background](QRgb pixel) {
               return contrast(QColor::fromRgb(pixel), background) >= kTextContrast;
           });
}

QColor glyph_colour(QIcon::Mode mode) {
    const QPalette palette = QGuiApplication::palette();
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    const QColor text = palette.color(QPalette::Active, QPalette::WindowText);
    if (mode == QIcon::Selected) return palette.color(QPalette::Active, QPalette::HighlightedText);
    if (mode != QIcon::Disabled) return text;
    return mixed(text, window, kDisabledShare);
}

QRectF centred_square(const QRectF& rect) {
    const double side = std::min(rect.width(), rect.height());
    QRectF square(0, 0, side, side);
    square.moveCenter(rect.center());
    return square;
}

/// The sides, in pixels, in which the program has its drawings.
constexpr std::array kGlyphSides{M47_GLYPH_SIDES};
constexpr std::array kIconSides{M47_ICON_SIDES};

QString mask_file(const QString& key, int side) {
    return QStringLiteral(":/m47/%1-%2.mask").arg(key).arg(side);
}

/// The least of `sides` that `side` is not larger than, else the largest.
template <class Sides>
int side_for(const Sides& sides, int side) {
    const auto* const found = std::lower_bound(sides.begin(), sides.end(), side);
    return found == sides.end() ? sides.back() : *found;
}

QImage in_size(const QImage& image, int side) {
    if (image.width() == side) return image;
    return image.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

/// The glyph `key` in `colour`.
QImage glyph(const QString& key, int side, const QColor& colour) {
    const int made = side_for(kGlyphSides, side);
    QFile file(mask_file(key, made));
    const QByteArray opacities = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    QImage image(made, made, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (int i = 0; i < opacities.size() && i < made * made; ++i) {
        const QRgb rgb = qRgba(colour.red(), colour.green(), colour.blue(), uchar(opacities[i]));
        reinterpret_cast<QRgb*>(image.scanLine(i / made))[i % made] = qPremultiply(rgb);
    }
    return in_size(image, side);
}

QImage icon_of_program(int side) {
    const int made = side_for(kIconSides, side);
    return in_size(QImage(QStringLiteral(":/m47/m47-remote-%1.png").arg(made)), side);
}

/// What `drawn` makes for a side in pixels, in the middle of a pixmap of `size`.
template <class Drawn>
QPixmap centred(const QSize& size, const Drawn& drawn) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const QRect square = centred_square(QRectF(QPointF(), QSizeF(size))).toRect();
    painter.drawImage(square.topLeft(), drawn(square.width()));
    return pixmap;
}

/// The same on `rect` of whatever `painter` paints on, as sharp as that is.
template <class Drawn>
void paint_centred(QPainter* painter, const QRect& rect, const Drawn& drawn) {
    const QRect square = centred_square(rect).toRect();
    const qreal scale = painter->device()->devicePixelRatio();
    painter->drawImage(square, drawn(qRound(square.width() * scale)));
}

QPixmap dimmed(const QPixmap& pixmap) {
    QPixmap faint(pixmap.size());
    faint.fill(Qt::transparent);
    QPainter painter(&faint);
    painter.setOpacity(kDisabledShare);
    painter.drawPixmap(0, 0, pixmap);
    return faint;
}

/// The program's icon in the size asked for: all sizes at once would hold up the start.
class ProgramIcon : public QIconEngine {
  public:
    QIconEngine* clone() const override { return new ProgramIcon(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        paint_centred(painter, rect, icon_of_program);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
        return centred(size, icon_of_program);
    }
};

/// A line drawing in the palette's text colour at the moment of painting.
class GlyphEngine : public QIconEngine {
  public:
    GlyphEngine(QString key, QIcon themed, bool faint)
        : key_(std::move(key)), themed_(std::move(themed)), faint_(faint) {}

    QIconEngine* clone() const override { return new GlyphEngine(*this); }

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        const QRect square = centred_square(rect).toRect();
        const qreal scale = painter->device()->devicePixelRatio();
        mode = shown(mode);
        const QPixmap themed = themed_pixmap((QSizeF(square.size()) * scale).toSize(), mode, state);
        if (themed.isNull()) {
            paint_centred(painter, rect, [&](int side) { return drawn(side, mode); });
        } else {
            painter->drawPixmap(square, themed);
        }
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        mode = shown(mode);
        const QPixmap themed = themed_pixmap(size, mode, state);
        return themed.isNull() ? centred(size, [&](int side) { return drawn(side, mode); })
                               : themed;
    }

  private:
    QImage drawn(int side, QIcon::Mode mode) const { return glyph(key_, side, glyph_colour(mode)); }

    /// A faint glyph looks as on a button that is disabled.
    QIcon::Mode shown(QIcon::Mode mode) const {
        return faint_ && mode != QIcon::Selected ? QIcon::Disabled : mode;
    }

    /// `size` is in device pixels. Null where the glyph is to be drawn: also in place of a themed
    /// icon that only exists smaller and would be blurred.
    QPixmap themed_pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) const {
        const QColor window = QGuiApplication::palette().color(QPalette::Active, QPalette::Window);
        if (themed_.isNull() || !fits_glyphs(themed_, window)) return {};
        const QIcon::Mode drawn = mode == QIcon::Disabled ? QIcon::Normal : mode;
        const QPixmap found = themed_.pixmap(size, 1.0, drawn, state);
        if (found.width() < size.width() && found.height() < size.height()) return {};
        return mode == QIcon::Disabled ? dimmed(found) : found;
    }

    QString key_;
    QIcon themed_;
    bool faint_;
};

}  // namespace

QIcon toolbar_icon(const QString& key, bool faint) {
    register_resources();
    if (!QFile::exists(mask_file(key, kGlyphSides.front()))) return {};
    return QIcon(new GlyphEngine(key, desktop_icon(key), faint));
}

QIcon application_icon() {
    register_resources();
    return QIcon(new ProgramIcon);
}

}  // namespace m47
