// SPDX-License-Identifier: GPL-3.0-or-later
// Plans, programs and links that change or go beneath an acquisition.
#include "acquisition_test.h"

namespace m47::acquisition {

void AcquisitionTest::plan_deleted_in_a_pass_data() {
    QTest::addColumn<bool>("moved");
    QTest::newRow("found at the next step") << false;
    QTest::newRow("found by the user") << true;
}

void AcquisitionTest::plan_deleted_in_a_pass() {
    QFETCH(bool, moved);
    add_plan("A", {1, 1, 1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(11.5);
    QCOMPARE(frequencies(), plan_frequencies({0}));
    empty_database();
    if (moved) programs().move_first();
    run_for(5);
    QVERIFY(!state().plan_run_active);
    QVERIFY(!ticks_->timer2.running());
    QVERIFY(!f_->link.commands_suspended);
    QCOMPARE(progress_.last(), qMakePair(0, 0));
    // The timed firings go on, with a single element too.
    run_for(60);
    QVERIFY(!state().plan_run_active);
    QVERIFY(state().ticks_left > 0);
    const int rows = page().measurements();
    acquisition().single();
    run_for(12);
    QCOMPARE(page().measurements(), rows + 1);
}

void AcquisitionTest::plan_deleted_between_two_firings() {
    add_plan("A", {1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    run_for(5);
    empty_database();
    run_for(7);
    QVERIFY2(!state().plan_run_active, "the countdown stays locked");
    QCOMPARE(f_->port.opens, 0);
    acquisition().single();
    run_for(12);
    QCOMPARE(page().measurements(), 1);
}

void AcquisitionTest::plan_deleted_before_a_pass() {
    add_plan("A", {1, 1});
    acquisition().group();
    remove_programs("A");
    acquisition().multiple_acq();
    run_for(5);
    QVERIFY(!ticks_->timer2.running());
    QVERIFY2(!state().plan_run_active, "the countdown stays locked");
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::database_held_at_a_firing() {
    add_plan("A", {1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
    const QStringList& told = told_;
    QSqlQuery("PRAGMA busy_timeout = 1", f_->database().connection());
    {
        const OtherConnection other(f_->path(db::kDatabaseFile));
        other.run("BEGIN EXCLUSIVE");
        run_for(11);
        QCOMPARE(told.size(), 1);
        QVERIFY2(told[0].contains("in use by another program"), qPrintable(told[0]));
        QCOMPARE(panel().time_state, LampColour::red);
        QVERIFY(!state().plan_run_active);
        // The firings go on, and what runs can be ended.
        run_for(10);
        QCOMPARE(told.size(), 2);
        other.run("ROLLBACK");
    }
    run_for(10);
    QCOMPARE(told.size(), 2);
    QVERIFY(state().plan_run_active);
    {
        const OtherConnection other(f_->path(db::kDatabaseFile));
        other.run("BEGIN EXCLUSIVE");
        acquisition().stop();
        QVERIFY(!ticks_->timer2.running());
    }
}

void AcquisitionTest::replace_programs(const QString& plan) {
    const OtherConnection other(f_->path(db::kDatabaseFile));
    // As one that exports the rows and imports them again: none keeps its place.
    other.run("CREATE TEMP TABLE kept AS SELECT * FROM programmi WHERE nome = '" + plan + "'");
    other.run("UPDATE kept SET id = id + 1000");
    other.run("DELETE FROM programmi WHERE nome = '" + plan + "'");
    other.run("INSERT INTO programmi SELECT * FROM kept");
}

void AcquisitionTest::start_timed_plan() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().cmdstart_Click();
}

void AcquisitionTest::a_plan_replaced_between_two_firings() {
    start_timed_plan();
    run_for(5);
    replace_programs("A");
    run_for(12);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2}));
    QCOMPARE(told_, QStringList());
    acquisition().stop();
    // So is a pass on demand.
    replace_programs("A");
    acquisition().multiple_acq();
    run_for(10);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 2, 0, 1, 2}));
}

void AcquisitionTest::a_plan_replaced_in_a_pass() {
    start_timed_plan();
    run_for(11.5);
    QCOMPARE(frequencies(), plan_frequencies({0}));
    replace_programs("A");
    run_for(6);
    // What was not measured in this pass is told; the next one is whole again.
    QCOMPARE(told_.size(), 1);
    QVERIFY2(told_[0].startsWith("Another program deleted or replaced"), qPrintable(told_[0]));
    run_for(15);
    QCOMPARE(told_.size(), 1);
    QCOMPARE(frequencies(), plan_frequencies({0, 1, 0, 1, 2}));
}

void AcquisitionTest::a_firing_without_a_plan() {
    start_timed_plan();
    remove_programs("A");
    run_for(11.5);
    QCOMPARE(told_.size(), 1);
    QVERIFY2(told_[0].startsWith("The plan has no programs"), qPrintable(told_[0]));
    QCOMPARE(panel().time_state, LampColour::red);
    QVERIFY(!state().plan_run_active);
    f_->rules.modes.rs_programs.reset();
    run_for(10);
    QCOMPARE(told_.size(), 2);
    QCOMPARE(told_[1], QString("No plan is open."));
    QCOMPARE(panel().time_state, LampColour::red);
}

void AcquisitionTest::what_is_timed_stops_without_its_plan() {
    start_timed_plan();
    remove_programs("A");
    run_for(11.5);
    QVERIFY(ticks_->timer1.running());
    acquisition().cmdstart_Click();
    QVERIFY(!ticks_->timer1.running());
    QCOMPARE(panel().cmdstart, QString("&Start"));
}

void AcquisitionTest::another_plan_that_cannot_be_read() {
    add_plan("A", {1});
    add_plan("B", {1});
    acquisition().group();
    const QString before = panel().grp_name;
    const db::Bookmark program = f_->rules.modes.rs_programs->bookmark();
    QSqlQuery("PRAGMA busy_timeout = 1", f_->database().connection());
    const OtherConnection other(f_->path(db::kDatabaseFile));
    // The list of plans can still be walked, the programs of its next plan cannot be opened.
    other.run("ALTER TABLE configurazione RENAME TO hidden");
    QVERIFY(realtime::faults([&] { acquisition().next(); }));
    QCOMPARE(panel().grp_name, before);
    QCOMPARE(f_->rules.modes.rs_programs->bookmark(), program);
}

void AcquisitionTest::link_down() {
    add_plan("A", {1, 0, 1});
    f_->link.port_connected = false;
    acquisition().single_acq();
    QVERIFY(!state().plan_run_active);
    acquisition().group();
    panel().time_delay = 1;
    acquisition().time_delay_Click();
    acquisition().start();
    acquisition().cmdstart_Click();
    run_for(11.5);
    QCOMPARE(panel().prog_num, QString("000"));
    run_for(1);
    QCOMPARE(panel().prog_num, QString("002"));
    run_for(1);
    QVERIFY(!state().plan_run_active);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 2}, {2, 2}, {0, 0}}));
    // At 10 s the first pass, of three seconds; ten ticks behind its end the next.
    run_for(9);
    QVERIFY(!state().plan_run_active);
    run_for(1);
    QVERIFY(state().plan_run_active);
    QCOMPARE(panel().time_act, QString("21/11 10:00:23"));
    QCOMPARE(f_->port.opens, 0);
    QCOMPARE(page().measurements(), 0);
}

