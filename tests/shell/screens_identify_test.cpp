// SPDX-License-Identifier: GPL-3.0-or-later
// The dialog "Identify satellite", by clicks and keys, before the simulated meter under the orbit.
#include <QListView>
#include <QTableWidget>

#include "belief_words.h"
#include "identify_dialog.h"
#include "satellite_tables.h"
#include "screens_test.h"

namespace m47::shell {
namespace {

/// What the meter is told at the end, as it was switched on.
const QStringList kAsBefore{"LOCOSC 00", "FREQ 1000.0", "ATTEN 06",
                            "LNVOLT 13", "LNB 00",      "TONE22K 00"};

QString text_of(QDialog* dialog, const char* label) {
    return dialog->findChild<QLabel*>(QString::fromLatin1(label))->text();
}

void press(QDialog* dialog, const char* key) {
    auto* button = dialog->findChild<QPushButton*>(QString::fromLatin1(key));
    QVERIFY2(button->isEnabled(), key);
    QTest::mouseClick(button, Qt::LeftButton);
}

bool can_press(QDialog* dialog, const char* key) {
    return dialog->findChild<QPushButton*>(QString::fromLatin1(key))->isEnabled();
}

void choose(QDialog* dialog, const char* list, int entry) {
    auto* box = dialog->findChild<QComboBox*>(QString::fromLatin1(list));
    box->setFocus();
    box->setCurrentIndex(0);
    for (int k = 0; k < entry; ++k) QTest::keyClick(box, Qt::Key_Down);
    QCOMPARE(box->currentIndex(), entry);
}

void type_into(QDialog* dialog, const char* name, const char* text) {
    auto* box = dialog->findChild<QLineEdit*>(QString::fromLatin1(name));
    QVERIFY(box->isEnabled());
    box->selectAll();
    QTest::keyClicks(box, QString::fromLatin1(text));
}

QTableWidget* asked_in(QDialog* dialog) {
    return dialog->findChild<QTableWidget*>(QStringLiteral("identify_asked"));
}

QByteArray file_at(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no file");
}

}  // namespace

/// Connected to a meter whose dish looks at 20.4E.
MeterInProcess& ScreensTest::start_under_the_orbit() {
    if (!satellites_) satellites_ = std::make_unique<SatelliteTables>();
    MeterInProcess& meter = start_with_meter(DishInProcess{satellites_->folder(), 20.4, 3});
    find<QAction>("cmdinglese")->trigger();
    line_->take_commands();
    return meter;
}

/// Opens the dialog by its key, with the tables of the orbit, lets `act` use it and closes it; the
/// boxes that it opens are answered by `others`.
void ScreensTest::in_the_dialog(const std::function<void(QDialog*)>& act,
                                const std::vector<BoxAnswers::Answer>& others) {
    const auto use = [this, act] {
        auto* dialog = qobject_cast<identify::IdentifyDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        if (satellites_) dialog->take_tables(satellites_->folder());
        act(dialog);
        if (dialog->isVisible()) dialog->reject();
    };
    BoxAnswers boxes;
    // From the event loop: a box that opens meanwhile is to be answered.
    boxes.answer(
        [&](QDialog* dialog) { QMetaObject::invokeMethod(dialog, use, Qt::QueuedConnection); });
    for (const BoxAnswers::Answer& other : others) boxes.answer(other);
    find<QAction>("cmdidentify")->trigger();
    seen_boxes_ = boxes.take_seen();
}

void ScreensTest::a_satellite_is_identified_while_its_bar_grows() {
    MeterInProcess& meter = start_under_the_orbit();
    const QByteArray before = meter.kept();
    QString verdict, facts, last;
    std::vector<double> best;
    int rows = 0;
    bool newest_in_sight = false;
    in_the_dialog([&](QDialog* dialog) {
        const auto* bars = dialog->findChild<identify::BeliefBars*>("identify_bars");
        meter.on_command = [&](const QByteArray&, const QString&) {
            if (!bars->bars().empty()) best.push_back(bars->bars().front().chance);
        };
        press(dialog, "identify_start");
        meter.on_command = nullptr;
        verdict = text_of(dialog, "identify_state");
        facts = text_of(dialog, "identify_facts");
        last = bars->bars().front().name;
        const QString certain = identify::percent_text(bars->bars().front().chance);
        QVERIFY2(verdict.contains("certainty " + certain), qPrintable(certain));
        rows = asked_in(dialog)->rowCount();
        newest_in_sight = asked_in(dialog)->viewport()->rect().contains(
            asked_in(dialog)->visualItemRect(asked_in(dialog)->item(rows - 1, 0)).center());
        QCOMPARE(bars->bars().size(), std::size_t{7});
    });
    QVERIFY2(verdict.startsWith("This is 20.0E (Beta), certainty 9"), qPrintable(verdict));
    QVERIFY2(verdict.contains("runner-up"), qPrintable(verdict));
    QCOMPARE(last, QString("20.0E (Beta)"));
    QVERIFY2(facts.contains("LNB drift") && facts.startsWith("Answers: " + QString::number(rows)),
             qPrintable(facts));
    QVERIFY(rows > 50);
    QVERIFY(newest_in_sight);
    // It moves while it asks.
    QVERIFY(best.size() > 5 && best.front() < best.back());
    const QStringList sent = line_->take_commands();
    QCOMPARE(sent.mid(sent.size() - 7), kAsBefore + QStringList("SYMBRATEQPSK 27500"));
    QCOMPARE(meter.kept(), before);
    QVERIFY(!program().link().activity.working());
}

/// A drift is that of the LNB through which something was received.
void ScreensTest::beside_no_satellite_stands_no_drift() {
    if (!satellites_) satellites_ = std::make_unique<SatelliteTables>();
    start_with_meter(DishInProcess{satellites_->folder(), 120, 3});
    find<QAction>("cmdinglese")->trigger();
    QString verdict, facts;
    in_the_dialog([&](QDialog* dialog) {
        press(dialog, "identify_start");
        verdict = text_of(dialog, "identify_state");
        facts = text_of(dialog, "identify_facts");
    });
    QVERIFY2(verdict.startsWith("No satellite"), qPrintable(verdict));
    QVERIFY2(facts.startsWith("Answers: ") && !facts.contains("drift"), qPrintable(facts));
}

void ScreensTest::ten_satellites_have_a_bar_and_what_is_none() {
    using Kind = identify::Verdict::Kind;
    std::vector<identify::Candidate> candidates;
    std::vector<identify::Standing> standings;
    for (std::size_t k = 0; k < 14; ++k) {
        candidates.push_back({.name = QString::number(k)});
        standings.push_back({Kind::candidate, k, 0.2 - 0.01 * double(k)});
    }
    standings.push_back({Kind::no_satellite, 0, 0.001});
    standings.insert(standings.begin() + 1, {Kind::none_of_these, 0, 0.195});
    QStringList names;
    for (const identify::Bar& bar : identify::bars_of(standings, candidates, Texts()))
        names += bar.name;
    QCOMPARE(names, QStringList({"0", "none of these", "1", "2", "3", "4", "5", "6", "7", "8", "9",
                                 "no satellite"}));
}

void ScreensTest::it_is_asked_again_and_the_choice_is_kept() {
    start_under_the_orbit();
    QStringList verdicts;
    in_the_dialog([&](QDialog* dialog) {
        for (int run = 0; run < 2; ++run) {
            press(dialog, "identify_start");
            verdicts += text_of(dialog, "identify_state").left(20);
        }
        choose(dialog, "identify_from", 1);
        type_into(dialog, "identify_one", "15E");
        type_into(dialog, "identify_other", "45E");
    });
    int from = 0, bars = 0;
    QString one;
    in_the_dialog([&](QDialog* dialog) {
        from = dialog->findChild<QComboBox*>("identify_from")->currentIndex();
        one = dialog->findChild<QLineEdit*>("identify_one")->text();
        QCOMPARE(asked_in(dialog)->rowCount(), 0);
        press(dialog, "identify_start");
        verdicts += text_of(dialog, "identify_state").left(20);
        bars = int(dialog->findChild<identify::BeliefBars*>("identify_bars")->bars().size());
        // What came stays where the next run has nothing to ask.
        const int rows = asked_in(dialog)->rowCount();
        static_cast<identify::IdentifyDialog*>(dialog)->take_tables(in_folder("nowhere"));
        press(dialog, "identify_start");
        QVERIFY(rows > 0 && asked_in(dialog)->rowCount() == rows);
        QVERIFY(dialog->findChild<QPushButton*>("identify_save")->isEnabled());
    });
    QCOMPARE(verdicts, QStringList(3, "This is 20.0E (Beta)"));
    QCOMPARE(from, 1);
    QCOMPARE(one, QString("15E"));
    QVERIFY2(bars == 5, "three on that part of the arc, and two that are none");
}

/// Also within the dialog, whose own key is still being handled.
void ScreensTest::what_was_told_of_a_stopped_one_ends_with_the_next() {
    MeterInProcess& meter = start_under_the_orbit();
    const auto* notice = find<QLabel>("corrected_notice");
    QStringList told;
    in_the_dialog([&](QDialog* dialog) {
        for (int run = 0; run < 2; ++run) {
            int levels = 0;
            meter.on_command = [&](const QByteArray& command, const QString&) {
                if (command != "LEVANL?" || ++levels != 10) return;
                told += notice->text();
                click_in_the_wait(dialog->findChild<QPushButton*>("identify_stop"));
            };
            press(dialog, "identify_start");
            meter.on_command = nullptr;
            told += notice->text();
        }
    });
    QCOMPARE(told.size(), 4);
    QVERIFY2(told[1].startsWith("Stopped: "), qPrintable(told[1]));
    QVERIFY2(told[3].startsWith("Stopped: "), qPrintable(told[3]));
    QCOMPARE(told[0], QString());
    QCOMPARE(told[2], QString());
}

void ScreensTest::transponders_of_the_satellite_become_programs() {
    start_under_the_orbit();
    int offered = 0;
    bool open_afterwards = false;
    const auto take_all = [&](QDialog* preview) {
        offered = preview->findChild<QTableWidget*>()->rowCount();
        preview->accept();
    };
    in_the_dialog(
        [&](QDialog* dialog) {
            QVERIFY(!can_press(dialog, "identify_programs") && !can_press(dialog, "identify_save"));
            press(dialog, "identify_start");
            press(dialog, "identify_programs");
            open_afterwards = dialog->isVisible();
        },
        {take_all});
    QCOMPARE(seen_boxes_.size(), 2);
    QVERIFY(open_afterwards);
    QCOMPARE(offered, 21);
    QCOMPARE(window().front_key(), QString("program"));
    QSqlQuery rows(program().database().connection());
    QVERIFY(
        rows.exec("SELECT frequenza, lnb_volt, K22, loc_osc0, qpsk_symbolrate FROM programmi "
                  "WHERE sat_ad ORDER BY frequenza"));
    QStringList programs;
    while (rows.next())
        programs += QStringList{rows.value(0).toString(), rows.value(1).toString(),
                                rows.value(2).toString(), rows.value(4).toString()}
                        .join(' ');
    QCOMPARE(programs.size(), 21);
    QCOMPARE(programs.first(), QString("10750 2 0 27500"));
    QCOMPARE(programs.last(), QString("12550 2 1 27500"));
}

void ScreensTest::asking_stops_at_once_data() {
    QTest::addColumn<QString>("by");
    for (const char* by : {"Stop", "Esc", "dialog", "window"}) QTest::newRow(by) << by;
}

/// By its key, by Esc, and by whoever closes the dialog or the program's window.
void ScreensTest::asking_stops_at_once() {
    QFETCH(QString, by);
    MeterInProcess& meter = start_under_the_orbit();
    const QByteArray before = meter.kept();
    QString state;
    int rows = 0;
    int levels = 0;
    bool kept_open = false;
    in_the_dialog([&](QDialog* dialog) {
        meter.on_command = [&](const QByteArray& command, const QString&) {
            if (command != "LEVANL?" || ++levels != 30) return;
            if (by == "Stop")
                return click_in_the_wait(dialog->findChild<QPushButton*>("identify_stop"));
            QMetaObject::invokeMethod(
                this,
                [this, by, dialog] {
                    if (by == "Esc") return QTest::keyClick(dialog->windowHandle(), Qt::Key_Escape);
                    by == "dialog" ? void(static_cast<QWidget*>(dialog)->close())
                                   : void(window().close());
                },
                Qt::QueuedConnection);
        };
        press(dialog, "identify_start");
        meter.on_command = nullptr;
        state = text_of(dialog, "identify_state");
        rows = asked_in(dialog)->rowCount();
        kept_open = dialog->isVisible();
    });
    QCOMPARE(levels, 30);
    const QStringList sent = line_->take_commands();
    QCOMPARE(sent.mid(sent.size() - kAsBefore.size()), kAsBefore);
    QCOMPARE(sent.count("LEVANL?"), 30);
    QCOMPARE(meter.kept(), before);
    QVERIFY2(rows == 29 || rows == 30, qPrintable(QString::number(rows)));
    QCOMPARE(
        state,
        QString("Stopped at %1 answers, before it was clear which satellite this is.").arg(rows));
    QCOMPARE(kept_open, by == "Stop" || by == "Esc");
    QTRY_COMPARE(window().isVisible(), by != "window");
}

void ScreensTest::a_link_that_is_lost_while_asking_leaves_what_came() {
    MeterInProcess& meter = start_under_the_orbit();
    QString state, again;
    int rows = 0;
    in_the_dialog([&](QDialog* dialog) {
        int levels = 0;
        meter.on_command = [&](const QByteArray& command, const QString&) {
            if (command == "LEVANL?" && ++levels == 30) line_->vanish_in(0);
        };
        press(dialog, "identify_start");
        state = text_of(dialog, "identify_state");
        rows = asked_in(dialog)->rowCount();
        QVERIFY(can_press(dialog, "identify_save") && !can_press(dialog, "identify_programs"));
        static_cast<identify::IdentifyDialog*>(dialog)->save(in_folder("asked.tsv"));
        press(dialog, "identify_start");
        again = text_of(dialog, "identify_state");
    });
    QVERIFY2(rows == 29 || rows == 30, qPrintable(QString::number(rows)));
    QCOMPARE(state,
             QString("The link to the meter was lost at %1 answers, which stay, before it was "
                     "clear which satellite this is. Not set back: local oscillator, tuned "
                     "frequency, attenuator, LNB supply, 22 kHz tone.")
                 .arg(rows));
    QCOMPARE(file_at(in_folder("asked.tsv")).count('\n'), rows + 1);
    QCOMPARE(again, QString("Nothing was asked: no meter answers."));
}

void ScreensTest::what_was_asked_is_saved_as_a_table() {
    start_under_the_orbit();
    const auto name_file = [this](QDialog* box) {
        auto* name = box->findChild<QLineEdit*>("fileNameEdit");
        name->setText(in_folder("beta.tsv"));
        QTest::keyClick(name, Qt::Key_Return);
    };
    int rows = 0;
    in_the_dialog(
        [&](QDialog* dialog) {
            press(dialog, "identify_start");
            rows = asked_in(dialog)->rowCount();
            press(dialog, "identify_save");
        },
        {name_file});
    const QByteArray table = file_at(in_folder("beta.tsv"));
    QCOMPARE(table.count('\n'), rows + 2);
    QVERIFY(table.contains("\nverdict\t") && table.contains("\t20.0E\tBeta\t0.9"));
    QCOMPARE(find<QLabel>("saved_name")->text(), QString("Saved beta.tsv"));
}

void ScreensTest::what_cannot_be_asked_is_told() {
    start_under_the_orbit();
    QStringList told;
    in_the_dialog([&](QDialog* dialog) {
        const auto try_it = [&] {
            press(dialog, "identify_start");
            told += text_of(dialog, "identify_state");
        };
        static_cast<identify::IdentifyDialog*>(dialog)->take_tables(in_folder("nowhere"));
        try_it();
        choose(dialog, "identify_from", 1);
        type_into(dialog, "identify_one", "200E");
        try_it();
        choose(dialog, "identify_from", 2);
        try_it();
        choose(dialog, "identify_lnb", 1);
        type_into(dialog, "identify_oscillator", "975");
        try_it();
        auto* dish = dialog->findChild<QLineEdit*>("identify_dish");
        QCOMPARE(dish->text(), QString("80"));
        choose(dialog, "identify_lnb", 2);
        QCOMPARE(dish->text(), QString("240"));
        type_into(dialog, "identify_dish", "20");
        try_it();
        choose(dialog, "identify_lnb", 0);
        QCOMPARE(dish->text(), QString("20"));
        QVERIFY(asked_in(dialog)->rowCount() == 0);
    });
    QVERIFY2(told[0].contains("dtv-scan-tables"), qPrintable(told[0]));
    QVERIFY2(told[1].contains("13.0E or 30W"), qPrintable(told[1]));
    QVERIFY2(told[2].startsWith("No plan has a digital program"), qPrintable(told[2]));
    QVERIFY2(told[3].contains("3070 to 12000"), qPrintable(told[3]));
    QVERIFY2(told[4].contains("30 to 1000 cm"), qPrintable(told[4]));
    QCOMPARE(line_->take_commands(), QStringList());
}

void ScreensTest::a_run_that_measures_is_not_disturbed_by_asking() {
    start_under_the_orbit();
    realtime::Realtime* screen = open_realtime();
    find<QAction>("start", screen)->trigger();
    find<QPushButton>("cmdstart", screen)->click();
    line_->take_commands();
    find<QAction>("cmdidentify")->trigger();
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(find<QLabel>("corrected_notice")->text().startsWith("A run is measuring"));
    QCOMPARE(line_->take_commands(), QStringList());
}

/// As a click that the desktop brings late: it was meant for the screen as it was before.
void ScreensTest::the_key_is_not_taken_while_the_meter_is_waited_for() {
    MeterInProcess& meter = start_under_the_orbit();
    realtime::Realtime* screen = open_realtime();
    QTRY_VERIFY(window().findChild<QToolBar*>("barrastrumenti"));
    const QWidget* key =
        find<QToolBar>("barrastrumenti")->widgetForAction(find<QAction>("cmdidentify"));
    BoxAnswers boxes;
    bool clicked = false;
    meter.on_command = [&](const QByteArray&, const QString&) {
        if (!std::exchange(clicked, true)) click_in_the_wait(key);
    };
    find<QCheckBox>("meas_statea_0", screen)->setChecked(true);
    find<QAction>("single_acq", screen)->trigger();
    meter.on_command = nullptr;
    QTest::qWait(50);
    QVERIFY(clicked);
    QCOMPARE(boxes.take_seen(), QStringList());
    QCOMPARE(screen->rules.page.measurements(), 1);
}

void ScreensTest::the_peak_of_the_named_satellite_is_searched_with_a_motor() {
    start_under_the_orbit();
    bool without_motor = true;
    in_the_dialog([&](QDialog* dialog) {
        press(dialog, "identify_start");
        without_motor = can_press(dialog, "identify_peak");
    });
    QVERIFY(!without_motor);
    realtime::Realtime* screen = open_realtime();
    find<QRadioButton>("dsqopt_1", screen)->click();
    find<QLineEdit>("srqpsk_txt", screen)->setText("5000");
    QTest::keyClick(find<QLineEdit>("srqpsk_txt", screen), Qt::Key_Return);
    QStringList sent;
    in_the_dialog(
        [&](QDialog* dialog) {
            press(dialog, "identify_start");
            line_->take_commands();
            press(dialog, "identify_peak");
            sent = line_->take_commands();
        },
        {[](QDialog* peak) { peak->reject(); }});
    QCOMPARE(seen_boxes_, QStringList({"identify_dialog", "peak_dialog"}));
    QCOMPARE(window().front_key(), QString("realtime"));
    QVERIFY2(sent.contains("LNVOLT 18") && sent.contains("LNB 01"), qPrintable(sent.join(' ')));
    const double mhz = find<QLineEdit>("fsat", screen)->text().toDouble();
    QVERIFY2(std::abs(std::remainder(mhz - 10750, 90)) < 8, qPrintable(QString::number(mhz)));
    QVERIFY2(sent.contains("SYMBRATEQPSK 27500"), "else it does not lock");
    QCOMPARE(find<QLineEdit>("srqpsk_txt", screen)->text(), QString("27500"));
}

}  // namespace m47::shell
