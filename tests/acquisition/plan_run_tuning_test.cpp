// SPDX-License-Identifier: GPL-3.0-or-later
// What a run tunes, and which plan it takes.
#include "plan_run_test.h"

namespace m47::acquisition {

void PlanRunTest::full_tune() {
    db::Recordset& set = *f_->rules.modes.rs_programs;
    set.move_first();
    realtime::RealtimeFixture::change_row(set, {{"loc_osc", false},
                                                {"loc_osc0", 1},
                                                {"frequenza", 11778},
                                                {"lnb_volt", 2},
                                                {"K22", 1},
                                                {"diseqc_cmd", 37},
                                                {"diseqc_cmd2", 3}});
    f_->program.corrected.full_tune = true;
    f_->values["FREQ?"] = "11778";
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(begun_.mid(0, 12), QStringList({"LOCOSC 2 10600", "LOCOSC 2", "LNB 01", "LNVOLT 18",
                                             "TONE22K 01", "DISEQC 37", "DISEQC 03", "MEASURE",
                                             "FREQ 11778", "ATTEN 6", "LEVANL?", "LOCOSC 0"}));
}

void PlanRunTest::full_tune_leaves_out_what_is_none() {
    db::Recordset& set = *f_->rules.modes.rs_programs;
    set.move_first();
    realtime::RealtimeFixture::change_row(set, {{"lnb_volt", 0}, {"diseqc_cmd", 73}});
    f_->program.corrected.full_tune = true;
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(begun_.mid(0, 11),
             QStringList({"LOCOSC 0", "LNB 00", "TONE22K 00", "MEASURE", "FREQ 1000.0", "ATTEN 6",
                          "LEVANL?", "LOCOSC 0", "LNB 01", "LNVOLT 13", "TONE22K 00"}));
    QCOMPARE(begun_.filter("DISEQC"), QStringList());
}

void PlanRunTest::full_tune_checks_against_the_oscillator_it_sends_data() {
    QTest::addColumn<QVariant>("entry");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QString>("oscillator");
    QTest::newRow("third") << QVariant(2) << 11000.0
                           << QStringList{"LOCOSC 3 09750", "LOCOSC 3", "FREQ 11000"} << "9750";
    QTest::newRow("fourth, C band")
        << QVariant(3) << 4000.0 << QStringList{"LOCOSC 4 05150", "LOCOSC 4", "FREQ 04000"}
        << "5150";
    QTest::newRow("second") << QVariant(1) << 12000.0
                            << QStringList{"LOCOSC 2 10600", "LOCOSC 2", "FREQ 12000"} << "10600";
    for (const QVariant& none : {QVariant(), QVariant(7), QVariant(-1)})
        QTest::addRow("none: %s", qPrintable(none.toString()))
            << none << 11200.0 << QStringList{"LOCOSC 1 09800", "LOCOSC 1", "FREQ 11200"} << "9800";
}

void PlanRunTest::full_tune_checks_against_the_oscillator_it_sends() {
    QFETCH(QVariant, entry);
    QFETCH(double, frequency);
    QFETCH(QStringList, sent);
    QFETCH(QString, oscillator);
    db::Recordset& set = *f_->rules.modes.rs_programs;
    set.move_first();
    realtime::RealtimeFixture::change_row(
        set, {{"loc_osc", false}, {"loc_osc0", entry}, {"frequenza", frequency}});
    realtime::RealtimeFixture::change_row(
        *f_->rules.modes.rs_config, {{"loc_osc1", 9800}, {"loc_osc3", 9750}, {"loc_osc4", 5150}});
    f_->program.corrected.full_tune = true;
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(begun_.mid(0, 2) + begun_.filter("FREQ").mid(0, 1), sent);
    QCOMPARE(f_->rules.page.cells(0)[2], sent.constLast().section(u' ', 1));
    QCOMPARE(f_->rules.page.cells(0)[3], oscillator);
    QCOMPARE(measured().size(), 3);
    QVERIFY2(remarks_.isEmpty(), qPrintable(remarks_.join(u'|')));
}

void PlanRunTest::full_tune_sends_the_bandwidth_of_the_program() {
    f_->values["ATTEN?"] = "2";
    f_->values["LEVDCP?"] = "P 61.5";
    f_->panel().meas_stated[realtime::kDcpLevel] = true;
    f_->panel().chbws = "36";
    db::Recordset& set = *f_->rules.modes.rs_programs;
    set.move_first();
    realtime::RealtimeFixture::change_row(set, {{"sat_ad", 1}, {"satchbw", 8}});
    f_->program.corrected.full_tune = true;
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(begun_.filter("CHBW"), QStringList{"CHBW 08"});
}

void PlanRunTest::a_program_without_its_oscillator_is_left_out_and_told() {
    db::Recordset& set = *f_->rules.modes.rs_programs;
    set.move_first();
    realtime::RealtimeFixture::change_row(
        set, {{"loc_osc", false}, {"loc_osc0", 2}, {"frequenza", 11000}});
    f_->program.corrected.full_tune = true;
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(measured(), QStringList({"1010", "1020"}));
    QCOMPARE(begun_.filter("LOCOSC 3"), QStringList());
    QVERIFY(f_->link.port_connected);
    QCOMPARE(remarks_.size(), 1);
    QVERIFY2(remarks_[0].endsWith(": Program 000 was not measured: oscillator 3 of the plan is not "
                                  "set"),
             qPrintable(remarks_[0]));
}

void PlanRunTest::a_program_that_the_meter_refuses_is_left_out() {
    f_->raw["FREQ 1010.0"] = "FREQ 1010.0\rERROR\r";
    QCOMPARE(make_run({}).run(), PlanRun::End::link_lost);
    QCOMPARE(measured(), QStringList("1000"));
    QCOMPARE(remarks_, QStringList());

    for (const int passes : {1, 2}) {
        begun_.clear();
        remarks_.clear();
        f_->rules.page.clear();
        f_->link.port_connected = true;
        PlanRun run = make_run({.passes = passes, .reconnect = true});
        run.connect = [this] { return f_->link.port_connected = true; };
        QCOMPARE(run.run(), PlanRun::End::done);
        QVERIFY(run.incomplete());
        QStringList rows;
        for (int pass = 0; pass < passes; ++pass) rows += {"1000", "1020"};
        QCOMPARE(measured(), rows);
        // Three exchanges a pass, each of three attempts; then the pass goes on without it.
        QCOMPARE(begun_.filter("FREQ 1010.0").size(), 9 * passes);
        QCOMPARE(remarks_.filter("left out").size(), passes);
        QVERIFY2(remarks_[0].contains("trying to connect again: the meter refused FREQ 1010.0 "
                                      "three times; a frequency of the sky needs") &&
                     remarks_[0].contains("--full-tune"),
                 qPrintable(remarks_[0]));
        QVERIFY2(remarks_.filter("left out")[0].endsWith(
                     ": program 001 was left out of pass 1: the meter refused FREQ 1010.0 at each "
                     "of 3 tries"),
                 qPrintable(remarks_.join('|')));
    }
}

void PlanRunTest::each_program_has_a_noise_frequency_of_its_own() {
    f_->program.corrected.complete = true;
    f_->panel().meas_statea[realtime::kLevel] = false;
    f_->panel().meas_statea[realtime::kNoiseAnalog] = true;
    f_->panel().noise_freqa = "1500";
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QStringList wanted;
    for (const char* frequency : {"1000.0", "1010.0", "1020.0"})
        for (int time = 0; time < 2; ++time) wanted += QStringLiteral("FREQ ") + frequency;
    QCOMPARE(begun_.filter("FREQ"), wanted);
}

void PlanRunTest::without_full_tune_nothing_more_is_sent() {
    QCOMPARE(make_run({}).run(), PlanRun::End::done);
    QCOMPARE(begun_.filter("LOCOSC") + begun_.filter("LNB") + begun_.filter("TONE"), QStringList());
}

void PlanRunTest::plans_are_chosen_by_their_name() {
    QVERIFY(!f_->rules.plans.choose_plan("Q"));
    QVERIFY(f_->rules.plans.choose_plan(" p "));
    QCOMPARE(f_->panel().grp_name, QString("P"));
    QCOMPARE(f_->rules.plans.monitored_programs(), 3);
    // Other programs have written names in their own letters; the plan screen shows those plans.
    realtime::RealtimeFixture::add_row(f_->database().gruppo(), {{"nome", " Roof"}});
    realtime::RealtimeFixture::add_row(f_->database().configurazione(), {{"nome", "Roof"}});
    add_program(7, {{"nome", "Roof"}});
    for (const char* name : {"Roof", "roof ", "ROOF"}) {
        QVERIFY2(f_->rules.plans.choose_plan(name), name);
        QCOMPARE(f_->rules.plans.monitored_programs(), 1);
    }
    QCOMPARE(f_->port.opens, 0);
}

}  // namespace m47::acquisition
