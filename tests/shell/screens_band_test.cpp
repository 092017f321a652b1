// SPDX-License-Identifier: GPL-3.0-or-later
// The screen of the band sweep, by clicks and keys, before the simulated meter.
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTableWidget>
#include <algorithm>

#include "band_chart_view.h"
#include "band_picture.h"
#include "program_set.h"
#include "screens_test.h"

namespace m47::shell {
namespace {

QByteArray bytes_of(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("no %s", qPrintable(path));
    return file.readAll();
}

}  // namespace

/// The screen set for a span of the intermediate band; a `step` is an entry of its list.
band::BandSweep* ScreensTest::open_sweep(double from, double to, const char* step) {
    find<QAction>("cmdinglese")->trigger();
    find<QAction>("band_sweep")->trigger();
    auto* screen = qobject_cast<band::BandSweep*>(window().screen_of("band_sweep"));
    find<QCheckBox>("band_whole", screen)->click();
    find<QLineEdit>("band_from", screen)->setText(QString::number(from));
    find<QLineEdit>("band_to", screen)->setText(QString::number(to));
    find<QComboBox>("band_step", screen)->setCurrentText(QString::fromLatin1(step));
    if (line_) line_->take_commands();
    return screen;
}

void ScreensTest::sweep(band::BandSweep* screen) {
    QTest::mouseClick(find<QPushButton>("band_start", screen), Qt::LeftButton);
}

void ScreensTest::a_sweep_asks_what_it_needs_and_esc_stops_it() {
    MeterInProcess& meter = start_with_meter();
    const QByteArray before = meter.kept();
    band::BandSweep* screen = open_sweep(1000, 1040, "10 MHz");
    find<QComboBox>("band_feed", screen)->setCurrentIndex(2);
    QString doing;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command != "FREQ 1020.0") return;
        doing = find<QLabel>("activity")->text();
        QMetaObject::invokeMethod(
            &window(), [this] { QTest::keyClick(window().windowHandle(), Qt::Key_Escape); },
            Qt::QueuedConnection);
    };
    sweep(screen);
    meter.on_command = nullptr;
    QVERIFY2(doing.startsWith("Sweeping the band"), qPrintable(doing));
    QCOMPARE(line_->take_commands(),
             QStringList({"FREQ?", "LOCOSC?", "ATTEN?", "UNIT?", "LNB?", "LNVOLT?", "TONE22K?",
                          "MEASURE", "LOCOSC 00", "LNVOLT 13", "LNB 01", "TONE22K 01", "ATTEN 6",
                          "FREQ 1000.0", "LEVANL?", "FREQ 1010.0", "LEVANL?", "FREQ 1020.0",
                          "LEVANL?"}) +
                 QStringList({"UNIT?", "LOCOSC 00", "FREQ 1000.0", "ATTEN 06", "LNVOLT 13",
                              "LNB 00", "TONE22K 00"}));
    QCOMPARE(meter.kept(), before);
    QCOMPARE(find<QLabel>("band_result", screen)->text(),
             QString("Stopped at 3 levels, carriers found: 0. The meter is as it was."));
    QCOMPARE(find<QLabel>("corrected_notice")->text(),
             QString("Stopped: a sweep of the band came to 3 levels, which were not saved."));
    QCOMPARE(screen->store().states().front().traces.live().size(), std::size_t{3});
    QVERIFY(!find<QLabel>("activity")->isVisible());
}

void ScreensTest::a_sweep_ends_with_the_window_and_old_words_go() {
    MeterInProcess& meter = start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1100, "5 MHz");
    find<QAction>("cmdbandstop", screen)->trigger();
    QCOMPARE(find<QLabel>("corrected_notice")->text(), QString("No sweep is running."));
    QString beside("nothing was asked");
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command != "FREQ 1020.0") return;
        beside = find<QLabel>("corrected_notice")->text();
        QMetaObject::invokeMethod(
            &window(), [screen] { screen->parentWidget()->close(); }, Qt::QueuedConnection);
    };
    QPointer<band::BandSweep> open(screen);
    sweep(screen);
    meter.on_command = nullptr;
    QCOMPARE(beside, QString());
    const QStringList sent = line_->take_commands();
    QVERIFY2(!sent.contains("FREQ 1035.0"), qPrintable(sent.join(u' ')));
    QVERIFY(sent.contains("ATTEN 06"));
    QTRY_VERIFY(!open);
}