void AcquisitionTest::link_lost_in_a_pass() {
    add_plan("A", {1, 1, 1, 1});
    f_->on_command = [this](const QByteArray& command) {
        if (command == "FREQ 1010.0") f_->refuse(command);
    };
    acquisition().group();
    acquisition().multiple_acq();
    run_for(40);
    QVERIFY(!f_->link.port_connected);
    QCOMPARE(f_->commands(), cycle_at("1000.0") + (QStringList{"MEASURE", "FREQ 1010.0",
                                                               "FREQ 1010.0", "FREQ 1010.0"}));
    QCOMPARE(frequencies(), plan_frequencies({0}));
    // The walk goes on to the end.
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 4}, {2, 4}, {3, 4}, {4, 4}, {0, 0}}));
    QCOMPARE(panel().prog_num, QString("003"));
    QVERIFY(!state().plan_run_active);
    // The next pass measures again once the meter is back.
    f_->raw.clear();
    f_->on_command = nullptr;
    f_->link.port_connected = true;
    acquisition().multiple_acq();
    run_for(40);
    QCOMPARE(frequencies(), plan_frequencies({0, 0, 1, 2, 3}));
}

void AcquisitionTest::end_of_the_program_in_a_measurement() {
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "ATTEN 6"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, acquisition().single_acq());
    QVERIFY(!state().plan_run_active);
    QCOMPARE(page().measurements(), 0);
}

