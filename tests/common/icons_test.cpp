// SPDX-License-Identifier: GPL-3.0-or-later
#include "icons.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QMap>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cmath>
#include <utility>

namespace m47 {
namespace {

/// Every key that a toolbar of the program has.
const char* const kKeys[] = {
    "program",   "download",    "realtime",     "asl",       "configurazione", "setport",
    "save",      "single",      "group",        "previous",  "next",           "previous_prog",
    "next_prog", "satellite",   "terrestre",    "analogico", "qpsk",           "qam",
    "ofdm",      "single_acq",  "multiple_acq", "start",     "stop",           "cancella",
    "stampa",    "open",        "delete",       "dwl",       "dwl_c",          "dwl_m",
    "to_ana",    "to_dig",      "new",          "store_new", "store",          "programma_delete",
    "accoda",    "sostituisci", "nuovo",        "monitor",   "logo",           "time",
};

QPalette light() {
    return QPalette(QColor(0xef, 0xef, 0xef));
}

QPalette dark() {
    QPalette palette(QColor(0x31, 0x34, 0x38));
    palette.setColor(QPalette::Window, QColor(0x31, 0x34, 0x38));
    palette.setColor(QPalette::WindowText, QColor(0xf0, 0xf0, 0xf0));
    return palette;
}

double luminance(const QColor& colour) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [low, high] = std::minmax({luminance(one), luminance(other)});
    return (high + 0.05) / (low + 0.05);
}

QImage image_of(const QIcon& icon, int side, double scale = 1, QIcon::Mode mode = QIcon::Normal) {
    const QPixmap pixmap = icon.pixmap(QSize(side, side), scale, mode);
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
}

/// The colours of the pixels that a line covers wholly.
QList<QColor> covered(const QImage& image) {
    QList<QColor> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) >= 250) colours << image.pixelColor(x, y);
        }
    }
    return colours;
}

/// The colours, as seen on the window, of the pixels that a line covers for three quarters or
/// more; fewer belong to its soft edge.
QList<QColor> drawn(const QImage& image) {
    QImage seen(image.size(), QImage::Format_RGB32);
    seen.fill(QApplication::palette().color(QPalette::Window));
    QImage front = image;
    front.setDevicePixelRatio(1);
    QPainter(&seen).drawImage(0, 0, front);
    QList<QColor> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) >= 0xc0) colours << seen.pixelColor(x, y);
        }
    }
    return colours;
}

double least_contrast(const QImage& image) {
    const QColor window = QApplication::palette().color(QPalette::Window);
    double least = 21;
    for (const QColor& colour : drawn(image)) least = std::min(least, contrast(colour, window));
    return least;
}

/// Pixels of the outermost frame that are drawn at all: there a glyph would be cut off.
int drawn_on_the_frame(const QImage& image) {
    int count = 0;
    const int last = image.width() - 1;
    for (int i = 0; i <= last; ++i) {
        for (const QPoint at : {QPoint(i, 0), QPoint(i, last), QPoint(0, i), QPoint(last, i)}) {
            if (qAlpha(image.pixel(at)) >= 0x80) ++count;
        }
    }
    return count;
}

/// A desktop theme with one bitmap for each name, 24 pixels a side, in one colour.
void write_theme(const QString& folder, const QStringList& names, const QColor& colour) {
    QVERIFY(QDir(folder).mkpath(QStringLiteral("plain/24x24/actions")));
    QFile index(folder + QStringLiteral("/plain/index.theme"));
    QVERIFY(index.open(QIODevice::WriteOnly));
    index.write(
        "[Icon Theme]\nName=plain\nDirectories=24x24/actions\n\n"
        "[24x24/actions]\nSize=24\nType=Fixed\n");
    for (const QString& name : names) {
        QImage image(24, 24, QImage::Format_ARGB32);
        image.fill(colour);
        QVERIFY(image.save(QStringLiteral("%1/plain/24x24/actions/%2.png").arg(folder, name)));
    }
}

void use_theme(const QString& folder) {
    QIcon::setThemeSearchPaths({folder});
    QIcon::setThemeName(QStringLiteral("plain"));
}

}  // namespace

class IconsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init() {
        QIcon::setThemeSearchPaths({});
        QIcon::setThemeName(QStringLiteral("none"));
        QApplication::setPalette(light());
    }

    void every_key_is_drawn_and_readable_data() {
        QTest::addColumn<QString>("key");
        for (const char* key : kKeys) QTest::newRow(key) << QString::fromLatin1(key);
    }

    void every_key_is_drawn_and_readable() {
        QFETCH(QString, key);
        const QIcon icon = toolbar_icon(key);
        QVERIFY(!icon.isNull());
        for (const QPalette& palette : {light(), dark()}) {
            QApplication::setPalette(palette);
            for (const int side : {24, 48}) {
                const QImage image = image_of(icon, side);
                QCOMPARE(image.size(), QSize(side, side));
                QVERIFY2(drawn(image).size() >= side, qPrintable(key));
                QVERIFY2(least_contrast(image) >= 4.5, qPrintable(key));
                QCOMPARE(drawn_on_the_frame(image), 0);
            }
        }
    }

    void no_two_keys_look_alike() {
        QMap<QByteArray, QString> seen;
        for (const char* key : kKeys) {
            const QImage image = image_of(toolbar_icon(QString::fromLatin1(key)), 24);
            const QByteArray bytes(reinterpret_cast<const char*>(image.constBits()),
                                   image.sizeInBytes());
            QVERIFY2(!seen.contains(bytes),
                     qPrintable(seen.value(bytes) + QLatin1Char(' ') + QString::fromLatin1(key)));
            seen.insert(bytes, QString::fromLatin1(key));
        }
    }

    void an_unknown_key_has_no_icon() {
        for (const char* key : {"", "storing", "m47-remote", "Save"}) {
            QVERIFY2(toolbar_icon(QString::fromLatin1(key)).isNull(), key);
        }
    }

    void a_scale_of_two_is_drawn_anew_not_enlarged() {
        const QIcon icon = toolbar_icon(QStringLiteral("setport"));
        const QPixmap pixmap = icon.pixmap(QSize(24, 24), 2.0);
        QCOMPARE(pixmap.size(), QSize(48, 48));
        QCOMPARE(pixmap.devicePixelRatio(), 2.0);
        QImage image = image_of(icon, 24, 2.0);
        image.setDevicePixelRatio(1);
        QCOMPARE(image, image_of(icon, 48));
        QVERIFY(image !=
                image_of(icon, 24).scaled(48, 48, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }

    void a_glyph_follows_the_palette_at_run_time() {
        const QIcon icon = toolbar_icon(QStringLiteral("stop"));
        for (const QPalette& palette : {light(), dark(), light()}) {
            QApplication::setPalette(palette);
            const QList<QColor> colours = covered(image_of(icon, 24));
            QVERIFY(!colours.isEmpty());
            for (const QColor& colour : colours) {
                QCOMPARE(colour.rgb(), palette.color(QPalette::WindowText).rgb());
            }
        }
    }

    void a_disabled_glyph_is_dimmed_but_there() {
        const QIcon icon = toolbar_icon(QStringLiteral("asl"));
        for (const QPalette& palette : {light(), dark()}) {
            QApplication::setPalette(palette);
            const double enabled = least_contrast(image_of(icon, 24));
            const double disabled = least_contrast(image_of(icon, 24, 1, QIcon::Disabled));
            QVERIFY2(disabled < enabled / 2, qPrintable(QString::number(disabled)));
            QVERIFY2(disabled > 1.5, qPrintable(QString::number(disabled)));
        }
    }

    void a_glyph_painted_in_an_oblong_keeps_its_shape() {
        const QIcon icon = toolbar_icon(QStringLiteral("stop"));
        QImage canvas(72, 24, QImage::Format_ARGB32);
        canvas.fill(Qt::transparent);
        QPainter painter(&canvas);
        icon.paint(&painter, canvas.rect());
        painter.end();
        QCOMPARE(canvas.copy(24, 0, 24, 24), image_of(icon, 24));
        QVERIFY(covered(canvas.copy(0, 0, 24, 24)).isEmpty());
        QVERIFY(covered(canvas.copy(48, 0, 24, 24)).isEmpty());
    }

    void the_desktops_icon_is_used_where_it_is_readable() {
        const std::pair<QString, QString> themed[] = {
            {QStringLiteral("open"), QStringLiteral("document-open")},
            {QStringLiteral("save"), QStringLiteral("document-save")},
            {QStringLiteral("stampa"), QStringLiteral("document-print")},
            {QStringLiteral("cancella"), QStringLiteral("edit-clear")},
            {QStringLiteral("previous_prog"), QStringLiteral("go-previous")},
            {QStringLiteral("next_prog"), QStringLiteral("go-next")},
        };
        const QColor navy(0, 0, 0x60);
        for (const auto& [key, name] : themed) {
            QTemporaryDir folder;
            write_theme(folder.path(), {name}, navy);
            use_theme(folder.path());
            const QIcon icon = toolbar_icon(key);
            QApplication::setPalette(light());
            QCOMPARE(image_of(icon, 24).pixelColor(12, 12), navy);
            QImage canvas(24, 24, QImage::Format_ARGB32);
            canvas.fill(Qt::transparent);
            QPainter painter(&canvas);
            icon.paint(&painter, canvas.rect());
            painter.end();
            QCOMPARE(canvas.pixelColor(12, 12), navy);
            QApplication::setPalette(dark());
            QVERIFY2(!covered(image_of(icon, 24)).contains(navy), qPrintable(key));
            QVERIFY(least_contrast(image_of(icon, 24)) >= 4.5);
        }
    }

    void the_desktops_icon_is_dimmed_when_disabled() {
        QTemporaryDir folder;
        write_theme(folder.path(), {QStringLiteral("document-save")}, QColor(0, 0, 0x60));
        use_theme(folder.path());
        const QImage image = image_of(toolbar_icon(QStringLiteral("save")), 24, 1, QIcon::Disabled);
        const int alpha = qAlpha(image.pixel(12, 12));
        QVERIFY2(alpha > 90 && alpha < 115, qPrintable(QString::number(alpha)));
    }

    void a_desktops_picture_in_colours_is_not_used() {
        QTemporaryDir folder;
        write_theme(folder.path(), {QStringLiteral("document-save")}, QColor(0, 0, 0x60));
        const QString name = QStringLiteral("/plain/24x24/actions/document-save.png");
        QImage picture(folder.path() + name);
        QPainter(&picture).fillRect(0, 0, 24, 8, QColor(0x60, 0, 0));
        QVERIFY(picture.save(folder.path() + name));
        use_theme(folder.path());
        QVERIFY(QIcon::hasThemeIcon(QStringLiteral("document-save")));
        const QImage shown = image_of(toolbar_icon(QStringLiteral("save")), 24);
        init();
        QCOMPARE(shown, image_of(toolbar_icon(QStringLiteral("save")), 24));
    }

    void a_desktops_bitmap_too_small_for_the_scale_is_not_used() {
        QTemporaryDir folder;
        const QColor navy(0, 0, 0x60);
        write_theme(folder.path(), {QStringLiteral("document-save")}, navy);
        use_theme(folder.path());
        const QImage image = image_of(toolbar_icon(QStringLiteral("save")), 24, 2.0);
        QCOMPARE(image.size(), QSize(48, 48));
        QVERIFY(!covered(image).contains(navy));
    }

    void the_application_icon_is_colourful_at_every_size() {
        const QIcon icon = application_icon();
        for (const int side : {16, 22, 24, 32, 48, 64, 128, 256}) {
            const QImage image = image_of(icon, side);
            QCOMPARE(image.size(), QSize(side, side));
            int green = 0;
            int red = 0;
            for (const QColor& colour : covered(image)) {
                if (colour.green() > 150 && colour.red() < 100) ++green;
                if (colour.red() > 180 && colour.green() < 120) ++red;
            }
            QVERIFY2(green > 0 && red > 0, qPrintable(QString::number(side)));
        }
    }
};

}  // namespace m47

QTEST_MAIN(m47::IconsTest)
#include "icons_test.moc"