/// A sweep takes minutes, a slip on the cross of its tab none.
void ScreensTest::a_sweep_outlives_its_tab() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1100, "10 MHz");
    find<QComboBox>("band_feed", screen)->setCurrentIndex(2);
    sweep(screen);
    const auto levels = screen->store().states().front().traces.live().size();
    QVERIFY(levels > 10);
    QTest::mouseClick(find<QPushButton>("band_keep", screen), Qt::LeftButton);
    const QPointer<band::BandSweep> open(screen);
    screen->parentWidget()->close();
    QTRY_VERIFY(!open);
    line_->take_commands();
    find<QAction>("band_sweep")->trigger();
    screen = qobject_cast<band::BandSweep*>(window().screen_of("band_sweep"));
    QCOMPARE(screen->store().states().front().traces.live().size(), levels);
    QVERIFY(screen->store().has_reference());
    QCOMPARE(find<QLineEdit>("band_to", screen)->text(), QString("1100"));
    QCOMPARE(find<QComboBox>("band_feed", screen)->currentIndex(), 2);
    QCOMPARE(find<QComboBox>("band_shown", screen)->count(), 1);
    QCOMPARE(line_->take_commands(), QStringList());
    QTest::mouseClick(find<QPushButton>("band_clear", screen), Qt::LeftButton);
    QVERIFY(screen->store().empty());
}

void ScreensTest::what_a_stopped_sweep_found_can_be_saved() {
    MeterInProcess& meter = start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1100, "5 MHz");
    meter.on_command = [&](const QByteArray& command, const QString&) {
        // The key of the screen itself works in the middle of the exchange too.
        if (command == "FREQ 1060.0") click_in_the_wait(find<QPushButton>("band_stop", screen));
    };
    sweep(screen);
    meter.on_command = nullptr;
    QVERIFY2(find<QLabel>("band_result", screen)->text().startsWith("Stopped at 13 levels"),
             qPrintable(find<QLabel>("band_result", screen)->text()));
    for (const char* name : {"sweep.tsv", "sweep.png", "sweep.pdf"}) screen->save(in_folder(name));
    const QByteArray table = bytes_of(in_folder("sweep.tsv"));
    QCOMPARE(table.count('\n'), 14);
    QVERIFY(table.startsWith(band::sweep_header() + "1000.0\t"));
    QVERIFY(!QImage(in_folder("sweep.png")).isNull());
    QVERIFY(bytes_of(in_folder("sweep.pdf")).startsWith("%PDF"));
    QCOMPARE(find<QLabel>("saved_name")->text(), QString("Saved sweep.pdf"));
}

void ScreensTest::a_sweep_finds_carriers_and_a_click_tunes_to_one() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(960, 1140, "2 MHz");
    find<QComboBox>("band_feed", screen)->setCurrentIndex(1);
    auto* axis = find<QComboBox>("band_axis", screen);
    sweep(screen);
    auto* table = find<QTableWidget>("band_carriers", screen);
    QVERIFY(table->rowCount() >= 2);
    QCOMPARE(table->item(0, 0)->text(), QString("13 V"));
    const double centre = table->item(0, 1)->text().toDouble();
    QVERIFY2(std::abs(centre - 1000) <= 1.5, qPrintable(table->item(0, 1)->text()));
    // The same carriers in the sky, and their names by a scan table.
    axis->setCurrentIndex(1);
    Q_EMIT axis->activated(1);
    QCOMPARE(table->item(0, 1)->text().toDouble(), centre + 9750);
    const double width = table->item(0, 2)->text().toDouble();
    QFile scan(in_folder("scan"));
    QVERIFY(scan.open(QIODevice::WriteOnly));
    scan.write("S 10750000 V " + QByteArray::number(qRound(width * 1000) * 1000) + " 5/6\n");
    scan.close();
    screen->load_scan_table(scan.fileName());
    QVERIFY2(table->item(0, 5)->text().startsWith("10750 V"),
             qPrintable(table->item(0, 5)->text()));
    const QString sky = table->item(0, 1)->text();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {},
                      table->visualItemRect(table->item(0, 1)).center());
    auto* realtime = qobject_cast<realtime::Realtime*>(window().screen_of("realtime"));
    QVERIFY(realtime);
    QCOMPARE(window().front_key(), QString("realtime"));
    // The box has whole MHz there.
    QVERIFY(std::abs(find<QLineEdit>("fsat", realtime)->text().toDouble() - sky.toDouble()) <= 0.5);
    QCOMPARE(find<QLineEdit>("ol_freq", realtime)->text(), QString("9750"));
    QVERIFY(find<QRadioButton>("locopt_1", realtime)->isChecked());
    QCOMPARE(find<QComboBox>("satlnb_state", realtime)->currentIndex(), 1);
    QCOMPARE(find<QComboBox>("k22_state", realtime)->currentIndex(), 1);
    const QStringList sent = line_->take_commands();
    QCOMPARE(sent.constLast(), "FREQ " + find<QLineEdit>("fsat", realtime)->text());
    QVERIFY(sent.contains("LNVOLT 13") && sent.contains("LNB 01") && sent.contains("TONE22K 00"));
}

