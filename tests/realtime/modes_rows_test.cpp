// SPDX-License-Identifier: GPL-3.0-or-later
// The rows that a recall finds, and how it ends.
#include "modes_test.h"

namespace m47::realtime {

void ModesTest::empty_fields() {
    QMap<QString, QVariant> empty = whole_program();
    for (QVariant& value : empty) value = QVariant();
    empty["monitor_state"] = 1;
    change_program(empty);
    change_configuration({{"loc_osc1", QVariant()}, {"loc_osc2", QVariant()}});
    panel().locopt = {false, true};
    modes().crea_records_realtime();
    QCOMPARE(f_->port.opens, 0);
    // No oscillator is named, no presentation asked for; the texts are empty.
    QCOMPARE(everything_shown(),
             (QStringList{"", "", "10600", "", "0", "1", "1", "0", "0", "", "",
                          "", "", "",      "", "",  "",  "",  "",  "",  "", analog_frames()}));
    QVERIFY(!state().recall_in_progress);
    // The cycle of such a program brings what it needs into its range.
    panel().meas_statea[kLevel] = true;
    f_->values["LEVANL?"] = "L 58.3";
    f_->rules.measure_once();
    QCOMPARE(f_->commands(), (QStringList{"MEASURE", "FREQ 11520", "ATTEN 6", "LEVANL?"}));
    QCOMPARE(f_->rules.page.measurements(), 1);
}

void ModesTest::numbers_of_the_database_data() {
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("decimal") << QVariant(1234.5) << "1234.5";
    QTest::newRow("whole") << QVariant(1234.0) << "1234";
    QTest::newRow("large") << QVariant(12345678.9) << "12345678.9";
    QTest::newRow("text with a point") << QVariant("1234.5 MHz") << "1234.5";
    QTest::newRow("text with a comma") << QVariant("1234,5") << "1234.5";
    QTest::newRow("no number") << QVariant("what") << "0";
}

void ModesTest::numbers_of_the_database() {
    QFETCH(QVariant, stored);
    QFETCH(QString, shown);
    const SystemLocale italian(QLocale::Italian);
    panel().locopt = {false, true};
    change_program({{"frequenza", stored}});
    change_configuration({{"loc_osc1", stored}});
    modes().crea_records_realtime();
    QCOMPARE(panel().fsat, shown);
    QCOMPARE(panel().ol_freq, shown);
}

void ModesTest::plan_name_with_quotes_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("apostrophe") << "L'AQUILA";
    QTest::newRow("double quote") << "DISH 30\"";
    QTest::newRow("both") << "'A\" OR \"1\"=\"1";
    QTest::newRow("accents") << QStringLiteral("CITT\u00c0");
    QTest::newRow("empty") << "";
}

void ModesTest::plan_name_with_quotes() {
    QFETCH(QString, name);
    auto program = whole_program();
    program["pg_num"] = "042";
    add_plan(name, program);
    panel().grp_name = name;
    modes().crea_records_realtime();
    QCOMPARE(panel().prog_num, QString("042"));
    QCOMPARE(modes().rs_programs->count(), 1);
    QCOMPARE(modes().rs_config->count(), 1);
}

void ModesTest::plan_that_does_not_exist() {
    panel().prog_num = "before";
    const QStringList before = everything_shown();
    for (const char* name : {"PLAN 2", "", "PLAN 1\" OR \"1\"=\"1"}) {
        panel().grp_name = name;
        QVERIFY2(faults([this] { modes().crea_records_realtime(); }), name);
        QCOMPARE(everything_shown(), before);
        QVERIFY(!state().recall_in_progress);
    }
    QCOMPARE(f_->port.opens, 0);
}

void ModesTest::plan_named_in_other_letters() {
    add_plan("PLAN 2", whole_program());
    for (const char* name : {"PLAN 2 ", " plan 2"}) {
        panel().grp_name = name;
        modes().crea_records_realtime();
        QCOMPARE(modes().rs_programs->count(), 1);
        QCOMPARE(modes().rs_config->count(), 1);
    }
}