void AcquisitionTest::end_of_the_program_in_a_pass() {
    add_plan("A", {1, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(page().measurements(), 1);
    QVERIFY(!f_->link.left_off);
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "ATTEN 6"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, run_for(20));
    QVERIFY(f_->link.left_off);
    QCOMPARE(f_->link.left_off->in(f_->program.texts),
             QString("a measurement was broken off and has no row, rows on the page: 1"));
}

void AcquisitionTest::what_goes_on_by_itself_tells_how_far_it_is() {
    const auto told = [this] {
        const std::optional<Said> said = acquisition().running();
        return said ? said->in(f_->program.texts) : QString();
    };
    add_plan("A", {1, 1, 1});
    acquisition().group();
    QCOMPARE(told(), QString());
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(told(), QString("a run was between two measurements, rows on the page: 1"));
    run_for(20);
    QCOMPARE(told(), QString());
    acquisition().cmdstart_Click();
    QCOMPARE(told(), QString("a run was between two measurements, rows on the page: 3"));
    acquisition().stop();
    QCOMPARE(told(), QString());
}

void AcquisitionTest::a_week_of_a_plan() {
#ifdef M47_SANITIZED
    constexpr double kWeek = 2 * 24 * 3600;  // shorter, as everything takes six times as long
#else
    constexpr double kWeek = 7 * 24 * 3600;
#endif
    // Alone, two, three and four in a row, and at both ends.
    const QList<int> states{0, 1, 1, 0, 1, 1, 1, 0, 0, 1, 1, 1, 1, 0, 0,
                            0, 1, 1, 0, 1, 1, 0, 0, 0, 0, 1, 1, 1, 1, 0};
    add_plan("WEEK", states);
    const QStringList pass = plan_frequencies(measured_places(states));
    QCOMPARE(states.size(), 30);
    QCOMPARE(pass.size(), 17);

    QList<AskedLevel> asked;
    QByteArray tuned;
    qint64 other_commands = 0;
    f_->on_command = [&](const QByteArray& command) {
        if (command.startsWith("FREQ ")) {
            tuned = command.mid(5);
        } else if (command == "LEVANL?") {
            // A level of its own for every question, 30.0 to 89.9.
            const auto tenths = 300 + asked.size() % 600;
            const QByteArray level = QByteArray::number(static_cast<double>(tenths) / 10, 'f', 1);
            f_->values["LEVANL?"] = "L " + level;
            asked += {tuned, level};
        } else if (command != "MEASURE" && command != "ATTEN 6") {
            ++other_commands;
        }
    };
    QStringList times;
    f_->rules.cycle.on_row = [&](const QStringList&) {
        times += f_->clock.date_time().toString("dd/MM/yy\tHH:mm:ss");
    };
    QList<double> ends;
    QList<double> begins;
    make_acquisition({.progress = [&](int place, int monitored) {
        if (place == 1) begins += now();
        if (monitored == 0) ends += now();
    }});

    f_->rules.log.open(f_->path("week.log"), page());
    acquisition().group();
    panel().time_delay = 8;
    acquisition().time_delay_Click();
    acquisition().start();
    acquisition().cmdstart_Click();
    for (double hour = 3600; hour <= kWeek; hour += 3600) {
        run_until(hour);
        f_->view.progress_values = {0};
        f_->port.take_commands();
    }
    for (int second = 0; state().plan_run_active && second < 120; ++second) run_for(1);
    acquisition().cmdstart_Click();

    QCOMPARE(other_commands, 0);
    QVERIFY(!state().plan_run_active);
    QVERIFY(f_->link.port_connected);
    QCOMPARE(begins.size(), ends.size());
    QVERIFY(std::abs(begins[0] - 601) < 0.01);
    for (qsizetype i = 1; i < begins.size(); ++i) {
        // 600 ticks, the first within a second of the end of the pass, and one to the first step.
        const double rest = begins[i] - ends[i - 1];
        QVERIFY2(rest > 599.9 && rest < 601.1, qPrintable(QString::number(rest)));
    }
    const double round = (begins.last() - begins.first()) / static_cast<double>(begins.size() - 1);
    QCOMPARE(begins.size(), static_cast<qsizetype>((kWeek - begins.first()) / round) + 1);

    QCOMPARE(asked.size(), ends.size() * pass.size());
    QCOMPARE(page().measurements(), static_cast<int>(asked.size()));
    QCOMPARE(times.size(), asked.size());
    QFile log(f_->path("week.log"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromLatin1(log.readAll()).split("\r\n");
    QCOMPARE(lines.size(), asked.size() + 1);
    QCOMPARE(lines.last(), QString());
    for (qsizetype i = 0; i < asked.size(); ++i) {
        const QString frequency = QString::fromLatin1(asked[i].frequency);
        QCOMPARE(frequency, pass[i % pass.size()]);
        const QString line = times[i] + u'\t' + frequency + "\t9750\t" +
                             QString::fromLatin1(asked[i].level) + "\t\t\t\t\t\t";
        QCOMPARE(page().cells(static_cast<int>(i)).join(u'\t'), line);
        QCOMPARE(lines[i], line);
    }
    qInfo("%lld passes, %lld measurements", static_cast<long long>(ends.size()),
          static_cast<long long>(asked.size()));
}

}  // namespace m47::acquisition