void ScreensTest::four_states_of_the_lnb_are_swept_in_a_row() {
    MeterInProcess& meter = start_with_meter();
    const QByteArray before = meter.kept();
    band::BandSweep* screen = open_sweep(1000, 1030, "10 MHz");
    find<QComboBox>("band_feed", screen)->setCurrentIndex(band::kAllFeeds);
    QStringList told;
    meter.on_command = [&](const QByteArray&, const QString&) {
        told += find<QLabel>("activity")->text();
    };
    sweep(screen);
    meter.on_command = nullptr;
    const QStringList sent = line_->take_commands();
    QCOMPARE(sent.filter("LNVOLT 13").size(), 3);  // twice for the sweep, once set back
    QCOMPARE(sent.filter("LNVOLT 18").size(), 2);
    QCOMPARE(sent.filter("LEVANL?").size(), 16);
    QVERIFY(!told.filter("LNB state 3 of 4").isEmpty());
    QCOMPARE(meter.kept(), before);
    QCOMPARE(find<QComboBox>("band_shown", screen)->count(), 4);
    QCOMPARE(find<QComboBox>("band_shown", screen)->currentText(), QString("18 V 22 kHz"));
    // In the sky each has its own part; what none receives is swept in no state.
    auto* axis = find<QComboBox>("band_axis", screen);
    axis->setCurrentIndex(1);
    Q_EMIT axis->activated(1);
    QCOMPARE(find<QLineEdit>("band_from", screen)->text(), QString("10670.0"));
    QCOMPARE(find<QLineEdit>("band_to", screen)->text(), QString("12750.0"));
    find<QLineEdit>("band_from", screen)->setText("12000");
    find<QLineEdit>("band_to", screen)->setText("12010");
    sweep(screen);
    QCOMPARE(line_->take_commands().filter("FREQ 14"),
             QStringList({"FREQ 1400.0", "FREQ 1410.0", "FREQ 1400.0", "FREQ 1410.0"}));
}

/// Also where another state, another oscillator or a smaller part is chosen for the next sweep.
void ScreensTest::the_axis_goes_over_all_of_the_last_pass() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1030, "10 MHz");
    sweep(screen);
    const band::BandState& state = screen->store().states().front();
    for (const double oscillator : {10600.0, 5150.0}) {
        band::SweepTerms terms;
        terms.oscillator = oscillator;
        const auto [low, high] =
            std::minmax({band::on_axis(1000, terms), band::on_axis(1030, terms)});
        band::BandPicture picture;
        band::fit_axis(picture, low + 10, low + 20, state, terms);
        QCOMPARE(picture.from, low);
        QCOMPARE(picture.to, high);
        band::fit_axis(picture, low - 500, high + 500, state, terms);
        QCOMPARE(picture.from, low - 500);
        QCOMPARE(picture.to, high + 500);
    }
    band::BandPicture picture;
    band::fit_axis(picture, 950, 2150, {}, {});
    QCOMPARE(picture.from, 950.0);
    QCOMPARE(picture.to, 2150.0);
}