void ModesTest::plan_without_a_configuration() {
    auto program = whole_program();
    program["nome"] = "PLAN 2";
    RealtimeFixture::add_row(f_->database().programmi(), program);
    panel().grp_name = "PLAN 2";
    const QStringList before = everything_shown();
    QVERIFY(faults([this] { modes().crea_records_realtime(); }));
    QCOMPARE(everything_shown(), before);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::first_program_of_a_plan() {
    add_plan("PLAN 2", whole_program());
    for (const char* number : {"001", "002"}) {
        auto program = whole_program();
        program["nome"] = "PLAN 1";
        program["pg_num"] = number;
        RealtimeFixture::add_row(f_->database().programmi(), program);
    }
    modes().crea_records_realtime();
    QCOMPARE(modes().rs_programs->count(), 3);
    QCOMPARE(modes().rs_programs->text("pg_num"), QString(" 007 "));
    modes().rs_programs->move_next();
    modes().mostra_record_realtime();
    QCOMPARE(panel().prog_num, QString("001"));
    // Opened anew, the plan is back at its first program.
    modes().crea_records_realtime();
    QCOMPARE(panel().prog_num, QString("007"));
    QVERIFY(!modes().rs_config->end_of_set());
}

void ModesTest::nothing_recalled_before_a_plan_is_open() {
    const QStringList before = everything_shown();
    modes().mostra_record_realtime();
    QCOMPARE(everything_shown(), before);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::behind_the_last_program() {
    modes().crea_records_realtime();
    modes().rs_programs->move_next();
    QVERIFY(modes().rs_programs->end_of_set());
    panel().prog_num = "before";
    const QStringList before = everything_shown();
    modes().mostra_record_realtime();
    QCOMPARE(everything_shown(), before);
    QVERIFY(!state().recall_in_progress);
}

void ModesTest::recall_that_fails_in_the_middle() {
    panel().locopt = {false, true};
    modes().crea_records_realtime();
    // The program is there, the plan's oscillators are not.
    modes().rs_config->move_next();
    change_program({{"pg_num", "008"}, {"frequenza", 12000}, {"lnb_volt", 2}, {"lev_min", "99"}});
    modes().rs_programs->move_first();
    modes().mostra_record_realtime();
    QVERIFY(!state().recall_in_progress);
    // The controls are as far as they were set.
    QCOMPARE(panel().prog_num, QString("008"));
    QCOMPARE(panel().fsat, QString("12000"));
    QCOMPARE(panel().ol_freq, QString("9750"));
    QCOMPARE(panel().satlnb_state, 1);
    QCOMPARE(panel().lev_mina, QString("35"));
    // The tuning controls send again.
    f_->rules.tuning.k22_state_Click(0);
    QCOMPARE(f_->commands(), QStringList{"TONE22K 01"});
}

void ModesTest::recall_that_loses_the_link() {
    f_->refuse("FREQ?");
    change_program({{"sat_ad", 1}});
    modes().crea_records_realtime();
    QCOMPARE(f_->commands(), (QStringList{"FREQ?", "FREQ?", "FREQ?"}));
    QVERIFY(!f_->link.port_connected);
    QVERIFY(!state().recall_in_progress);
    QCOMPARE(panel().prog_num, QString("007"));
    QCOMPARE(panel().srqpsk_txt, QString("22000"));
    QCOMPARE(panel().lev_mina, QString("35"));
    QCOMPARE(frames(), digital_frames());
}

void ModesTest::recall_ended_by_the_user() {
    change_program({{"sat_ad", 1}});
    bool ends = false;
    f_->on_command = [&](const QByteArray& command) { ends = command == "FREQ?"; };
    f_->link.interrupted = [&] { return ends; };
    QVERIFY_THROWS_EXCEPTION(Interrupted, modes().crea_records_realtime());
    QCOMPARE(f_->commands(), QStringList{"FREQ?"});
    QVERIFY(!state().recall_in_progress);
}

}  // namespace m47::realtime
