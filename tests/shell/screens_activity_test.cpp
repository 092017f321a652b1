// SPDX-License-Identifier: GPL-3.0-or-later
// What is being done at the meter, as the status line shows it, and what clicks do meanwhile.
#include "screens_test.h"

namespace m47::shell {

/// The program on a virtual line with the simulated meter, connected.
MeterInProcess& ScreensTest::start_with_meter() {
    meter_.reset();
    end_program();
    line_ = &start_on_fake_line({1024, 600}, [this](FakePort& line) {
        meter_ = std::make_unique<MeterInProcess>(line, 1);
    });
    return *meter_;
}

/// A click as the desktop brings it while the meter is waited for, behind the next pump.
void ScreensTest::click_in_the_wait(const QWidget* control) {
    QMetaObject::invokeMethod(
        &window(),
        [this, control] {
            QWindow* to = window().windowHandle();
            const QPoint place = control->mapTo(&window(), control->rect().center());
            for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                const bool down = type == QEvent::MouseButtonPress;
                QMouseEvent event(type, place, to->mapToGlobal(place), Qt::LeftButton,
                                  down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
                QCoreApplication::sendEvent(to, &event);
            }
        },
        Qt::QueuedConnection);
}

void ScreensTest::clear_all_in_a_download_is_not_sent_behind_it() {
    MeterInProcess& meter = start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    find<QAction>("download")->trigger();
    QTest::qWait(20);
    QWidget* screen = window().screen_of("download");
    line_->take_commands();
    QStringList shown;
    program().link().activity.on_change = [this, &shown] {
        window().show_activity(program().link().activity);
        shown += find<QLabel>("activity")->text();
    };
    meter.on_command = [&](const QByteArray&, const QString&) {
        for (const char* name : {"cmdclearall", "cmdclearlast", "cmddownload"})
            click_in_the_wait(find<QPushButton>(name, screen));
    };
    find<QPushButton>("cmddownload", screen)->click();
    QTest::qWait(50);
    meter.on_command = nullptr;
    QCOMPARE(line_->take_commands(), QStringList{"DATAOUT"});
    QCOMPARE(shown.first(), QString("Downloading the logs"));
    QVERIFY2(shown.filter("bytes").size() > 3, qPrintable(shown.join('\n')));
    QVERIFY(!find<QLabel>("activity")->isVisible());
    find<QPushButton>("cmdclearall", screen)->click();
    QCOMPARE(line_->take_commands(), QStringList{"DATADELALL"});
}

void ScreensTest::stop_in_a_download_says_when_it_stops() {
    MeterInProcess& meter = start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    find<QAction>("download")->trigger();
    QTest::qWait(20);
    QStringList shown;
    program().link().activity.on_change = [this, &shown] {
        window().show_activity(program().link().activity);
        shown += find<QLabel>("activity")->text();
    };
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command == "DATAOUT") click_in_the_wait(find<QPushButton>("activity_stop"));
    };
    find<QPushButton>("cmddownload", window().screen_of("download"))->click();
    meter.on_command = nullptr;
    // From the click on, and with the bytes that go on coming.
    const QStringList told = shown.filter("stops when the answer is whole");
    QVERIFY2(told.size() > 1 && told.last().contains("bytes"), qPrintable(shown.join(u'\n')));
    QVERIFY2(find<QLabel>("corrected_notice")->text().startsWith("Stopped: the download is whole"),
             qPrintable(find<QLabel>("corrected_notice")->text()));
}

void ScreensTest::stop_while_a_copy_is_read_erases_nothing() {
    MeterInProcess& meter = start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    find<QAction>("cmdkeepcopy")->trigger();
    find<QAction>("download")->trigger();
    QTest::qWait(20);
    line_->take_commands();
    QString doing;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command != "DATAOUT") return;
        doing = find<QLabel>("activity")->text();
        click_in_the_wait(find<QPushButton>("activity_stop"));
    };
    find<QPushButton>("cmdclearall", window().screen_of("download"))->click();
    meter.on_command = nullptr;
    QCOMPARE(doing, QString("Reading what will be erased"));
    QCOMPARE(line_->take_commands(), QStringList{"DATAOUT"});
    QCOMPARE(find<QLabel>("corrected_notice")->text(),
             QString("Stopped: the logs were being read, nothing was erased."));
}