void ScreensTest::a_sweep_is_saved_under_the_name_that_is_proposed() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1030, "10 MHz");
    sweep(screen);
    QString proposed;
    BoxAnswers boxes;
    boxes.answer([&](QDialog* dialog) {
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        proposed = name->text();
        QTest::keyClick(name, Qt::Key_Return);
    });
    QTest::mouseClick(find<QPushButton>("band_save", screen), Qt::LeftButton);
    static const QRegularExpression pattern(QStringLiteral("^sweep-\\d{8}-\\d{6}$"));
    QVERIFY2(pattern.match(proposed).hasMatch(), qPrintable(proposed));
    QVERIFY(!QImage(in_folder(qPrintable(proposed + QStringLiteral(".png")))).isNull());
}

void ScreensTest::the_chart_is_used_while_it_grows() {
    MeterInProcess& meter = start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1100, "5 MHz");
    auto* hold = find<QCheckBox>("band_hold", screen);
    auto* plot = find<QWidget>("band_plot", screen);
    const auto* marks = find<QLabel>("band_marks", screen);
    QStringList seen;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command == "FREQ 1050.0") {
            click_in_the_wait(hold);
            click_in_the_wait(plot);
        }
        if (command == "FREQ 1060.0")
            seen = QStringList{hold->isChecked() ? "held" : "not held", marks->text()};
        // It would send in the middle of an exchange.
        if (command == "FREQ 1070.0")
            Q_EMIT find<band::BandChartView>("band_chart", screen)->flag_clicked(0);
    };
    sweep(screen);
    meter.on_command = nullptr;
    QCOMPARE(seen.value(0), QString("held"));
    QVERIFY2(seen.value(1).startsWith("1:  10"), qPrintable(seen.value(1)));
    QVERIFY(!window().screen_of("realtime"));
    QCOMPARE(find<QLabel>("corrected_notice")->text(),
             QString("Stop the sweep first, then choose a carrier."));
    QCOMPARE(line_->take_commands().filter("FREQ 1").size(), 21 + 1);
}

void ScreensTest::a_reference_is_kept_loaded_and_held_against() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1040, "10 MHz");
    sweep(screen);
    screen->save(in_folder("first.tsv"));
    find<QPushButton>("band_keep", screen)->click();
    QVERIFY(screen->store().has_reference());
    const band::BandState& state = screen->store().states().front();
    QCOMPARE(screen->store().reference_for(state)->size(), std::size_t{5});
    find<QPushButton>("band_clear", screen)->click();
    QVERIFY(screen->store().empty());
    // A second pass, the table of the first one in between, its end cut off.
    QFile bare(in_folder("bare.tsv"));
    QVERIFY(bare.open(QIODevice::WriteOnly));
    bare.write(band::sweep_header());
    bare.close();
    screen->load_reference(bare.fileName());
    QCOMPARE(find<QLabel>("band_result", screen)->text(),
             QString("bare.tsv has no level: the reference is as it was."));
    QFile cut(in_folder("cut.tsv"));
    QVERIFY(cut.open(QIODevice::WriteOnly));
    cut.write(bytes_of(in_folder("first.tsv")).chopped(9));
    cut.close();
    BoxAnswers boxes;
    screen->load_reference(cut.fileName());
    run_handler(screen, "band_load_Click",
                [&] { screen->load_reference(in_folder("not there.tsv")); });
    const QStringList told = boxes.take_seen();
    QCOMPARE(told.size(), 2);
    QVERIFY2(told[0].contains("up to line 6"), qPrintable(told[0]));
    QVERIFY2(told[1].contains("not there.tsv cannot be read: "), qPrintable(told[1]));
    QCOMPARE(find<QLabel>("band_result", screen)->text(),
             QString("Levels read as the reference: 4."));
    sweep(screen);
    const band::BandState& again = screen->store().states().front();
    const band::BandCurve* reference = screen->store().reference_for(again);
    QVERIFY(reference);
    QCOMPARE(band::difference(again.traces.live(), *reference).size(), std::size_t{4});
    find<QCheckBox>("band_difference", screen)->click();
    QVERIFY(find<QCheckBox>("band_difference", screen)->isChecked());
}

