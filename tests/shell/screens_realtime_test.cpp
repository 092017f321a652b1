// SPDX-License-Identifier: GPL-3.0-or-later
// The real-time screen in the main window.
#include <QImage>
#include <QScrollBar>
#include <QSplitter>
#include <QTabWidget>

#include "icons.h"
#include "lamp.h"
#include "measures.h"
#include "read_out.h"
#include "screens_test.h"
#include "verdict_colours.h"

namespace m47::shell {
namespace {

QRect place_in(const QWidget* screen, const QWidget* control) {
    return {control->mapTo(screen, QPoint()), control->size()};
}

bool has_colour(const QImage& image, const QColor& colour) {
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y).rgb() == colour.rgb()) return true;
    return false;
}

}  // namespace

void ScreensTest::realtime_opens_in_the_analog_presentation() {
    realtime::Realtime* screen = open_realtime();
    QCOMPARE(screen->objectName(), QStringLiteral("realtime"));
    QCOMPARE(screen->windowTitle(), QStringLiteral("Real Time Function Mode"));
    QVERIFY(find<QWidget>("analogresults", screen)->isVisible());
    QVERIFY(!find<QWidget>("digitalresults", screen)->isVisible());
    QVERIFY(!find<QWidget>("satdigmea", screen)->isVisible());
    QVERIFY(!find<QWidget>("grp_name", screen)->isVisible());
    QVERIFY(!find<QAction>("multiple_acq", screen)->isVisible());
    QVERIFY(find<QAction>("single_acq", screen)->isVisible());
    QCOMPARE(find<QLineEdit>("fsat", screen)->text(), QStringLiteral("1000.0"));
    QCOMPARE(find<QLineEdit>("ol_freq", screen)->text(), QStringLiteral("10600"));
    QCOMPARE(find<QLineEdit>("chber_mind", screen)->text(), QStringLiteral("1E-8"));
    QCOMPARE(find<QLineEdit>("chber_maxd", screen)->text(), QStringLiteral("3E-2"));
    QCOMPARE(find<QComboBox>("satlnb_state", screen)->currentText(), QStringLiteral("OFF"));
    QVERIFY(find<QAction>("cmdlev_0", screen)->isChecked());
    QCOMPARE(find<QTableView>("measgrid", screen)->model()->rowCount(), 1);
}

void ScreensTest::qpsk_and_analogico_change_the_frames() {
    realtime::Realtime* screen = open_realtime();
    find<QAction>("qpsk", screen)->trigger();
    QVERIFY(find<QWidget>("digitalresults", screen)->isVisible());
    QVERIFY(find<QWidget>("satdigmea", screen)->isVisible());
    QVERIFY(!find<QWidget>("meas_stated_7", screen)->isEnabled());
    find<QAction>("analogico", screen)->trigger();
    QVERIFY(!find<QWidget>("digitalresults", screen)->isVisible());
    QVERIFY(!find<QWidget>("satdigmea", screen)->isVisible());
}

void ScreensTest::coming_back_to_the_screen_shows_the_analog_frame() {
    realtime::Realtime* screen = open_realtime();
    find<QAction>("qpsk", screen)->trigger();
    find<QAction>("setport")->trigger();
    find<QAction>("realtime")->trigger();
    QVERIFY(!find<QWidget>("digitalresults", screen)->isVisible());
    QVERIFY(find<QWidget>("analogresults", screen)->isVisible());
    QCOMPARE(screen->rules.state.meas_mode, realtime::kAnalogMode);
    QVERIFY(find<QWidget>("satdigmea", screen)->isVisible());
}

void ScreensTest::limit_boxes_swallow_what_they_do_not_accept() {
    realtime::Realtime* screen = open_realtime();
    auto* maximum = find<QLineEdit>("lev_maxa", screen);
    QTest::keyClicks(maximum, QStringLiteral("-1.2a3"));
    QCOMPARE(maximum->text(), QStringLiteral("123"));
    auto* minimum = find<QLineEdit>("lev_mina", screen);
    QTest::keyClicks(minimum, QStringLiteral("-1.2"));
    QTest::keyClick(minimum, Qt::Key_Backspace);
    QCOMPARE(minimum->text(), QStringLiteral("-1"));
    find<QAction>("qpsk", screen)->trigger();
    auto* ber = find<QLineEdit>("chber_mind", screen);
    ber->clear();
    QTest::keyClicks(ber, QStringLiteral("5.E-9x"));
    QCOMPARE(ber->text(), QStringLiteral("5E-9"));
}

