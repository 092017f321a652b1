// SPDX-License-Identifier: GPL-3.0-or-later
// Programs and plans that are copied, imported and corrected.
#include "sets_test.h"

namespace m47::plans {

void SetsTest::an_import_replaces_the_empty_program() {
    const ImportFile file = parse_import_file("frequenza,oscillator\n11000,9750\n12000,10600\n", 0);
    sets_->apply_import(
        preview_import(file.candidates, sets_->programs(), sets_->oscillators(), 0));
    QCOMPARE(numbers(), QStringList({"000 ", "001 "}));
    QCOMPARE(sets_->program().frequenza, QStringLiteral("11000"));
    QCOMPARE(sets_->oscillators(),
             programme::Oscillators({QStringLiteral("9750"), QStringLiteral("10600")}));
    QCOMPARE(sql(QStringLiteral("SELECT frequenza FROM programmi")),
             QStringList({"11000", "12000"}));
}

void SetsTest::the_code_rate_of_a_transponder_goes_along() {
    const auto import = [this](const QByteArray& table) {
        sets_->apply_import(preview_import(parse_import_file(table, 0).candidates,
                                           sets_->programs(), sets_->oscillators(), 0,
                                           TakenNumbers::replace));
    };
    import("S 11778000 V 27500000 3/4\nS 11836000 H 27500000 AUTO\n");
    const auto codes = [this] {
        return sql(
            QStringLiteral("SELECT nome || ' ' || frequenza || ' ' || lnb_volt || ' ' || code "
                           "FROM transponder_codes ORDER BY nome"));
    };
    QCOMPARE(codes(), QStringList({"PLAN 1 11778.0 1 3/4"}));
    QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = "
                                "'transponder_names'")),
             QStringList({"0"}));
    QVERIFY(sets_->copy_plan(QStringLiteral("B")));
    QCOMPARE(codes(), QStringList({"B 11778.0 1 3/4", "PLAN 1 11778.0 1 3/4"}));
    sets_->first_program();
    QCOMPARE(sets_->copy_program(QStringLiteral("C")), ImportProblem::none);
    QCOMPARE(codes(), QStringList({"B 11778.0 1 3/4", "C 11778.0 1 3/4", "PLAN 1 11778.0 1 3/4"}));
    // A table that knows it no longer takes it away.
    import("S 11778000 V 27500000 AUTO\n");
    QCOMPARE(codes(), QStringList({"B 11778.0 1 3/4", "PLAN 1 11778.0 1 3/4"}));
}

void SetsTest::an_import_replaces_programs_where_they_stand() {
    QCOMPARE(store(tuned("7"), true), Clash::none);
    QCOMPARE(store(tuned("8"), false), Clash::none);
    const QStringList rows = sql(QStringLiteral("SELECT rowid || ' ' || pg_num FROM programmi"));
    const ImportFile file = parse_import_file("pg_num,frequenza\n9,1300\n8,1400\n", 0);
    const ImportPreview preview = preview_import(file.candidates, sets_->programs(),
                                                 sets_->oscillators(), 0, TakenNumbers::replace);
    const programme::ProgramRecord before = sets_->programs()[0];
    sets_->apply_import(preview);
    QCOMPARE(sets_->programs().size(), std::size_t(3));
    QCOMPARE(sets_->programs()[0], before);
    QCOMPARE(sets_->programs()[1].frequenza, QStringLiteral("1400.0"));
    QCOMPARE(sql(QStringLiteral("SELECT rowid || ' ' || pg_num FROM programmi")).mid(0, 2), rows);
    // What it was to replace is no longer so.
    M47_VERIFY_FAULT(sets_->apply_import(preview), "meanwhile");
    QCOMPARE(sets_->programs().size(), std::size_t(3));
}

void SetsTest::a_plan_is_copied_field_by_field() {
    sql(QStringLiteral("UPDATE configurazione SET loc_osc3 = 5150, user_sc0 = 'A'"));
    sql(QStringLiteral("UPDATE programmi SET frequenza = 503.25, lnb_volt = NULL"));
    sets_->copy_plan(QStringLiteral("B"));
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM (SELECT loc_osc1, loc_osc3, user_sc0 "
                                "FROM configurazione UNION SELECT loc_osc1, loc_osc3, "
                                "user_sc0 FROM configurazione)")),
             QStringList{"1"});
    QCOMPARE(sql(QStringLiteral("SELECT frequenza || coalesce(lnb_volt, 'none') FROM "
                                "programmi WHERE nome = 'B'")),
             QStringList{"503.25none"});
}

void SetsTest::a_program_is_copied_with_its_oscillator() {
    programme::ProgramRecord record = tuned("7", "12000");
    record.loc_osc = false;
    record.loc_osc0 = 3;
    record.logger_pos = QStringLiteral("05");
    record.logger_state = true;
    QString oscillator = QStringLiteral("10600");
    QCOMPARE(sets_->store_record(record, oscillator, 0, true), Clash::none);
    // Within the plan: another number, the next position.
    QCOMPARE(sets_->copy_program(QStringLiteral("PLAN 1")), ImportProblem::none);
    QCOMPARE(numbers(), QStringList({"007 05", "000 06"}));
    QCOMPARE(sets_->program().pg_num, QStringLiteral("000"));
    QVERIFY(sets_->program().logger_state);
    // Into a plan that does not exist yet.
    sets_->first_program();
    QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    QCOMPARE(numbers(), QStringList{"007 05"});
    QCOMPARE(sets_->program(), record);
    QCOMPARE(sets_->oscillators()[3], QStringLiteral("10600"));
}

