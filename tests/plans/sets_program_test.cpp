// SPDX-License-Identifier: GPL-3.0-or-later
// Programs of a plan, their numbers and places.
#include "sets_test.h"

namespace m47::plans {

void SetsTest::a_new_program_takes_the_next_position() {
    QCOMPARE(store(tuned("5"), true), Clash::none);
    QCOMPARE(store(tuned("6"), false), Clash::none);
    QCOMPARE(store(tuned("7"), false), Clash::none);
    QCOMPARE(numbers(), QStringList({"005 ", "006 01", "007 02"}));
}

void SetsTest::behind_the_last_position_there_is_none() {
    programme::ProgramRecord last = tuned("1");
    last.logger_pos = QStringLiteral("41");
    QCOMPARE(store(last, true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    QCOMPARE(numbers(), QStringList({"001 41", "002 "}));
}

void SetsTest::a_number_comes_once_in_a_plan() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("1"), false), Clash::number);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    // Over the first, with the number of the second.
    sets_->first_program();
    QCOMPARE(store(tuned("2", "1500"), true), Clash::number);
    QCOMPARE(numbers(), QStringList({"001 ", "002 01"}));
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(store(tuned("1"), true), Clash::none);
}

void SetsTest::a_position_comes_once_in_a_plan_data() {
    QTest::addColumn<QString>("number");
    QTest::newRow("same number") << "001";
    QTest::newRow("a number new to the plan") << "050";
}

void SetsTest::a_position_comes_once_in_a_plan() {
    QFETCH(QString, number);
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    sets_->first_program();
    programme::ProgramRecord first = sets_->program();
    first.pg_num = number;
    first.logger_pos = QStringLiteral("01");
    QCOMPARE(store(first, true), Clash::logger_position);
    QCOMPARE(numbers(), QStringList({"001 ", "002 01"}));
}

void SetsTest::a_program_keeps_its_own_position_under_a_new_number() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    sets_->last_program();
    programme::ProgramRecord program = sets_->program();
    program.pg_num = QStringLiteral("33");
    QCOMPARE(store(program, true), Clash::none);
    QCOMPARE(numbers(), QStringList({"001 ", "033 01"}));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("033"));
}

void SetsTest::what_is_stored_is_corrected_and_comes_back() {
    programme::ProgramRecord record = tuned("150", "10000");
    record.loc_osc = false;
    record.loc_osc0 = 2;
    record.qpsk_symbolrate = QStringLiteral(" 28000 ");
    record.chber_min = QStringLiteral("-1");
    record.monitor_state = true;
    QString oscillator = QStringLiteral("9750");
    QCOMPARE(sets_->store_record(record, oscillator, 0, true), Clash::none);
    QCOMPARE(record.frequenza, QStringLiteral("10670"));
    sets_->crea_records(QStringLiteral(" plan 1 "));
    programme::ProgramRecord expected = record;
    expected.qpsk_symbolrate = QStringLiteral("28000");
    QCOMPARE(sets_->program(), expected);
    QCOMPARE(sets_->oscillators()[2], QStringLiteral("9750"));
    QCOMPARE(sets_->oscillators()[0], QString());
    QCOMPARE(sql(QStringLiteral("SELECT typeof(frequenza) || typeof(satchbw) || loc_osc || "
                                "chber_min FROM programmi")),
             QStringList{"realreal01E-8"});
}

void SetsTest::without_an_oscillator_frequency_and_oscillator_stay_empty() {
    programme::ProgramRecord record = sets_->program();
    QString none;
    QCOMPARE(sets_->store_record(record, none, 0, true), Clash::none);
    QCOMPARE(sql(QStringLiteral("SELECT frequenza IS NULL FROM programmi")), QStringList{"1"});
    QCOMPARE(sql(QStringLiteral("SELECT loc_osc1 IS NULL FROM configurazione")), QStringList{"1"});
    QCOMPARE(sets_->program().frequenza, QString());
}

void SetsTest::the_last_program_stays() {
    sets_->delete_program();
    QCOMPARE(numbers().size(), 1);
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    QVERIFY(sets_->can_delete_program());
    sets_->last_program();
    sets_->delete_program();
    QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
    QVERIFY(!sets_->can_delete_program());
}

void SetsTest::programs_are_walked_to_both_ends() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    QVERIFY(sets_->next_program());
    QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
    QVERIFY(!sets_->next_program());
    QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
    QVERIFY(sets_->previous_program());
    QVERIFY(!sets_->previous_program());
    QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
}

