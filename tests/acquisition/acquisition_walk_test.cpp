// SPDX-License-Identifier: GPL-3.0-or-later
// Walking through plans and programs, and what an acquisition tells.
#include "acquisition_test.h"

namespace m47::acquisition {

void AcquisitionTest::plans_walk() {
    add_plan("A", {1, 1});
    add_plan("B", {1}, 1500);
    add_plan("C", {1}, 1600);
    acquisition().group();
    acquisition().previous();
    QCOMPARE(panel().grp_name, QString("A"));
    for (const char* name : {"B", "C", "C", "C"}) {
        acquisition().next();
        QCOMPARE(panel().grp_name, QString(name));
        QVERIFY(!f_->link.commands_suspended);
    }
    QCOMPARE(panel().fsat, QString("1600"));
    QCOMPARE(programs().count(), 1);
    for (const char* name : {"B", "A", "A", "A"}) {
        acquisition().previous();
        QCOMPARE(panel().grp_name, QString(name));
    }
    QCOMPARE(panel().fsat, QString("1000"));
    QCOMPARE(programs().count(), 2);
    QCOMPARE(place(), 0);
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::plan_recall_is_suspended() {
    add_plan("A", {1});
    add_plan("B", {});
    add_program("B", 7, {{"loc_osc", false}, {"frequenza", 11000}, {"sat_ad", 1}});
    acquisition().group();
    QList<bool> suspended;
    panel().on_repaint = [&] { suspended += f_->link.commands_suspended; };
    acquisition().next();
    QCOMPARE(suspended, QList<bool>{true});
    QCOMPARE(panel().prog_num, QString("007"));
    QCOMPARE(panel().fsat, QString("11000"));
    QVERIFY(panel().satdigmea_visible);
    acquisition().previous();
    QVERIFY(!panel().satdigmea_visible);
    QCOMPARE(f_->port.opens, 0);
    QVERIFY(!f_->link.commands_suspended);
}

void AcquisitionTest::programs_walk_data() {
    QTest::addColumn<QList<int>>("states");
    QTest::addColumn<int>("from");
    QTest::addColumn<QString>("walk");    // ">" next, "<" previous
    QTest::addColumn<QString>("places");  // of the set after each
    QTest::addColumn<QString>("shown");   // program after each
    const QList<int> some{1, 0, 0, 1, 1};
    QTest::newRow("to the end") << some << 0 << ">>>>"
                                << "3444"
                                << "3444";
    QTest::newRow("to the begin") << some << 4 << "<<<<"
                                  << "3000"
                                  << "3000";
    QTest::newRow("unmonitored end") << QList<int>{1, 1, 0, 0} << 0 << ">>>"
                                     << "133"
                                     << "111";
    QTest::newRow("unmonitored begin") << QList<int>{0, 0, 1, 1} << 3 << "<<<"
                                       << "200"
                                       << "222";
    QTest::newRow("back again") << QList<int>{0, 1, 0} << 0 << "><>"
                                << "101"
                                << "111";
    QTest::newRow("one") << QList<int>{1} << 0 << "><>"
                         << "000"
                         << "000";
    QTest::newRow("none monitored") << QList<int>{0, 0, 0} << 1 << "><"
                                    << "20"
                                    << "xx";
}

void AcquisitionTest::programs_walk() {
    QFETCH(QList<int>, states);
    QFETCH(int, from);
    QFETCH(QString, walk);
    QFETCH(QString, places);
    QFETCH(QString, shown);
    add_plan("A", states);
    acquisition().group();
    if (!states.contains(1)) panel().prog_num = "x";
    for (int i = 0; i < from; ++i) programs().move_next();
    QString walked;
    QString seen;
    for (const QChar step : walk) {
        if (step == u'>')
            acquisition().next_prog();
        else
            acquisition().previous_prog();
        walked += QString::number(place());
        seen += panel().prog_num.right(1);
        QVERIFY(!f_->link.commands_suspended);
    }
    QCOMPARE(walked, places);
    QCOMPARE(seen, shown);
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::program_walk_sends_nothing() {
    add_plan("A", {1});
    add_program("A", 1, {{"loc_osc", false}, {"frequenza", 11000}, {"sat_ad", 1}});
    acquisition().group();
    QList<bool> suspended;
    panel().on_repaint = [&] { suspended += f_->link.commands_suspended; };
    acquisition().next_prog();
    QCOMPARE(panel().fsat, QString("11000"));
    QVERIFY(panel().satdigmea_visible);
    acquisition().previous_prog();
    QCOMPARE(panel().fsat, QString("1000"));
    QCOMPARE(suspended, (QList<bool>{true, true}));
    QCOMPARE(f_->port.opens, 0);
}

void AcquisitionTest::no_plan_open() {
    state().acq_kind = realtime::kPlan;
    acquisition().previous();
    acquisition().next();
    acquisition().previous_prog();
    acquisition().next_prog();
    QVERIFY(!f_->link.commands_suspended);
    acquisition().multiple_acq();
    QVERIFY(!ticks_->timer2.running());
    panel().cmdstart = "before";
    panel().time_state = LampColour::green;
    acquisition().cmdstart_Click();
    QVERIFY(!ticks_->timer1.running());
    QCOMPARE(panel().cmdstart, QString("before"));
    QVERIFY(panel().time_state == LampColour::green);
    acquisition().stop();
    QVERIFY(!state().plan_run_active);
    QCOMPARE(panel().cmdstart, QString("&Stop"));
    run_for(100);
    QCOMPARE(f_->port.opens, 0);
    // What can be done without a plan still works.
    acquisition().single();
    acquisition().single_acq();
    QCOMPARE(page().measurements(), 1);
}

void AcquisitionTest::progress_is_that_of_the_program() {
    add_plan("A", {1, 0, 1, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(3.5);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 3}, {2, 3}}));
    // The user walks back to the begin within the pass.
    acquisition().previous_prog();
    acquisition().previous_prog();
    run_for(30);
    QCOMPARE(frequencies(), plan_frequencies({0, 2, 0, 2, 3}));
    QCOMPARE(progress_.mid(2), (QList<QPair<int, int>>{{1, 3}, {2, 3}, {3, 3}, {0, 0}}));
}

void AcquisitionTest::progress_is_that_of_the_plan_that_the_pass_is_in() {
    add_plan("A", {1, 1, 1});
    add_plan("B", {1, 1}, 1500);
    acquisition().group();
    // Without a pass there is nothing to take away from the status line.
    acquisition().next();
    acquisition().previous();
    QCOMPARE(progress_, (QList<QPair<int, int>>()));
    acquisition().multiple_acq();
    run_for(1.5);
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 3}}));
    acquisition().next();
    QCOMPARE(progress_.mid(1), (QList<QPair<int, int>>{{0, 0}}));
    run_for(30);
    QCOMPARE(frequencies(), QStringList({"1000.0", "1500.0", "1510.0"}));
    QCOMPARE(progress_.mid(2), (QList<QPair<int, int>>{{1, 2}, {2, 2}, {0, 0}}));
}

