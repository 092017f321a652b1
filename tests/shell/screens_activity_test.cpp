// SPDX-License-Identifier: GPL-3.0-or-later
// What is being done at the meter, as the status line shows it, and what clicks do meanwhile.
#include "peak_dialog.h"
#include "screens_test.h"

namespace m47::shell {

/// The program on a virtual line with the simulated meter, connected.
MeterInProcess& ScreensTest::start_with_meter(const std::optional<DishInProcess>& dish) {
    meter_.reset();
    end_program();
    line_ = &start_on_fake_line({1024, 600}, [this, &dish](FakePort& line) {
        meter_ = dish ? std::make_unique<MeterInProcess>(line, 1, *dish)
                      : std::make_unique<MeterInProcess>(line, 1);
    });
    return *meter_;
}

/// A click as the desktop brings it while the meter is waited for, behind the next pump.
void ScreensTest::click_in_the_wait(const QWidget* control) {
    QMetaObject::invokeMethod(
        &window(),
        [this, control] {
            QWindow* to = control->window()->windowHandle();
            const QPoint place = control->mapTo(control->window(), control->rect().center());
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

void ScreensTest::what_closes_later_is_told_until_it_closes() {
    MeterInProcess& meter = start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    realtime::Realtime* screen = open_realtime();
    find<QCheckBox>("meas_statea_0", screen)->setChecked(true);
    find<QAction>("cmdlevelview", screen)->trigger();
    auto* view = find<QWidget>("level_view");
    QString told;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command == "LEVANL?") told = find<QLabel>("corrected_notice")->text();
        if (command == "MEASURE")
            QMetaObject::invokeMethod(view, &QWidget::close, Qt::QueuedConnection);
    };
    find<QAction>("single_acq", screen)->trigger();
    meter.on_command = nullptr;
    QCOMPARE(told, QString("It closes when the work at the meter has ended."));
    QTRY_VERIFY(!view->isVisible());
    QCOMPARE(find<QLabel>("corrected_notice")->text(), QString());
}

/// Presses "Find the peak…" and [Start…] on the line of a meter whose level is the same everywhere,
/// answers the question, and leaves the dialog in the end. All that was sent.
QStringList ScreensTest::find_the_peak(QMessageBox::StandardButton answer) {
    BoxAnswers boxes;
    boxes.answer([](QDialog* dialog) {
        // From the event loop: a box that opens meanwhile is to be answered.
        QMetaObject::invokeMethod(dialog->findChild<QPushButton*>("peak_start"), "click",
                                  Qt::QueuedConnection);
    });
    boxes.press(answer);
    boxes.answer([this](QDialog* dialog) { leave_the_peak(dialog); });
    find<QPushButton>("cmdpeak")->click();
    peak_boxes_ = boxes.take_seen();
    return line_->take_commands();
}

/// Not before the search has ended: a slow machine looks for the next box while it runs.
void ScreensTest::leave_the_peak(QDialog* dialog) {
    if (dialog->findChild<QPushButton*>("peak_stop")->isEnabled())
        return QTimer::singleShot(10, dialog, [this, dialog] { leave_the_peak(dialog); });
    peak_state_ = dialog->findChild<QLabel*>("peak_state")->text();
    dialog->reject();
}

void ScreensTest::nothing_moves_before_the_answer_is_yes() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    open_realtime();
    line_->take_commands();
    QCOMPARE(find_the_peak(QMessageBox::No), QStringList());
    QCOMPARE(peak_boxes_.value(0), QString("peak_dialog"));
    QVERIFY2(peak_boxes_.value(1).startsWith("question|Find the peak|Does nobody stand"),
             qPrintable(peak_boxes_.join('\n')));
}

void ScreensTest::the_peak_is_searched_and_all_is_as_before() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    open_realtime();
    line_->take_commands();
    const QStringList sent = find_the_peak(QMessageBox::Yes);
    QCOMPARE(sent.mid(0, 8), (QStringList{"ATTEN?", "UNIT?", "MEASURE", "FREQ 1000.0", "ATTEN 6",
                                          "LEVANL?", "LEVANL?", "DISEQCMOT 09 04 01"}));
    QCOMPARE(sent.mid(sent.size() - 2), (QStringList{"DISEQCMOT 00", "ATTEN 06"}));
    QCOMPARE(peak_state_, QString("Nothing better was found within the span: the dish is back at "
                                  "its start."));
    QVERIFY(!program().link().activity.working());
}

