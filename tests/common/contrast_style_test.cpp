// SPDX-License-Identifier: GPL-3.0-or-later
#include "contrast_style.h"

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTest>

#include "contrast.h"

namespace m47 {

class ContrastStyleTest : public QObject {
    Q_OBJECT

  private:
    static QPalette palette(const QColor& ground, const QColor& text) {
        QPalette colours(ground, ground);
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
            colours.setColor(role, ground);
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            colours.setColor(role, text);
        return colours;
    }
    /// How many points of an empty box, drawn by `style`, are seen on the ground.
    template <class Box>
    static int points_seen(QStyle& style, const QPalette& colours, bool enabled = true) {
        Box box;
        box.setStyle(&style);
        box.setPalette(colours);
        box.setEnabled(enabled);
        box.resize(60, 24);
        const QImage drawn = box.grab().toImage();
        int seen = 0;
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                if (contrast(drawn.pixelColor(x, y), colours.window().color()) >= kOutlineContrast)
                    ++seen;
        return seen;
    }
    template <class Box>
    static void check() {
        ContrastStyle style;
        style.setBaseStyle(QStyleFactory::create(QStringLiteral("fusion")));
        for (const QRgb ground : {0xff000000, 0xff242424, 0xff353535, 0xffefefef, 0xffffffff}) {
            const QColor colour = QColor::fromRgb(ground);
            const QColor text = colour.lightness() < 128 ? Qt::white : Qt::black;
            QVERIFY2(points_seen<Box>(style, palette(colour, text)) >= 20,
                     qPrintable(colour.name()));
        }
    }

  private Q_SLOTS:
    void an_empty_check_box_is_seen() { check<QCheckBox>(); }
    void an_empty_option_is_seen() { check<QRadioButton>(); }
    void an_empty_text_box_is_seen() { check<QLineEdit>(); }
    void an_empty_list_is_seen() { check<QComboBox>(); }
    void a_button_is_seen() { check<QPushButton>(); }

    void what_cannot_be_used_is_left_as_faint_as_the_desktop_draws_it() {
        ContrastStyle style;
        style.setBaseStyle(QStyleFactory::create(QStringLiteral("fusion")));
        const std::unique_ptr<QStyle> plain(QStyleFactory::create(QStringLiteral("fusion")));
        const QPalette light = palette(QColor(239, 239, 239), Qt::black);
        QCOMPARE(points_seen<QLineEdit>(style, light, false),
                 points_seen<QLineEdit>(*plain, light, false));
    }

    void the_keyboard_is_seen_where_it_is_in_every_palette() {
        for (const QRgb ground : {0xff000000, 0xff353535, 0xffefefef})
            for (const QRgb mark : {0xff15539e, 0xff308cc6, 0xffffff00}) {
                const QColor window = QColor::fromRgb(ground);
                QPalette colours =
                    palette(window, window.lightness() < 128 ? Qt::white : Qt::black);
                colours.setColor(QPalette::Highlight, QColor::fromRgb(mark));
                QVERIFY(contrast(outline_colour(colours, true), window) >= kOutlineContrast);
            }
    }

    void contrast_is_that_of_the_guidelines() {
        QCOMPARE(contrast(Qt::black, Qt::white), 21.0);
        QCOMPARE(contrast(Qt::white, Qt::black), 21.0);
        QCOMPARE(contrast(Qt::red, Qt::red), 1.0);
        QVERIFY(std::abs(contrast(QColor(0x76, 0x76, 0x76), Qt::white) - 4.54) < 0.01);
        QVERIFY(contrast(just_seen(Qt::white, QColor(0x35, 0x35, 0x35), 4.5),
                         QColor(0x35, 0x35, 0x35)) >= 4.5);
        QCOMPARE(just_seen(QColor(0x40, 0x40, 0x40), QColor(0x35, 0x35, 0x35), 4.5),
                 QColor(0x40, 0x40, 0x40));
    }
};

}  // namespace m47

QTEST_MAIN(m47::ContrastStyleTest)
#include "contrast_style_test.moc"