void ScreensTest::enter_corrects_a_box_without_a_link_too() {
    realtime::Realtime* screen = open_realtime();
    auto* frequency = find<QLineEdit>("fsat", screen);
    frequency->setText(QStringLiteral("100"));
    QTest::keyClick(frequency, Qt::Key_Return);
    QCOMPARE(frequency->text(), QStringLiteral("0920.0"));
    auto* oscillator = find<QLineEdit>("ol_freq", screen);
    oscillator->setText(QStringLiteral("2000"));
    QTest::keyClick(oscillator, Qt::Key_Return);
    QCOMPARE(oscillator->text(), QStringLiteral("03070"));
}

void ScreensTest::the_lnb_list_swallows_keys_and_the_wheel() {
    realtime::Realtime* screen = open_realtime();
    auto* list = find<QComboBox>("satlnb_state", screen);
    list->setFocus();
    QTest::keyClicks(list, QStringLiteral("1"));
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_PageDown, Qt::Key_End})
        QTest::keyClick(list, key);
    QWheelEvent wheel({5, 5}, list->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(list, &wheel);
    QCOMPARE(list->currentIndex(), 0);
}

void ScreensTest::a_measurement_without_a_link_writes_no_row() {
    realtime::Realtime* screen = open_realtime();
    QTest::mouseClick(find<QWidget>("meas_statea_0", screen), Qt::LeftButton, {}, {8, 8});
    QVERIFY(screen->rules.panel.meas_statea[0]);
    find<QAction>("single_acq", screen)->trigger();
    QCOMPARE(find<QTableView>("measgrid", screen)->model()->rowCount(), 1);
}

void ScreensTest::complete_noise_shows_its_boxes() {
    realtime::Realtime* screen = open_realtime();
    QVERIFY(!find<QWidget>("noise_freqa", screen)->isVisible());
    find<QAction>("cmdcomplete", screen)->trigger();
    QVERIFY(find<QWidget>("noise_freqa", screen)->isVisible());
    find<QAction>("qpsk", screen)->trigger();
    QVERIFY(find<QWidget>("noise_freqd", screen)->isVisible());
    screen->parentWidget()->close();
    QTRY_VERIFY(!window().screen_of(QStringLiteral("realtime")));
    QVERIFY(find<QAction>("cmdcomplete", open_realtime())->isChecked());
}

void ScreensTest::alarms_stand_level_with_their_measures() {
    realtime::Realtime* screen = open_realtime();
    for (const char* mode : {"analogico", "qpsk"}) {
        find<QAction>(mode, screen)->trigger();
        QCoreApplication::processEvents();
        int compared = 0;
        for (const realtime::Measure& measure : realtime::measures()) {
            const auto centre = [&](const QString& name) {
                auto* control = find<QWidget>(qPrintable(name), screen);
                return place_in(screen, control).center().y();
            };
            if (!measure.alarm || !find<QWidget>(measure.box.name, screen)->isVisible()) continue;
            const int row = centre(measure.box.name);
            const QString lamp =
                QStringLiteral("alarm_light_%1").arg(static_cast<int>(measure.alarm->row));
            for (const QString& name : {QString(measure.result), QString(measure.alarm->box.name),
                                        QString(measure.alarm->minimum.control.name),
                                        QString(measure.alarm->maximum.control.name), lamp}) {
                QVERIFY2(std::abs(centre(name) - row) <= 1, qPrintable(name));
                ++compared;
            }
        }
        QVERIFY(compared >= 10);
    }
}

void ScreensTest::nothing_moves_between_the_presentations() {
    realtime::Realtime* screen = open_realtime();
    const auto places = [&] {
        QCoreApplication::processEvents();
        QList<QRect> found;
        for (const char* name : {"sat_opt", "instr_opt", "page_tabs", "measgrid"})
            found += place_in(screen, find<QWidget>(name, screen));
        return found;
    };
    const QList<QRect> analog = places();
    const QRect frame = place_in(screen, find<QWidget>("analogresults", screen));
    find<QAction>("qpsk", screen)->trigger();
    QCOMPARE(places(), analog);
    QCOMPARE(place_in(screen, find<QWidget>("digitalresults", screen)), frame);
    find<QAction>("start", screen)->trigger();
    QCOMPARE(places(), analog);
    find<QAction>("group", screen)->trigger();
    QCOMPARE(places(), analog);
}