void ScreensTest::the_turning_dish_is_stopped_at_once_data() {
    QTest::addColumn<QString>("by");
    for (const char* by : {"Stop", "Esc", "dialog", "window"}) QTest::newRow(by) << by;
}

/// By its key, by Esc, and by whoever closes the dialog or the program's window.
void ScreensTest::the_turning_dish_is_stopped_at_once() {
    QFETCH(QString, by);
    MeterInProcess& meter = start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    open_realtime();
    line_->take_commands();
    bool told = false;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (told || command != "DISEQCMOT 09 10 01") return;
        told = true;
        auto* dialog = find<QDialog>("peak_dialog");
        if (by == "Stop")
            click_in_the_wait(dialog->findChild<QPushButton*>("peak_stop"));
        else if (by == "Esc")
            QMetaObject::invokeMethod(
                dialog, [dialog] { QTest::keyClick(dialog->windowHandle(), Qt::Key_Escape); },
                Qt::QueuedConnection);
        else
            QMetaObject::invokeMethod(
                this,
                [this, by, dialog] {
                    by == "dialog" ? static_cast<QWidget*>(dialog)->close() : window().close();
                },
                Qt::QueuedConnection);
    };
    const QStringList sent = find_the_peak(QMessageBox::Yes);
    QVERIFY(told);
    QCOMPARE(sent.mid(sent.size() - 3),
             (QStringList{"DISEQCMOT 09 10 01", "DISEQCMOT 00", "ATTEN 06"}));
    if (by == "Stop" || by == "Esc")
        QCOMPARE(peak_state_, QString("Stopped: the motor was told to stop, and the dish stays "
                                      "where it is."));
    QTRY_COMPARE(window().isVisible(), by != "window");
}

void ScreensTest::a_position_is_stored_only_when_the_user_says_so() {
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    realtime::Realtime* screen = open_realtime();
    line_->take_commands();
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        BoxAnswers boxes;
        boxes.answer([](QDialog* dialog) {
            peak::PeakOutcome outcome;
            outcome.search.end = peak::SearchEnd::found;
            outcome.linked = outcome.motor_stopped = true;
            static_cast<peak::PeakDialog*>(dialog)->show_end(outcome);
            auto* number = dialog->findChild<QComboBox*>("peak_number");
            number->setCurrentIndex(number->findText("07"));
            QMetaObject::invokeMethod(dialog->findChild<QPushButton*>("peak_store"), "click",
                                      Qt::QueuedConnection);
        });
        boxes.press(answer);
        boxes.answer([this](QDialog* dialog) {
            peak_state_ = dialog->findChild<QLabel*>("peak_state")->text();
            dialog->reject();
        });
        find<QPushButton>("cmdpeak")->click();
        const bool stored = answer == QMessageBox::Yes;
        QCOMPARE(line_->take_commands(), stored ? QStringList{"DISEQCMOT 0607"} : QStringList());
        if (stored) QCOMPARE(peak_state_, QString("Stored as position 07."));
    }
    QCOMPARE(find<QLineEdit>("storesat", screen)->text(), QString("07"));
}

void ScreensTest::no_dish_is_turned_without_a_meter_or_in_a_run() {
    find<QAction>("cmdinglese")->trigger();
    open_realtime();
    find<QPushButton>("cmdpeak")->click();
    QVERIFY(find<QLabel>("corrected_notice")->text().startsWith("The meter is not connected"));
    start_with_meter();
    find<QAction>("cmdinglese")->trigger();
    realtime::Realtime* screen = open_realtime();
    find<QAction>("start", screen)->trigger();
    find<QPushButton>("cmdstart", screen)->click();
    line_->take_commands();
    find<QPushButton>("cmdpeak")->click();
    QVERIFY(find<QLabel>("corrected_notice")->text().startsWith("A run is measuring"));
    QCOMPARE(line_->take_commands(), QStringList());
}

}  // namespace m47::shell