void ScreensTest::markers_are_set_by_clicks_and_moved_by_keys() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1100, "10 MHz");
    sweep(screen);
    auto* view = find<band::BandChartView>("band_chart", screen);
    auto* plot = find<QWidget>("band_plot", view);
    const auto* marks = find<QLabel>("band_marks", screen);
    QVERIFY(marks->text().isEmpty());
    const QPoint middle = plot->rect().center();
    QTest::mouseClick(plot, Qt::LeftButton, {}, middle);
    QVERIFY2(marks->text().startsWith("1:  10"), qPrintable(marks->text()));
    QTest::mouseClick(plot, Qt::LeftButton, Qt::ShiftModifier, middle + QPoint(90, 0));
    QVERIFY2(marks->text().contains(QStringLiteral("2−1:  +")), qPrintable(marks->text()));
    const QString before = marks->text();
    QTest::keyClick(plot, Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(marks->text() != before);
    QTest::keyClick(plot, Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(marks->text(), before);
    // What a marker shows is a level that the meter sent.
    const band::BandCurve& live = screen->store().states().front().traces.live();
    const QString shown = marks->text().section(' ', 5, 5);
    QVERIFY2(std::ranges::any_of(live.samples(),
                                 [&](const band::Sample& sample) {
                                     return measurement::reading_text(measurement::Quantity::level,
                                                                      sample.level) == shown;
                                 }),
             qPrintable(marks->text()));
    const auto* notice = find<QLabel>("corrected_notice");
    find<QPushButton>("band_zoom", screen)->click();
    QCOMPARE(notice->text(), QString("The chart shows all already."));
    window().show_notice(QString());
    QTest::keyClick(plot, Qt::Key_Plus);
    find<QPushButton>("band_zoom", screen)->click();
    QCOMPARE(notice->text(), QString());
}

/// Not the one in which it was set: a dish is turned by what a marker says.
void ScreensTest::a_marker_reads_the_last_pass() {
    MeterInProcess& meter = start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1100, "10 MHz");
    sweep(screen);
    auto* plot = find<QWidget>("band_plot", screen);
    const auto* marks = find<QLabel>("band_marks", screen);
    QTest::mouseClick(plot, Qt::LeftButton, {}, plot->rect().center());
    const QString first = marks->text();
    QVERIFY2(first.endsWith(" dBuV"), qPrintable(first));
    const QString place = first.section("  ", 0, 1);
    line_->answer("UNIT 02");  // by a key of the meter: the line hears nothing of it
    line_->hush();
    QStringList seen;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command == "FREQ 1010.0") click_in_the_wait(find<QCheckBox>("band_hold", screen));
        if (command == "FREQ 1020.0") seen += marks->text();
    };
    sweep(screen);
    meter.on_command = nullptr;
    QCOMPARE(seen, QStringList(place + QStringLiteral("  –")));
    const band::BandCurve& live = screen->store().states().front().traces.live();
    const double mhz = place.section(' ', 2, 2).toDouble();
    const auto level = live.exactly_at(mhz);
    QVERIFY(level);
    const QString now = measurement::reading_text(measurement::Quantity::level, *level);
    QCOMPARE(marks->text(), place + "  " + now + " dBm");
    // A pass that goes elsewhere has no level there.
    find<QLineEdit>("band_to", screen)->setText("1020");
    sweep(screen);
    QCOMPARE(marks->text(), place + QStringLiteral("  –"));
}

void ScreensTest::repeat_is_chosen_while_it_sweeps() {
    MeterInProcess& meter = start_with_meter();
    band::BandSweep* screen = open_sweep(1000, 1040, "10 MHz");
    auto* repeat = find<QCheckBox>("band_repeat", screen);
    int passes = 0;
    meter.on_command = [&](const QByteArray& command, const QString&) {
        if (command == "FREQ 1000.0") ++passes;
        if (command == "FREQ 1020.0" && (passes == 1 || passes == 3)) click_in_the_wait(repeat);
    };
    sweep(screen);
    meter.on_command = nullptr;
    // The fourth is where the meter is set back.
    QCOMPARE(passes, 4);
    QVERIFY(!repeat->isChecked());
    QCOMPARE(find<QLabel>("band_result", screen)->text(),
             QString("Swept: 15 levels, carriers found: 0. The meter is as it was."));
}