void SetsTest::a_copied_program_keeps_what_no_box_would_take() {
    // Limits in dBuV while another unit is in force, and what other programs have written.
    sql(
        QStringLiteral("UPDATE programmi SET pg_num = '7', frequenza = 503.25, loc_osc = -1, "
                       "lev_min = '45', lev_max = '75', noise_min = '50', satchbw = 55, "
                       "diseqc_cmd = 200, lnb_volt = NULL, qpsk_symbolrate = ''"));
    sets_->first_plan();
    const auto kept = [this](const char* plan) {
        return sql(QStringLiteral("SELECT pg_num || ' ' || frequenza || ' ' || loc_osc || ' ' "
                                  "|| lev_min || ' ' || lev_max || ' ' || noise_min || ' ' || "
                                  "satchbw || ' ' || diseqc_cmd || ' ' || coalesce(lnb_volt, "
                                  "'none') || ' ' || qpsk_symbolrate || coalesce(mer_min, "
                                  "'none') FROM programmi WHERE nome = '%1'")
                       .arg(QLatin1String(plan)));
    };
    QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
    QCOMPARE(kept("B"), QStringList{"7 503.25 -1 45 75 50 55.0 200 none none"});
    QCOMPARE(kept("PLAN 1"), kept("B"));
}

void SetsTest::a_program_that_nobody_has_stored_is_copied_empty() {
    QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
    QCOMPARE(sets_->plan(), QStringLiteral("B"));
    QVERIFY(programme::is_blank(sets_->program()));
    QCOMPARE(numbers(), QStringList{"- -"});
}

void SetsTest::an_empty_program_makes_room_in_another_plan_and_not_in_its_own() {
    QCOMPARE(sets_->copy_program(QStringLiteral("PLAN 1")), ImportProblem::none);
    QCOMPARE(numbers().size(), 2);
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(numbers().size(), 1);
    sets_->first_plan();
    QCOMPARE(store(tuned("7"), true), Clash::none);
    QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::none);
    QCOMPARE(numbers(), QStringList{"007 "});
}

void SetsTest::the_same_oscillator_again_checks_no_program() {
    const CorrectedBehaviour all{.check_all = true};
    PlanSets checking(*database_, all);
    QStringList told;
    checking.on_checked = [&](const QStringList& numbers) { told += numbers; };
    checking.store_oscloc(0, QStringLiteral("9750"));
    sql(
        QStringLiteral("UPDATE programmi SET pg_num = '001', frequenza = 20000, loc_osc = 0, "
                       "loc_osc0 = 0"));
    checking.store_oscloc(0, QStringLiteral("9750.0"));
    checking.store_oscloc(0, QString());
    QCOMPARE(told, QStringList());
    checking.store_oscloc(0, QStringLiteral("10600"));
    QCOMPARE(told, QStringList{"001"});
}

void SetsTest::an_oscillator_alone_is_stored_and_its_programs_are_read_anew() {
    const CorrectedBehaviour all{.check_all = true};
    PlanSets checking(*database_, all);
    programme::ProgramRecord record = tuned("1", "11000");
    record.loc_osc = false;
    QString oscillator = QStringLiteral("9750");
    QCOMPARE(checking.store_record(record, oscillator, 0, true), Clash::none);
    StoredProgram known = checking.stored();
    checking.store_oscloc(record, QStringLiteral("5150"), known);
    QCOMPARE(sql(QStringLiteral("SELECT loc_osc1 FROM configurazione")), QStringList{"5150"});
    const QString stored = sql(QStringLiteral("SELECT frequenza FROM programmi")).constFirst();
    QVERIFY(stored != QStringLiteral("11000.0"));
    QCOMPARE(link::typed_value(checking.program().frequenza), stored.toDouble());
    QVERIFY(known == checking.stored());
}

void SetsTest::a_program_is_not_copied_into_a_full_plan() {
    QCOMPARE(store(tuned("5"), true), Clash::none);
    sets_->add_new(QStringLiteral("B"));
    QCOMPARE(store(tuned("0"), true), Clash::none);
    sql(
        QStringLiteral("WITH RECURSIVE n(k) AS (SELECT 1 UNION ALL SELECT k + 1 FROM n WHERE "
                       "k < 99) INSERT INTO programmi (nome, pg_num) SELECT 'B', k FROM n"));
    sets_->first_plan();
    QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::no_number);
    QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi WHERE nome = 'B'")),
             QStringList{"100"});
}

void SetsTest::a_program_without_room_is_not_copied() {
    programme::ProgramRecord record = tuned("7", "12000");
    record.loc_osc = false;
    QString oscillator = QStringLiteral("10600");
    QCOMPARE(sets_->store_record(record, oscillator, 0, true), Clash::none);
    sets_->add_new(QStringLiteral("B"));
    sql(
        QStringLiteral("UPDATE configurazione SET loc_osc1 = 4000, loc_osc2 = 4001, loc_osc3 "
                       "= 4002, loc_osc4 = 4003 WHERE nome = 'B'"));
    sets_->first_plan();
    QCOMPARE(sets_->copy_program(QStringLiteral("B")), ImportProblem::no_oscillator);
    QCOMPARE(sets_->plan(), QStringLiteral("PLAN 1"));
    QCOMPARE(sql(QStringLiteral("SELECT count(*) FROM programmi WHERE nome = 'B'")),
             QStringList{"1"});
}

}  // namespace m47::plans