void AcquisitionTest::progress_counts_the_programs_as_they_are() {
    add_plan("A", {1, 0, 0, 1});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(1.5);
    // The plan screen monitors another program while the pass runs.
    db::Recordset set = f_->database().of_plan("programmi", "A");
    set.find_first("pg_num", "002");
    realtime::RealtimeFixture::change_row(set, {{"monitor_state", 1}});
    run_for(30);
    QCOMPARE(frequencies(), plan_frequencies({0, 2, 3}));
    QCOMPARE(progress_, (QList<QPair<int, int>>{{1, 2}, {2, 3}, {3, 3}, {0, 0}}));
}

void AcquisitionTest::a_level_that_the_mode_loses_is_told_once() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->values["SYMBRATEQPSK?"] = "27500";
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    panel().meas_stated[realtime::kDcpLevel] = true;
    f_->rules.modes.digitalmode();
    acquisition().single_acq();
    QCOMPARE(page().cells(0)[4], QString("61.5"));
    QCOMPARE(told, QStringList());
    f_->rules.modes.Form_Activate();
    for (int row = 1; row < 3; ++row) {
        acquisition().single_acq();
        QCOMPARE(page().cells(row)[4], QString());
        QCOMPARE(told, QStringList("Level not kept: choose QPSK again"));
    }
    f_->program.corrected.keep_mode = true;
    f_->rules.modes.Form_Activate();
    acquisition().single_acq();
    QCOMPARE(page().cells(3)[4], QString("61.5"));
}

void AcquisitionTest::a_bandwidth_that_is_not_that_of_the_program_is_told() {
    const QString other("Bandwidth not that of the program: type it");
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    panel().meas_stated[realtime::kDcpLevel] = true;
    add_plan("A", {1});
    add_program("A", 1, {{"sat_ad", 1}, {"satchbw", 8}});
    add_program("A", 2, {{"sat_ad", 1}, {"satchbw", 27}});
    add_program("A", 3, {{"sat_ad", 1}, {"satchbw", 40}});
    acquisition().group();
    panel().chbws = "8";
    acquisition().multiple_acq();
    run_for(2.5);
    QCOMPARE(told, QStringList());
    run_for(60);
    QCOMPARE(told, QStringList(other));
    QCOMPARE(f_->commands().filter("CHBW"), QStringList({"CHBW 08", "CHBW 08", "CHBW 08"}));
    f_->program.costs.begin_anew();
    f_->program.corrected.plan_width = true;
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList(other));
    QCOMPARE(f_->commands().filter("CHBW"), QStringList({"CHBW 08", "CHBW 27", "CHBW 36"}));
}

void AcquisitionTest::a_program_without_a_bandwidth_has_no_other_one() {
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    panel().meas_stated[realtime::kDcpLevel] = true;
    add_plan("A", {1});
    add_program("A", 1, {{"sat_ad", 1}});
    acquisition().group();
    panel().chbws = "27";
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(f_->commands().filter("CHBW"), QStringList("CHBW 27"));
    QCOMPARE(told, QStringList());
}

void AcquisitionTest::an_antenna_that_is_not_switched_is_told() {
    const QString not_switched(
        "Antenna not switched for each program: tick Tune everything in a pass (--full-tune)");
    QStringList told;
    f_->program.costs.on_cost = [&](const Bilingual& text) { told += text.english; };
    panel().meas_statea[realtime::kLevel] = true;
    add_plan("A", {1});
    add_program("A", 1, {{"lnb_volt", 1}});
    add_program("A", 2, {{"lnb_volt", 1}});
    acquisition().group();
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList());
    add_program("A", 3, {{"lnb_volt", 2}});
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList(not_switched));
    told.clear();
    f_->program.costs.begin_anew();
    f_->program.corrected.full_tune = true;
    acquisition().multiple_acq();
    run_for(60);
    QCOMPARE(told, QStringList());
}

}  // namespace m47::acquisition