void ScreensTest::the_span_goes_along_to_the_other_axis() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(950, 1150, "10 MHz");
    const auto ends = [&] {
        return find<QLineEdit>("band_from", screen)->text() + u' ' +
               find<QLineEdit>("band_to", screen)->text();
    };
    const auto choose = [&](const char* list, int entry) {
        auto* box = find<QComboBox>(list, screen);
        box->setCurrentIndex(entry);
        Q_EMIT box->activated(entry);
    };
    choose("band_feed", 2);
    choose("band_axis", 1);
    QCOMPARE(ends(), QString("11550.0 11750.0"));
    choose("band_axis", 1);
    QCOMPARE(ends(), QString("11550.0 11750.0"));
    choose("band_axis", 0);
    QCOMPARE(ends(), QString("950.0 1150.0"));
    // An oscillator above the band turns it round.
    find<QLineEdit>("band_high", screen)->setText("5150");
    choose("band_axis", 1);
    QCOMPARE(ends(), QString("4000.0 4200.0"));
    choose("band_axis", 0);
    QCOMPARE(ends(), QString("950.0 1150.0"));
}

void ScreensTest::carriers_become_programs_by_the_preview_of_an_import() {
    start_with_meter();
    band::BandSweep* screen = open_sweep(960, 1140, "2 MHz");
    find<QComboBox>("band_feed", screen)->setCurrentIndex(1);
    sweep(screen);
    const std::size_t found = screen->carriers().size();
    QVERIFY(found >= 2);
    BoxAnswers boxes;
    int offered = 0;
    boxes.answer([&](QDialog* preview) {
        offered = preview->findChild<QTableWidget*>()->rowCount();
        preview->accept();
    });
    find<QPushButton>("band_programs", screen)->click();
    QCOMPARE(std::size_t(offered), found);
    QCOMPARE(window().front_key(), QString("program"));
    QSqlQuery rows(program().database().connection());
    QVERIFY(rows.exec("SELECT frequenza, lnb_volt FROM programmi WHERE lnb_volt = 1"));
    std::size_t stored = 0;
    while (rows.next()) ++stored;
    QCOMPARE(stored, found);
}

void ScreensTest::every_fault_of_the_line_ends_a_sweep_with_one_sentence() {
    for (const char* kind :
         {"error", "commanderror", "silence", "garbage", "partial", "late", "asleep", "drop",
          "unplug", "noecho", "wrongecho", "noise", "badrecord", "trickle", "endless"}) {
        MeterInProcess& meter = start_with_meter();
        band::BandSweep* screen = open_sweep(1000, 1040, "10 MHz");
        BoxAnswers boxes;
        // A level in the middle of it.
        meter.spoil(QString::fromLatin1(kind), 15);
        sweep(screen);
        const QString result = find<QLabel>("band_result", screen)->text();
        QVERIFY2(result.count(". ") <= 1 && result.endsWith('.'), qPrintable(kind + result));
        QVERIFY2(!screen->store().empty(), kind);
        const auto levels = screen->store().states().front().traces.live().size();
        QVERIFY2(result.contains(QString::number(levels) + " levels"), qPrintable(kind + result));
        if (!program().link().port_connected)
            QVERIFY2(result.startsWith("The link to the meter was lost"), qPrintable(result));
        screen->save(in_folder("kept.tsv"));
        QCOMPARE(std::size_t(bytes_of(in_folder("kept.tsv")).count('\n')), levels + 1);
        QVERIFY(boxes.take_seen().isEmpty());
    }
}

void ScreensTest::what_cannot_be_swept_is_told() {
    band::BandSweep* screen = open_sweep(1000, 1040, "10 MHz");
    const auto* result = find<QLabel>("band_result", screen);
    sweep(screen);
    QCOMPARE(result->text(), QString("Nothing was swept: no meter answers."));
    start_with_meter();
    screen = open_sweep(1100, 1040, "10 MHz");
    result = find<QLabel>("band_result", screen);
    sweep(screen);
    QVERIFY2(result->text().contains("below the last"), qPrintable(result->text()));
    find<QLineEdit>("band_low", screen)->setText("975");
    find<QComboBox>("band_axis", screen)->setCurrentIndex(1);
    sweep(screen);
    QVERIFY2(result->text().contains("3070 to 12000"), qPrintable(result->text()));
    QCOMPARE(line_->take_commands(), QStringList());
    const auto* notice = find<QLabel>("corrected_notice");
    QTest::keyClick(screen, Qt::Key_Escape);
    QCOMPARE(notice->text(), QString("No sweep is running."));
}

}  // namespace m47::shell
