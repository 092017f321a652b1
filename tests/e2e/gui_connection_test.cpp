// SPDX-License-Identifier: GPL-3.0-or-later
// How the meter is found, lost and found again.
#include <QAction>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QTest>
#include <optional>

#include "asl.h"
#include "gui_test.h"

namespace m47 {

void GuiTest::a_meter_that_was_unplugged_is_connected_again_by_the_menu() {
    start();
    auto* reconnect = find<QAction>("cmdreconnect");
    QVERIFY(!reconnect->isEnabled());
    pick_port(3);
    QVERIFY(reconnect->isEnabled());
    const auto* status = find<QLabel>("port_state");
    const QString link = meter_->link();
    meter_.reset();
    // The pseudo-terminal behind it may be another test's by now.
    QFile::remove(link);
    find<QAction>("realtime")->trigger();
    QCOMPARE(status->text(), QStringLiteral("RS232 ComPort 3 NOT Connected"));
    QVERIFY(!status->toolTip().contains(QStringLiteral("Reconnect")));
    QTest::qWait(3000);
    meter_ =
        std::make_unique<MeterProcess>(folder(), QStringList{"--baud-factor", "0", "--delay", "0"});
    QTRY_VERIFY_WITH_TIMEOUT(
        status->toolTip().contains(meter_->link() + QStringLiteral(" is there again")), 5000);
    // Nothing is sent until the user wants it.
    QCOMPARE(meter_->commands(), QStringList());
    reconnect->trigger();
    QCOMPARE(status->text(), QStringLiteral("RS232 ComPort 3 Connected"));
    QCOMPARE(status->toolTip(), QString());
    // The real-time screen is open and asks for the unit.
    QTRY_COMPARE(meter_->commands(), QStringList({"ATTEN?", "VER?", "UNIT?"}));
    QCOMPARE(window().windowTitle(), QStringLiteral("VKD M47_03 REMOTE CONTROL V3.1.0 PLUS"));
}

void GuiTest::the_meter_of_a_recording_is_connected_where_it_lost_its_line_too() {
    start();
    QFile recording(in_folder("roof.trace"));
    QVERIFY(recording.open(QIODevice::WriteOnly));
    recording.write(
        "RX 1.000 2.000 ATTEN?<CR>\nTX 4.000 4.000 ATTEN?<CR>6<CR>OK<CR>\n"
        "RX 5.000 6.000 VER?<CR>\nTX 8.000 8.000 VER?<CR>V2.9.7<CR>OK<CR>\n"
        "PORT 400.000 400.000 lost vanished\n"
        "PORT 900.000 900.000 open /dev/ttyUSB0 38400,n,8,2\n"
        "RX 901.000 902.000 ATTEN?<CR>\nTX 904.000 904.000 ATTEN?<CR>6<CR>OK<CR>\n"
        "RX 905.000 906.000 VER?<CR>\nTX 908.000 908.000 VER?<CR>V2.9.8<CR>OK<CR>\n");
    recording.close();
    program().start_desk().open_recording(recording.fileName());
    QVERIFY(program().link().port_connected);
    QCOMPARE(program_state().meter_version, QStringLiteral("V2.9.7"));
    QCOMPARE(find<QLabel>("simulated_meter")->text(), QStringLiteral("Replay of roof.trace"));
    const QString device = program().connection().device();
    QTRY_VERIFY(!QFile::exists(device));
    QTRY_VERIFY(QFile::exists(device));
    find<QAction>("cmdreconnect")->trigger();
    QVERIFY(program().link().port_connected);
    QCOMPARE(program_state().meter_version, QStringLiteral("V2.9.8"));
}

void GuiTest::another_meter_after_reconnect_is_asked_for_its_unit() {
    start();
    pick_port(3);
    auto* screen = open_realtime();
    screen->rules.modes.cmdlev_Click(kDbmv);
    QCOMPARE(program().link().settings.unit(), std::optional<int>(kDbmv));
    meter_->unplug();
    meter_ =
        std::make_unique<MeterProcess>(folder(), QStringList{"--baud-factor", "0", "--delay", "0"});
    find<QAction>("cmdreconnect")->trigger();
    QCOMPARE(meter_->commands(), QStringList({"ATTEN?", "VER?", "UNIT?"}));
    QCOMPARE(program().link().settings.unit(), std::optional<int>(kDbuv));
    QCOMPARE(screen->rules.panel.cmdlev, static_cast<int>(kDbuv));
    QVERIFY(find<QAction>("cmdlev_0", screen)->isChecked());
    // It was told no oscillator and no frequency yet.
    QCOMPARE(program().link().settings.frequency(), std::nullopt);
    QCOMPARE(program().link().settings.oscillator(), std::nullopt);
    QVERIFY(find<QLabel>("corrected_notice")->text().contains(meter_->link()));
}

/// The screen stays open while another meter is joined to another port.
void GuiTest::a_meter_that_is_picked_anew_is_asked_for_its_unit() {
    start();
    pick_port(3);
    auto* screen = open_realtime();
    screen->rules.modes.cmdlev_Click(kDbmv);
    meter_->unplug();
    meter_ =
        std::make_unique<MeterProcess>(folder(), QStringList{"--baud-factor", "0", "--delay", "0"});
    pick_port(3);
    QCOMPARE(meter_->commands(), QStringList({"ATTEN?", "VER?", "UNIT?"}));
    QCOMPARE(screen->rules.panel.cmdlev, static_cast<int>(kDbuv));
    QCOMPARE(program().link().settings.unit(), std::optional<int>(kDbuv));
}

void GuiTest::another_meter_after_reconnect_takes_the_first_ones_satellites_off_the_screen() {
    start();
    pick_port(3);
    find<QAction>("asl")->trigger();
    auto* screen = qobject_cast<asl::Asl*>(window().screen_of("asl"));
    QVERIFY(screen);
    auto* slots_of_meter = find<QListWidget>("listastr", screen);
    QTRY_COMPARE(slots_of_meter->count(), 20);
    QVERIFY(!program_state().master_copy.isEmpty());
    meter_->unplug();
    meter_ =
        std::make_unique<MeterProcess>(folder(), QStringList{"--baud-factor", "0", "--delay", "0"});
    find<QAction>("cmdreconnect")->trigger();
    QTRY_COMPARE(slots_of_meter->count(), 0);
    QVERIFY(program_state().master_copy.isEmpty());
    // Nothing is asked of the other meter and nothing sent to it until somebody wants that.
    QCOMPARE(meter_->commands(), QStringList({"ATTEN?", "VER?"}));
}

void GuiTest::picking_a_port_identifies_the_meter() {
    start();
    pick_port(3);
    const auto* status = find<QLabel>("port_state");
    QCOMPARE(status->text(), QStringLiteral("RS232 ComPort 3 Connected"));
    QCOMPARE(status->palette().color(QPalette::Window), QColor(0, 255, 0));
    QCOMPARE(new_commands(), QStringList({"ATTEN?", "VER?"}));
    QCOMPARE(window().windowTitle(), QStringLiteral("VKD M47_03 REMOTE CONTROL V3.1.0 PLUS"));
    QVERIFY(find<QAction>("asl")->isEnabled());
    QCOMPARE(program_state().texts.language, int(kEnglish));
    QVERIFY(find<QAction>("cmditaliano")->isChecked());
    QCOMPARE(find<QComboBox>("porta")->itemData(2, Qt::ToolTipRole).toString(), meter_->link());
    pick_port(3);
    QCOMPARE(window().windowTitle(),
             QStringLiteral("VKD M47_03 REMOTE CONTROL V3.1.0 PLUS V3.1.0 PLUS"));
}

void GuiTest::the_version_decides_over_the_satellite_key_data() {
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("old") << QStringLiteral("V2.9.9") << true;
    QTest::newRow("new without") << QStringLiteral("V3.1.0") << false;
    QTest::newRow("new with") << QStringLiteral("V3.1.0 PLUS") << true;
}

void GuiTest::the_version_decides_over_the_satellite_key() {
    QFETCH(QString, version);
    start({QStringLiteral("--version-text"), version});
    pick_port(3);
    QTEST(find<QAction>("asl")->isEnabled(), "enabled");
}

void GuiTest::a_vanished_meter_turns_the_status_red_within_a_moment() {
    start();
    pick_port(3);
    realtime::Realtime* screen = open_realtime();
    tick("meas_statea_0", screen);
    meter_->unplug();
    QElapsedTimer timer;
    timer.start();
    find<QAction>("single_acq", screen)->trigger();
    QVERIFY2(timer.elapsed() < 1500, qPrintable(QString::number(timer.elapsed())));
    const auto* status = find<QLabel>("port_state");
    QCOMPARE(status->text(), QStringLiteral("RS232 ComPort 3 NOT Connected"));
    QCOMPARE(status->palette().color(QPalette::Window), QColor(255, 0, 0));
    QVERIFY(!status->toolTip().isEmpty());
    QCOMPARE(screen->rules.page.rowCount(), 1);
    QVERIFY(!program().link().port_connected);
}

}  // namespace m47
