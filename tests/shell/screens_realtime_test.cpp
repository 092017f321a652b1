// SPDX-License-Identifier: GPL-3.0-or-later
// The real-time screen in the main window.
#include "screens_test.h"

namespace m47::shell {

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

}  // namespace m47::shell