void ScreensTest::stop_ends_the_identification_and_says_how_far_it_came() {
    MeterInProcess& meter = start_with_meter();
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command == "ATTEN?") click_in_the_wait(find<QPushButton>("activity_stop"));
    };
    line_->take_commands();
    run_handler(&window(), "porta_Click", [this] { program().identify(1); });
    QCOMPARE(line_->take_commands(), QStringList{"ATTEN?"});
    const auto* notice = find<QLabel>("corrected_notice");
    QVERIFY2(notice->text().startsWith("Stopped: the meter on port 1 answers"),
             qPrintable(notice->text()));
    QVERIFY(program().link().port_connected);
    QVERIFY(!find<QPushButton>("activity_stop")->isVisible());
}

/// Picking a port chooses English in the middle of a search for the meter.
void ScreensTest::what_is_done_follows_the_language() {
    link::Activity& activity = program().link().activity;
    activity.begin();
    activity.say({{"Looking for the meter", "Ricerca dello strumento"}, {}});
    find<QAction>("cmditaliano")->trigger();
    QVERIFY(find<QLabel>("activity")->text().startsWith("Ricerca"));
    find<QAction>("cmdinglese")->trigger();
    QVERIFY(find<QLabel>("activity")->text().startsWith("Looking"));
    QCOMPARE(find<QPushButton>("activity_stop")->text(), QString("Stop"));
    activity.end({});
}

void ScreensTest::stop_ends_a_timed_run_with_the_measurement_in_it() {
    MeterInProcess& meter = start_with_meter();
    realtime::Realtime* screen = open_realtime();
    find<QCheckBox>("meas_statea_0", screen)->setChecked(true);
    find<QAction>("start", screen)->trigger();
    find<QPushButton>("cmdstart", screen)->click();
    QVERIFY(screen->acquisition.timed());
    QVERIFY2(find<QLabel>("activity")->text().startsWith("Next measurement in"),
             qPrintable(find<QLabel>("activity")->text()));
    QString measured;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (!command.startsWith("FREQ")) return;
        measured = find<QLabel>("activity")->text();
        click_in_the_wait(find<QPushButton>("activity_stop"));
    };
    line_->take_commands();
    find<QAction>("single_acq", screen)->trigger();
    const QStringList sent = line_->take_commands();
    QVERIFY(sent.filter("FREQ").size() == 1 && sent.filter("LEVANL").isEmpty());
    QVERIFY2(measured.startsWith("Tuning the meter"), qPrintable(measured));
    QVERIFY(!screen->acquisition.timed());
    QCOMPARE(screen->rules.page.measurements(), 0);
    QVERIFY(find<QLabel>("corrected_notice")->text().startsWith("Stopped: a measurement"));
    QVERIFY(!find<QLabel>("activity")->isVisible());
}

void ScreensTest::the_large_level_opens_in_the_middle_of_an_exchange() {
    MeterInProcess& meter = start_with_meter();
    realtime::Realtime* screen = open_realtime();
    find<QCheckBox>("meas_statea_0", screen)->setChecked(true);
    const auto* view = find<QWidget>("level_view");
    QVERIFY(!view->isVisible());
    QList<bool> seen;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        seen += view->isVisible();
        if (command != "MEASURE") return;
        QMetaObject::invokeMethod(
            &window(), [this] { QTest::keyClick(window().windowHandle(), Qt::Key_F11); },
            Qt::QueuedConnection);
    };
    find<QAction>("single_acq", screen)->trigger();
    QVERIFY(seen.size() > 2);
    QCOMPARE(seen.first(), false);
    QCOMPARE(seen.at(1), true);
    QCOMPARE(screen->rules.page.measurements(), 1);
}

}  // namespace m47::shell