void ScreensTest::the_keys_behind_those_of_a_plan_stay_where_they_are() {
    realtime::Realtime* screen = open_realtime();
    auto* bar = find<QToolBar>("barracomandi", screen);
    const auto places = [&] {
        QCoreApplication::processEvents();
        QList<QPoint> found;
        for (const char* name : {"group", "satellite", "qpsk", "start", "stop", "stampa"})
            found += bar->widgetForAction(find<QAction>(name, screen))->pos();
        return found;
    };
    const QList<QPoint> single = places();
    find<QAction>("group", screen)->trigger();
    QVERIFY(find<QAction>("next_prog", screen)->isVisible());
    QCOMPARE(places(), single);
}

void ScreensTest::the_keys_of_what_is_in_force_are_checked() {
    realtime::Realtime* screen = open_realtime();
    const auto checked = [&] {
        QStringList names;
        for (const QAction* key : find<QToolBar>("barracomandi", screen)->actions())
            if (key->isChecked()) names += key->objectName();
        return names;
    };
    QCOMPARE(checked(), (QStringList{"single", "analogico"}));
    for (int click = 0; click < 2; ++click) {
        find<QAction>("qpsk", screen)->trigger();
        QCOMPARE(checked(), (QStringList{"single", "qpsk"}));
    }
    find<QAction>("group", screen)->trigger();
    QCOMPARE(checked(), (QStringList{"group", "qpsk"}));
    find<QAction>("setport")->trigger();
    find<QAction>("realtime")->trigger();
    QCOMPARE(checked(), (QStringList{"group", "analogico"}));
}

void ScreensTest::keys_that_do_nothing_yet_are_faint() {
    realtime::Realtime* screen = open_realtime();
    const auto drawn = [](const QIcon& icon) { return icon.pixmap(24).toImage(); };
    for (const char* name :
         {"satellite", "terrestre", "qam", "ofdm", "analogico", "qpsk", "stop"}) {
        const bool works = QStringList{"analogico", "qpsk", "stop"}.contains(QString(name));
        const QIcon icon = find<QAction>(name, screen)->icon();
        QVERIFY(find<QAction>(name, screen)->isEnabled());
        QCOMPARE(drawn(icon) == drawn(toolbar_icon(name)), works);
        QCOMPARE(drawn(icon) == icon.pixmap(24, QIcon::Disabled).toImage(), !works);
    }
}

void ScreensTest::from_1280_pixels_on_the_page_stands_beside_the_controls() {
    realtime::Realtime* screen = open_realtime();
    const auto* page = find<QTabWidget>("page_tabs", screen);
    const auto* controls = find<QWidget>("controls_area", screen);
    const auto left_of_page = [&](int width) {
        window().resize(width, 800);
        QCoreApplication::processEvents();
        const QRect place = place_in(screen, page);
        const QRect before = place_in(screen, controls);
        return before.right() < place.left() && before.top() == place.top();
    };
    QVERIFY(left_of_page(1280));
    QVERIFY(left_of_page(1920));
    // All columns of the page are in sight.
    const auto* grid = find<QTableView>("measgrid", screen);
    QVERIFY(!grid->horizontalScrollBar()->isVisible());
    QVERIFY(!left_of_page(1240));
    QVERIFY(place_in(screen, controls).bottom() < place_in(screen, page).top());
    QVERIFY(left_of_page(1366));
    auto* sides = find<QSplitter>("sides", screen);
    const int width = page->width();
    QTest::mousePress(sides->handle(1), Qt::LeftButton, {}, QPoint(2, 100));
    QTest::mouseMove(sides->handle(1), QPoint(-98, 100));
    QTest::mouseRelease(sides->handle(1), Qt::LeftButton, {}, QPoint(2, 100));
    QVERIFY(page->width() > width + 50);
}