void SetsTest::a_plan_without_programs_is_tolerated() {
    sql(QStringLiteral("DELETE FROM programmi"));
    sets_->crea_records(sets_->plan());
    QVERIFY(programme::is_blank(sets_->program()));
    QVERIFY(!sets_->next_program());
    QVERIFY(!sets_->previous_program());
    QVERIFY(!sets_->can_delete_program());
    M47_VERIFY_FAULT(store(tuned("1"), true), "no current record");
    QCOMPARE(store(tuned("1"), false), Clash::none);
    QCOMPARE(numbers(), QStringList{"001 01"});
}

void SetsTest::without_a_plan_nothing_is_written() {
    const ImportPreview import =
        preview_import(parse_import_file("frequenza\n1000\n", 0).candidates, {}, {}, 0);
    for (const char* table : {"gruppo", "programmi", "configurazione"})
        sql(QStringLiteral("DELETE FROM %1").arg(QLatin1String(table)));
    sets_->first_plan();
    QVERIFY(!sets_->has_current_plan());
    M47_VERIFY_FAULT(store(tuned("1"), false), "there is no plan");
    M47_VERIFY_FAULT(store(tuned("1"), true), "there is no plan");
    M47_VERIFY_FAULT(sets_->store_oscloc(0, "9750"), "there is no plan");
    M47_VERIFY_FAULT(sets_->apply_import(import), "there is no plan");
    M47_VERIFY_FAULT(sets_->copy_plan("X"), "there is no plan");
    M47_VERIFY_FAULT(sets_->copy_program("X"), "there is no plan");
    sets_->del_old();
    sets_->delete_program();
    QVERIFY(!sets_->next_plan());
    QVERIFY(!sets_->previous_plan());
    QCOMPARE(sql(QStringLiteral("SELECT nome FROM gruppo UNION ALL SELECT nome FROM programmi "
                                "UNION ALL SELECT nome FROM configurazione")),
             QStringList());
    sets_->add_new(QStringLiteral("B"));
    QVERIFY(sets_->has_current_plan());
    QCOMPARE(store(tuned("1"), true), Clash::none);
}

void SetsTest::a_plan_that_another_program_has_deleted_takes_nothing() {
    sets_->add_new(QStringLiteral("B"));
    for (const char* table : {"gruppo", "programmi", "configurazione"})
        sql(QStringLiteral("DELETE FROM %1 WHERE nome = 'B'").arg(QLatin1String(table)));
    M47_VERIFY_FAULT(store(tuned("1"), false), "there is no plan");
    QCOMPARE(numbers(), QStringList());
    QVERIFY(sets_->refresh());
    QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
}

void SetsTest::a_plan_without_its_oscillators_gets_them_when_one_is_stored() {
    sql(QStringLiteral("DELETE FROM configurazione"));
    sets_->first_plan();
    sets_->store_oscloc(2, QStringLiteral("9750"));
    QCOMPARE(sets_->oscillators()[2], QStringLiteral("9750"));
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(sql(QStringLiteral("SELECT nome || loc_osc3 FROM configurazione")),
             QStringList{"PLAN 19750.0"});
}

