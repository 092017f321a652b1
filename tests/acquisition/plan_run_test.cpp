// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_run_test.h"

namespace m47::acquisition {

void PlanRunTest::init() {
    f_ = std::make_unique<realtime::RealtimeFixture>();
    f_->values["LEVANL?"] = "L 58.3";
    begun_.clear();
    firings_.clear();
    remarks_.clear();
    progress_.clear();
    tries_.clear();
    f_->panel().meas_statea[realtime::kLevel] = true;
    f_->on_command = [this](const QByteArray& command) {
        begun_ += QString::fromLatin1(command);
        if (command == "FREQ 1000.0") firings_ += now();
    };
    realtime::RealtimeFixture::add_row(f_->database().gruppo(), {{"nome", "P"}});
    realtime::RealtimeFixture::add_row(f_->database().configurazione(),
                                       {{"nome", "P"}, {"loc_osc1", 9750}, {"loc_osc2", 10600}});
    for (int number = 0; number < 3; ++number) add_program(number);
    QVERIFY(f_->rules.plans.choose_plan("p"));
}

void PlanRunTest::add_program(int number, const QMap<QString, QVariant>& fields) {
    QMap<QString, QVariant> row{{"nome", "P"},
                                {"pg_num", QString::number(number).rightJustified(3, u'0')},
                                {"frequenza", 1000 + 10 * number},
                                {"loc_osc", true},
                                {"loc_osc0", 0},
                                {"sat_ad", 0},
                                {"lnb_volt", 1},
                                {"K22", 0},
                                {"monitor_state", 1}};
    row.insert(fields);
    realtime::RealtimeFixture::add_row(f_->database().programmi(), row);
}

PlanRun PlanRunTest::make_run(const PlanRunOrder& order) {
    PlanRun run(f_->link, f_->rules, order);
    run.on_remark = [this](const QString& text) { remarks_ += text; };
    run.on_progress = [this](const QString& text) { progress_ += text; };
    return run;
}

QStringList PlanRunTest::measured() const {
    QStringList all;
    const measurement::PageModel& page = f_->rules.page;
    for (int row = 0; row < page.measurements(); ++row)
        all += page.cells(row)[2].section(u'.', 0, 0);
    return all;
}

void PlanRunTest::one_pass() {
    PlanRun run = make_run({});
    QCOMPARE(run.run(), PlanRun::End::done);
    QVERIFY(!run.incomplete());
    QCOMPARE(measured(), QStringList({"1000", "1010", "1020"}));
    QStringList expected;
    for (const char* frequency : {"1000.0", "1010.0", "1020.0"})
        expected += {"MEASURE", QStringLiteral("FREQ ") + frequency, "ATTEN 6", "LEVANL?"};
    QCOMPARE(begun_, expected);
    QVERIFY(remarks_.isEmpty());
}

void PlanRunTest::passes_back_to_back() {
    QCOMPARE(make_run({.passes = 4}).run(), PlanRun::End::done);
    QCOMPARE(measured().size(), 12);
    // Nothing but the measurements takes time: far less than a minute each.
    QVERIFY(now() < 60);
}

void PlanRunTest::passes_at_fixed_times() {
    f_->clock.sleep(5000);  // the machine has been on for some time
    const double start = now();
    QCOMPARE(make_run({.passes = 5, .every = 3600}).run(), PlanRun::End::done);
    QCOMPARE(firings_.size(), 5);
    for (int pass = 0; pass < 5; ++pass) {
        const double late = firings_[pass] - start - 3600 * pass;
        QVERIFY2(late >= 0 && late < 1, qPrintable(QString::number(late)));
    }
    QVERIFY(remarks_.isEmpty());
}

void PlanRunTest::a_clock_that_is_set_moves_no_firing_data() {
    QTest::addColumn<double>("seconds");
    QTest::newRow("an hour forward") << 3600.0;
    QTest::newRow("an hour back") << -3600.0;
    QTest::newRow("back beyond midnight") << -11 * 3600.0;
}

/// Once while the run waits for a pass and once in the middle of a measurement.
void PlanRunTest::a_clock_that_is_set_moves_no_firing() {
    QFETCH(double, seconds);
    const double start = now();
    f_->clock.spans_hold = true;
    PlanRun run = make_run({.passes = 8, .every = 600});
    int questions = 0;
    bool set = false;
    f_->on_command = [&](const QByteArray& command) {
        if (command == "FREQ 1000.0") firings_ += now();
        // The last question of the fifth pass is on its way.
        if (command == "LEVANL?" && ++questions == 15) f_->clock.set_by(seconds);
    };
    run.on_progress = [&](const QString& text) {
        if (!set && text.startsWith("pass 2 done, next in 0:05")) f_->clock.set_by(seconds);
        set = set || text.startsWith("pass 2 done, next in 0:05");
    };
    QCOMPARE(run.run(), PlanRun::End::done);
    QVERIFY(set);
    QCOMPARE(measured().size(), 24);
    QCOMPARE(firings_.size(), 8);
    for (int pass = 0; pass < 8; ++pass) {
        const double late = firings_[pass] - start - 600 * pass;
        QVERIFY2(late >= 0 && late < 1, qPrintable(QString::number(late)));
    }
    QCOMPARE(remarks_, QStringList());
    // The rows tell the time of day as it was set when they were made.
    QList<double> steps;
    QDateTime last;
    for (int row = 0; row < 24; row += 3) {
        const QStringList cells = f_->rules.page.cells(row);
        const QDateTime time = QDateTime::fromString(
            cells[0].left(6) + "20" + cells[0].mid(6) + cells[1], "dd/MM/yyyyHH:mm:ss");
        if (last.isValid()) steps += static_cast<double>(last.secsTo(time));
        last = time;
    }
    for (int k = 0; k < steps.size(); ++k) {
        const double expected = 600 + (k == 1 || k == 4 ? seconds : 0);
        QVERIFY2(std::abs(steps[k] - expected) <= 1, qPrintable(QString::number(steps[k])));
    }
}

void PlanRunTest::the_date_changes_within_a_pass() {
    // So that the second program of the pass is measured at midnight.
    f_->clock.spans_hold = true;
    f_->clock.sleep(86400 - 36000 - now() - 1.5);
    f_->rules.log.open(f_->path("night.log"), f_->rules.page);
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(measured(), QStringList({"1000", "1010", "1020"}));
    QCOMPARE(f_->rules.page.cells(0)[0], QString("21/11/26"));
    QCOMPARE(f_->rules.page.cells(2)[0], QString("22/11/26"));
    QVERIFY(f_->rules.page.cells(0)[1].startsWith("23:59:5"));
    QVERIFY(f_->rules.page.cells(2)[1].startsWith("00:00:0"));
    QFile log(f_->path("night.log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QByteArray page;
    for (int row = 0; row < 3; ++row)
        page += f_->rules.page.cells(row).join(u'\t').toLatin1() + "\r\n";
    QCOMPARE(log.readAll(), page);
}

/// Another program that holds the database locked for longer than the program waits for it.
void PlanRunTest::a_pass_cut_short_is_told() {
    const QString path = f_->path(QString::fromLatin1(db::kDatabaseFile));
    bool cut_short = false;
    {
        QSqlDatabase other = QSqlDatabase::addDatabase("QSQLITE", "other");
        other.setDatabaseName(path);
        QVERIFY(other.open());
        int questions = 0;
        f_->on_command = [&](const QByteArray& command) {
            if (command == "LEVANL?" && ++questions == 2)
                QVERIFY(QSqlQuery(other).exec("BEGIN EXCLUSIVE"));
        };
        PlanRun run = make_run({.passes = 2, .every = 600});
        run.on_progress = [&](const QString& text) {
            if (text.startsWith("pass 1 done")) QSqlQuery(other).exec("ROLLBACK");
        };
        QCOMPARE(run.run(), PlanRun::End::done);
        cut_short = run.incomplete();
        other.close();
    }
    QSqlDatabase::removeDatabase("other");
    // What had been measured stands, and the next pass is whole again.
    QCOMPARE(measured(), QStringList({"1000", "1010", "1000", "1010", "1020"}));
    QVERIFY(cut_short);
    QCOMPARE(remarks_.size(), 1);
    QVERIFY2(remarks_[0].contains(": pass 1 was cut short: ") && remarks_[0].contains("locked"),
             qPrintable(remarks_[0]));
}

void PlanRunTest::a_pass_longer_than_the_interval_leaves_firings_out() {
    f_->port.answer_delay = 2;  // 12 answers a pass: 24 s and the settling times
    const double start = now();
    QCOMPARE(make_run({.passes = 3, .every = 10}).run(), PlanRun::End::done);
    QCOMPARE(measured().size(), 9);
    QCOMPARE(firings_.size(), 3);
    for (const double firing : firings_) {
        // Each pass begins at a multiple of the interval; FREQ is its second command.
        const double in_interval = std::fmod(firing - start, 10);
        QVERIFY2(in_interval < 3, qPrintable(QString::number(in_interval)));
    }
    QVERIFY(firings_[1] - firings_[0] >= 29);
    QCOMPARE(remarks_.size(), 2);
    // One less than there are intervals between two firings.
    for (int pass = 0; pass < 2; ++pass) {
        const int left_out = static_cast<int>(firings_[pass + 1] - firings_[pass] + 1) / 10 - 1;
        QVERIFY(left_out >= 2);
        QCOMPARE(remarks_[pass],
                 QStringLiteral("pass %1 took longer than the interval: %2 left out")
                     .arg(pass + 1)
                     .arg(left_out));
    }
}

void PlanRunTest::told_to_stop_between_two_measurements() {
    PlanRun run = make_run({.passes = 0});
    run.told_to_stop = [this] { return begun_.contains("FREQ 1010.0"); };
    QCOMPARE(run.run(), PlanRun::End::stopped);
    // What was being measured when the wish came is measured and kept.
    QCOMPARE(measured(), QStringList({"1000", "1010"}));
    QCOMPARE(begun_.constLast(), QString("LEVANL?"));
}

void PlanRunTest::told_to_stop_while_waiting() {
    PlanRun run = make_run({.passes = 0, .every = 86400});
    run.told_to_stop = [this] { return now() > 100; };
    QCOMPARE(run.run(), PlanRun::End::stopped);
    QCOMPARE(measured().size(), 3);
    QVERIFY(now() < 101);
}

void PlanRunTest::told_to_pause_it_ends_behind_a_whole_pass() {
    for (const int every : {0, 600}) {
        const qsizetype before = measured().size();
        PlanRun run = make_run({.passes = 0, .every = every});
        // From the first measurement of the second pass on.
        run.told_to_pause = [&] { return measured().size() > before + 3; };
        QCOMPARE(run.run(), PlanRun::End::stopped);
        QCOMPARE(measured().size() - before, 6);
    }
}

void PlanRunTest::a_lost_link_ends_the_run() {
    f_->on_command = [this](const QByteArray& command) {
        if (command == "FREQ 1010.0") f_->port.vanish_in(0);
    };
    QCOMPARE(make_run({.passes = 2}).run(), PlanRun::End::link_lost);
    QCOMPARE(measured(), QStringList("1000"));
}

void PlanRunTest::after_a_lost_link_the_lost_program_comes_first() {
    PlanRun run = make_run({.passes = 2, .reconnect = true});
    bool pulled = false;
    f_->on_command = [&](const QByteArray& command) {
        if (command == "FREQ 1010.0" && !pulled) f_->port.vanish_in(0);
        pulled = pulled || command == "FREQ 1010.0";
    };
    run.connect = [this] {
        f_->port.open_fault = link::PortFault::none;
        f_->link.port_connected = true;
        return true;
    };
    QCOMPARE(run.run(), PlanRun::End::done);
    QCOMPARE(measured(), QStringList({"1000", "1010", "1020", "1000", "1010", "1020"}));
    QCOMPARE(remarks_.size(), 2);
    QCOMPARE(remarks_[0].mid(19),
             QString(": the link to the meter was lost, trying to connect again"));
    QVERIFY2(remarks_[1].contains(": connected again, nothing was measured for 1 s"),
             qPrintable(remarks_[1]));
}

void PlanRunTest::tries_come_at_growing_intervals() {
    PlanRun run = make_run({.reconnect = true});
    f_->on_command = [this](const QByteArray& command) {
        if (command == "FREQ 1020.0" && tries_.isEmpty()) f_->port.vanish_in(0);
    };
    run.connect = [this] {
        tries_ += now();
        if (tries_.size() < 9) return false;
        f_->port.open_fault = link::PortFault::none;
        f_->link.port_connected = true;
        return true;
    };
    QCOMPARE(run.run(), PlanRun::End::done);
    QList<int> pauses;
    for (int k = 1; k < tries_.size(); ++k)
        pauses += static_cast<int>(std::lround(tries_[k] - tries_[k - 1]));
    QCOMPARE(pauses, QList<int>({2, 4, 8, 16, 32, 60, 60, 60}));
    QCOMPARE(measured(), QStringList({"1000", "1010", "1020"}));
}

void PlanRunTest::told_to_stop_while_the_meter_is_away() {
    PlanRun run = make_run({.reconnect = true});
    f_->on_command = [this](const QByteArray& command) {
        if (command == "FREQ 1010.0") f_->port.vanish_in(0);
    };
    run.connect = [this] {
        tries_ += now();
        return false;
    };
    run.told_to_stop = [this] { return tries_.size() == 3; };
    QCOMPARE(run.run(), PlanRun::End::stopped);
    QCOMPARE(measured(), QStringList("1000"));
}

/// Twice more; then its row is missing, and the pass goes on.
void PlanRunTest::a_doubtful_measurement_is_taken_again() {
    QStringList told;
    f_->rules.cycle.on_doubt = [&](const QString& command) { told += command; };
    for (const int spoilt : {2, 3}) {
        told.clear();
        f_->rules.page.clear();
        int tuned = 0;
        f_->on_command = [&](const QByteArray& command) {
            if (command == "FREQ 1010.0" && ++tuned <= spoilt)
                f_->raw["FREQ 1010.0"] = "FREQ 1#10.0\rOK\r";
            else
                f_->raw.clear();
        };
        PlanRun run = make_run({});
        QCOMPARE(run.run(), PlanRun::End::done);
        QCOMPARE(told, QStringList(spoilt, "FREQ 1010.0"));
        QCOMPARE(run.missing(), spoilt - 2);
        QCOMPARE(measured(), spoilt == 2 ? QStringList({"1000", "1010", "1020"})
                                         : QStringList({"1000", "1020"}));
    }
}

void PlanRunTest::a_meter_that_is_away_at_the_start_is_waited_for() {
    f_->link.port_connected = false;
    QCOMPARE(make_run({}).run(), PlanRun::End::link_lost);
    QCOMPARE(measured(), QStringList());

    PlanRun run = make_run({.passes = 2, .every = 600, .reconnect = true});
    run.connect = [this] {
        tries_ += now();
        f_->link.port_connected = tries_.size() == 4;
        return f_->link.port_connected;
    };
    QCOMPARE(run.run(), PlanRun::End::done);
    QCOMPARE(measured(), QStringList({"1000", "1010", "1020", "1000", "1010", "1020"}));
    QCOMPARE(remarks_.size(), 2);
    QCOMPARE(remarks_[0].mid(19), QString(": no meter answers, waiting for it"));
    // Tried after 1, 2, 4 and 8 s; the times of the passes are counted from when it was found.
    QCOMPARE(std::lround(tries_[3] - tries_[0]), 14);
    QVERIFY(firings_[0] - tries_[3] < 1);
    QCOMPARE(std::lround(firings_[1] - firings_[0]), 600);
}

void PlanRunTest::a_plan_that_was_emptied_is_told_once() {
    PlanRun run = make_run({.passes = 6});
    f_->on_command = [this](const QByteArray& command) {
        if (command != "FREQ 1020.0") return;
        db::Recordset set = f_->database().of_plan("programmi", "P");
        for (; !set.empty(); set.requery()) set.remove();
    };
    QCOMPARE(run.run(), PlanRun::End::done);
    QCOMPARE(measured().size(), 3);
    QCOMPARE(remarks_.size(), 1);
    QVERIFY2(remarks_[0].contains(": pass 2 was cut short: The plan has no programs"),
             qPrintable(remarks_[0]));
    QVERIFY(run.incomplete());
    // The walk over nothing pauses: it does not run in circles.
    QVERIFY(now() >= 4);
}

void PlanRunTest::a_pass_that_measures_nothing_is_told_once() {
    db::Recordset programs = f_->database().of_plan("programmi", "P");
    for (programs.move_first(); !programs.end_of_set(); programs.move_next())
        realtime::RealtimeFixture::change_row(programs, {{"monitor_state", 0}});
    const double start = now();
    PlanRun run = make_run({.passes = 3});
    QCOMPARE(run.run(), PlanRun::End::done);
    QVERIFY(run.incomplete());
    QVERIFY(measured().isEmpty());
    QCOMPARE(remarks_.size(), 1);
    QVERIFY2(remarks_[0].endsWith(": pass 1 measured nothing"), qPrintable(remarks_[0]));
    // A pause between two passes, and none behind the last.
    const double paused = now() - start;
    QVERIFY2(paused >= 2 && paused < 2.5, qPrintable(QString::number(paused)));
}

void PlanRunTest::a_plan_that_was_replaced_is_measured_again() {
    f_->on_command = [this](const QByteArray& command) {
        if (command != "FREQ 1010.0" || !begun_.isEmpty()) return;
        begun_ += "replaced";
        db::Recordset set = f_->database().of_plan("programmi", "P");
        // Others behind them first, so that no row of the new ones has a number of the old ones.
        for (const int number : {3, 4, 5}) add_program(number);
        set.move_first();
        for (int gone = 0; gone < 3; ++gone, set.requery()) set.remove();
    };
    PlanRun run = make_run({.passes = 3});
    QCOMPARE(run.run(), PlanRun::End::done);
    QCOMPARE(measured(),
             QStringList({"1000", "1010", "1030", "1040", "1050", "1030", "1040", "1050"}));
    // What was missing in the first pass is told.
    QVERIFY(run.incomplete());
    QCOMPARE(remarks_.size(), 1);
    QVERIFY2(remarks_[0].contains(": pass 1 was cut short: Another program deleted or replaced"),
             qPrintable(remarks_[0]));
}

void PlanRunTest::the_same_reason_is_told_again_behind_a_measurement() {
    const auto replace = [this](int first) {
        db::Recordset set = f_->database().of_plan("programmi", "P");
        for (int number = first; number < first + 3; ++number) add_program(number);
        set.move_first();
        for (int gone = 0; gone < 3; ++gone, set.requery()) set.remove();
    };
    int times = 0;
    f_->on_command = [&](const QByteArray& command) {
        if (command == "FREQ 1010.0" && times == 0) replace(3 * ++times);
        if (command == "FREQ 1040.0" && times == 1) replace(3 * ++times);
    };
    QCOMPARE(make_run({.passes = 3}).run(), PlanRun::End::done);
    QCOMPARE(measured(), QStringList({"1000", "1010", "1030", "1040", "1060", "1070", "1080"}));
    QCOMPARE(remarks_.size(), 2);
    for (const QString& remark : std::as_const(remarks_))
        QVERIFY2(remark.contains("Another program deleted or replaced"), qPrintable(remark));
}

void PlanRunTest::a_row_that_cannot_be_taken_again_ends_no_run() {
    f_->raw["FREQ 1010.0"] = "FREQ 1#10.0\rOK\r";
    // Somebody deletes the very program whose answer was doubtful.
    f_->rules.cycle.on_doubt = [this](const QString&) {
        f_->raw.clear();
        db::Recordset set = f_->database().of_plan("programmi", "P");
        set.move_next();
        set.remove();
    };
    PlanRun run = make_run({.passes = 2});
    QCOMPARE(run.run(), PlanRun::End::done);
    QVERIFY(run.incomplete());
    QCOMPARE(measured(), QStringList({"1000", "1020", "1000", "1020"}));
    QCOMPARE(remarks_.size(), 1);
    QVERIFY2(remarks_[0].contains("deleted by another program"), qPrintable(remarks_[0]));
}

void PlanRunTest::progress() {
    QCOMPARE(make_run({.passes = 2, .every = 60}).run(), PlanRun::End::done);
    QCOMPARE(progress_.mid(0, 3),
             QStringList({"pass 1, program 1/3", "pass 1, program 2/3", "pass 1, program 3/3"}));
    QVERIFY2(progress_[3].startsWith("pass 1 done, next in 0:00:"), qPrintable(progress_[3]));
    QCOMPARE(progress_.constLast(), QString("pass 2, program 3/3"));
    // One text a second while it waits.
    QVERIFY(progress_.size() > 50 && progress_.size() < 70);
}

}  // namespace m47::acquisition

QTEST_APPLESS_MAIN(m47::acquisition::PlanRunTest)
