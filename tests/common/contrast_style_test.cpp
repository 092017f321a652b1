// SPDX-License-Identifier: GPL-3.0-or-later
#include "contrast_style.h"

#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTest>

namespace m47 {

class ContrastStyleTest : public QObject {
    Q_OBJECT

  private:
    static QPalette palette(const QColor& ground, const QColor& text) {
        QPalette colours;
        for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
            colours.setColor(role, ground);
        for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
            colours.setColor(role, text);
        return colours;
    }
    /// How many points of an empty box, drawn by `style`, stand out from the ground.
    template <class Box>
    static int points_seen(QStyle& style, const QPalette& colours) {
        Box box;
        box.setStyle(&style);
        box.setPalette(colours);
        box.setEnabled(true);
        box.resize(60, 24);
        const QImage drawn = box.grab().toImage();
        const int ground = colours.window().color().lightness();
        int seen = 0;
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                if (std::abs(drawn.pixelColor(x, y).lightness() - ground) > 100) ++seen;
        return seen;
    }
    template <class Box>
    static void check() {
        ContrastStyle contrast;
        contrast.setBaseStyle(QStyleFactory::create(QStringLiteral("fusion")));
        const std::unique_ptr<QStyle> plain(QStyleFactory::create(QStringLiteral("fusion")));
        const QPalette dark = palette(Qt::black, Qt::white);
        QCOMPARE(points_seen<Box>(*plain, dark), 0);
        QVERIFY(points_seen<Box>(contrast, dark) >= 30);
        const QPalette light = palette(QColor(239, 239, 239), Qt::black);
        QCOMPARE(points_seen<Box>(contrast, light), points_seen<Box>(*plain, light));
    }

  private Q_SLOTS:
    void an_empty_check_box_is_seen_on_black() { check<QCheckBox>(); }
    void an_empty_option_is_seen_on_black() { check<QRadioButton>(); }
    void an_empty_text_box_is_seen_on_black() { check<QLineEdit>(); }
};

}  // namespace m47

QTEST_MAIN(m47::ContrastStyleTest)
#include "contrast_style_test.moc"