void SetsTest::plans_that_others_add_and_delete_are_seen() {
    sql(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('B')"));
    QVERIFY(sets_->can_delete_plan());
    QVERIFY(sets_->next_plan());
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    sql(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('C')"));
    QVERIFY(sets_->next_plan());
    QCOMPARE(sets_->plan(), QStringLiteral("C"));
    QVERIFY(sets_->previous_plan());
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    sql(QStringLiteral("DELETE FROM gruppo WHERE nome <> 'B'"));
    QVERIFY(!sets_->can_delete_plan());
    QVERIFY(!sets_->next_plan());
    QVERIFY(!sets_->previous_plan());
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
}

void SetsTest::what_others_write_into_the_plan_is_read_anew() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    sets_->last_program();
    QVERIFY(!sets_->refresh());
    QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
    sql(QStringLiteral("UPDATE programmi SET lev_min = '50' WHERE pg_num = '001'"));
    QVERIFY(!sets_->refresh());
    sql(QStringLiteral("UPDATE programmi SET lev_min = '50' WHERE pg_num = '002'"));
    QVERIFY(sets_->refresh());
    QCOMPARE(sets_->program().lev_min, QStringLiteral("50"));
    sql(QStringLiteral("DELETE FROM programmi WHERE pg_num = '002'"));
    QVERIFY(sets_->refresh());
    QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
}

void SetsTest::a_plan_is_one_in_whatever_letters_its_rows_name_it() {
    sql(QStringLiteral("INSERT INTO gruppo (nome) VALUES ('roof '), ('città')"));
    sql(
        QStringLiteral("INSERT INTO programmi (nome, pg_num) VALUES ('Roof', '3'), (' ROOF', "
                       "'4'), ('Città', '5')"));
    sql(QStringLiteral("INSERT INTO configurazione (nome, loc_osc1) VALUES ('roof', 9750)"));
    QVERIFY(sets_->has_plan(QStringLiteral("ROOF")));
    QVERIFY(sets_->next_plan());
    QCOMPARE(sets_->plan(), QStringLiteral("ROOF"));
    QCOMPARE(sets_->programs().size(), std::size_t(2));
    QCOMPARE(sets_->oscillators()[0], QStringLiteral("9750"));
    QCOMPARE(store(tuned("6"), false), Clash::none);
    sets_->last_program();
    QCOMPARE(sets_->program().pg_num, QStringLiteral("006"));
    QVERIFY(sets_->next_plan());
    QCOMPARE(sets_->plan(), QStringLiteral("CITTÀ"));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("5"));
    QVERIFY(sets_->previous_plan());
    sets_->del_old();
    QCOMPARE(sql(QStringLiteral("SELECT nome FROM gruppo UNION ALL SELECT nome FROM programmi "
                                "UNION ALL SELECT nome FROM configurazione ORDER BY nome")),
             QStringList({"Città", "PLAN 1", "PLAN 1", "PLAN 1", "città"}));
}

void SetsTest::a_file_that_takes_nothing_keeps_everything_as_it_was() {
    QCOMPARE(store(tuned("1"), true), Clash::none);
    QCOMPARE(store(tuned("2"), false), Clash::none);
    sets_->last_program();
    const QByteArray before = db::content_of(db::database_in(folder_->path()));
    lock_file(true);
    M47_VERIFY_FAULT(store(tuned("3"), false), "readonly");
    M47_VERIFY_FAULT(store(tuned("2", "1500"), true), "readonly");
    M47_VERIFY_FAULT(sets_->add_new("B"), "readonly");
    M47_VERIFY_FAULT(sets_->copy_plan("B"), "readonly");
    M47_VERIFY_FAULT(sets_->copy_program("B"), "readonly");
    M47_VERIFY_FAULT(
        sets_->apply_import(preview_import(parse_import_file("frequenza\n1000\n", 0).candidates,
                                           sets_->programs(), {}, 0)),
        "readonly");
    lock_file(false);
    QCOMPARE(db::content_of(db::database_in(folder_->path())), before);
    QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("002"));
    QCOMPARE(sets_->program().frequenza, QStringLiteral("1000.0"));
}

void SetsTest::a_failure_half_way_leaves_no_half_plan() {
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(store(tuned("1"), true), Clash::none);
    sql(
        QStringLiteral("CREATE TRIGGER stop BEFORE INSERT ON programmi BEGIN SELECT "
                       "RAISE(ABORT, 'stopped'); END"));
    M47_VERIFY_FAULT(sets_->add_new("C"), "stopped");
    M47_VERIFY_FAULT(sets_->copy_plan("C"), "stopped");
    M47_VERIFY_FAULT(sets_->copy_program("C"), "stopped");
    M47_VERIFY_FAULT(store(tuned("2"), false), "stopped");
    sql(QStringLiteral("DROP TRIGGER stop"));
    sql(
        QStringLiteral("CREATE TRIGGER stop BEFORE DELETE ON programmi BEGIN SELECT "
                       "RAISE(ABORT, 'stopped'); END"));
    M47_VERIFY_FAULT(sets_->del_old(), "stopped");
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("001"));
    QCOMPARE(sql(QStringLiteral("SELECT nome FROM gruppo ORDER BY nome")),
             QStringList({"B", "PLAN 1"}));
    QCOMPARE(sql(QStringLiteral("SELECT nome FROM configurazione ORDER BY nome")),
             QStringList({"B", "PLAN 1"}));
    QCOMPARE(numbers(), QStringList{"001 "});
}

}  // namespace m47::plans