void ScreensTest::the_tuning_is_in_sight_at_every_usual_size() {
    realtime::Realtime* screen = open_realtime();
    const auto in_sight = [&](const char* name) {
        const auto* control = find<QWidget>(name, screen);
        const QRegion seen = control->visibleRegion();
        return seen.boundingRect() == control->rect();
    };
    for (const char* mode : {"analogico", "qpsk"}) {
        find<QAction>(mode, screen)->trigger();
        for (const QSize size : {QSize(1022, 570), QSize(1278, 690), QSize(1364, 738),
                                 QSize(1598, 870), QSize(1918, 1050)}) {
            window().resize(size);
            for (int pass = 0; pass < 3; ++pass) QCoreApplication::processEvents();
            for (const char* name : {"fsat", "locopt_0", "locopt_1", "ol_freq", "satlnb_state",
                                     "k22_state", "lnb_supply", "atten_list"})
                QVERIFY2(
                    in_sight(name),
                    qPrintable(
                        QStringLiteral("%1 at %2 in %3").arg(name).arg(size.width()).arg(mode)));
        }
    }
}

void ScreensTest::levels_stand_beside_the_unit_they_were_measured_in() {
    realtime::Realtime* screen = open_realtime();
    const auto unit = [&](const char* name) { return find<QLabel>(name, screen)->text(); };
    QCOMPARE(unit("leva_unit"), QStringLiteral("dBuV"));
    QCOMPARE(unit("mercomune_unit"), QStringLiteral("dB"));
    find<QAction>("cmdlev_2", screen)->trigger();
    QCOMPARE(unit("leva_unit"), QStringLiteral("dBm"));
    QCOMPARE(unit("noisedlev_unit"), QStringLiteral("dBm"));
    screen->rules.panel.leva = QStringLiteral("-52.3");
    find<QAction>("cmdlev_0", screen)->trigger();
    QCOMPARE(unit("leva_unit"), QStringLiteral("dBm"));
    const auto* value = find<QLabel>("leva", screen);
    QVERIFY(value->font().pointSizeF() > 1.2 * screen->font().pointSizeF());
    QVERIFY(place_in(screen, value).right() <
            place_in(screen, find<QLabel>("leva_unit", screen)).left());
}

void ScreensTest::what_the_program_before_measured_is_dimmed() {
    realtime::Realtime* screen = open_realtime();
    realtime::RealtimePanel& panel = screen->rules.panel;
    panel.leva = QStringLiteral("58.3");
    panel.alarm_light[4] = LampColour::green;
    panel.repaint();
    auto* value = find<ReadOut>("leva", screen);
    auto* lamp = find<Lamp>("alarm_light_4", screen);
    const QColor text = value->palette().color(QPalette::WindowText);
    QVERIFY(has_colour(value->grab().toImage(), text));
    const QImage lit = lamp->grab().toImage();
    panel.results_of_before = true;
    panel.repaint();
    QVERIFY(value->dimmed() && lamp->dimmed());
    QCOMPARE(value->text(), QStringLiteral("58.3"));
    QVERIFY(!has_colour(value->grab().toImage(), text));
    QVERIFY(lamp->grab().toImage() != lit);
    QCOMPARE(lamp->grab().toImage().pixelColor(lamp->rect().center()), QColor::fromRgb(kGreen));
    panel.results_of_before = false;
    panel.repaint();
    QVERIFY(has_colour(value->grab().toImage(), text));
}

void ScreensTest::verdicts_on_the_page_have_the_colours_of_the_report() {
    window().resize(1400, 800);
    realtime::Realtime* screen = open_realtime();
    for (const char* status : {"PASS", "FAIL", ""})
        screen->rules.page.append(
            {"21/11/26", "10:00:00", "1200.0", "10600", "58.3", "", "", "", "", "", status});
    QCoreApplication::processEvents();
    auto* grid = find<QTableView>("measgrid", screen);
    const QImage drawn = grid->viewport()->grab().toImage();
    const auto shows = [&](int row, bool passed) {
        const QRect cell = grid->visualRect(grid->model()->index(row, 10));
        return has_colour(drawn.copy(cell), verdict_colour(passed, Qt::white));
    };
    QVERIFY(shows(0, true) && !shows(0, false));
    QVERIFY(shows(1, false) && !shows(1, true));
    QVERIFY(!shows(2, true) && !shows(2, false));
}

}  // namespace m47::shell
