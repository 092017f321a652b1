// SPDX-License-Identifier: GPL-3.0-or-later
// What the programs of a file find in the plan: numbers, oscillators and logger lines.
#include <QSet>
#include <ctime>

#include "import_choices.h"
#include "import_test.h"

namespace m47::plans {

void ImportTest::a_number_that_the_file_names_is_left_to_its_program() {
    const ImportPreview preview =
        into_empty_plan("pg_num,frequenza\n,1000\n0,1001\n001,1002\n,1003\n");
    QCOMPARE(one_line_each(preview), QStringList({"2 002 1000  added ", "3 000 1001  added ",
                                                  "4 001 1002  added ", "5 003 1003  added "}));
}

void ImportTest::clashes_are_left_out_and_named() {
    programme::ProgramRecord there = full_program();
    const ImportPreview preview = preview_import(
        parsed("pg_num,frequenza,logger_pos\n7,1000,\n8,1000,03\n9,1000,04\n9,1001,05\n"
               "10,1002,04\n,1003,\n"),
        {there}, ku_, 0);
    QCOMPARE(one_line_each(preview),
             QStringList({"2 007 1000  1 ", "3 008 1000  2 ", "4 009 1000  added ",
                          "5 009 1001  11 ", "6 010 1002  2 ", "7 000 1003  added "}));
    QVERIFY(!preview.replaces_blank);
    QCOMPARE(preview.oscillators, ku_);
    Texts texts;
    texts.load_messages(QString());
    QCOMPARE(import_problem_text(ImportProblem::number_taken, texts),
             QStringLiteral("The Programme in the data base already exist."));
    QCOMPARE(import_problem_text(ImportProblem::none, texts), QString());
    QCOMPARE(import_problem_text(ImportProblem::position_taken, texts),
             texts.message(kLoggerPositionExists));
    const auto in_both = [&](ImportProblem problem) {
        QStringList told;
        for (const LanguageCode language : {kEnglish, kItalian}) {
            texts.language = language;
            told += import_problem_text(problem, texts);
        }
        return told.join(u'/');
    };
    QCOMPARE(in_both(ImportProblem::no_number),
             QString("Left out: the plan is full./Escluso: il piano è pieno."));
    QCOMPARE(in_both(ImportProblem::no_oscillator),
             QString("Left out: the plan has no free oscillator./"
                     "Escluso: il piano non ha oscillatori liberi."));
    QCOMPARE(in_both(ImportProblem::out_of_range),
             QString("Left out: the meter cannot tune it./"
                     "Escluso: lo strumento non può sintonizzarlo."));
    QCOMPARE(in_both(ImportProblem::unreadable),
             QString("Left out: not understood./Escluso: non interpretabile."));
}

void ImportTest::an_oscillator_takes_the_place_it_is_meant_for_where_that_is_free() {
    const QString mhz = QStringLiteral("9750");
    for (const int preferred : {-1, 0, 4, 99}) {
        programme::Oscillators free;
        QCOMPARE(programme::place_oscillator(free, preferred, mhz), std::optional<int>(0));
        QCOMPARE(free[0], mhz);
    }
    programme::Oscillators free;
    QCOMPARE(programme::place_oscillator(free, 3, mhz), std::optional<int>(3));
    QCOMPARE(programme::place_oscillator(free, 1, mhz), std::optional<int>(3));
    QCOMPARE(programme::place_oscillator(free, 3, QStringLiteral("10600")), std::optional<int>(0));
    programme::Oscillators full{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                                QStringLiteral("4")};
    QVERIFY(!programme::place_oscillator(full, 0, mhz));
}

void ImportTest::an_oscillator_takes_a_free_place() {
    programme::Oscillators oscillators{QStringLiteral("9750"), QString(), QStringLiteral("5150"),
                                       QString()};
    const ImportPreview preview = preview_import(
        parsed("frequenza,oscillator,loc_osc0\n11000,9750,3\n12000,10600,0\n3500,5150,\n"
               "11500,10000,1\n11500,11000,\n"),
        {full_program()}, oscillators, 0);
    QCOMPARE(one_line_each(preview),
             QStringList({"2 000 11000 9750 added ", "3 001 12000 10600 added ",
                          "4 002 3500 5150 added ", "5 003 11500 10000 added ",
                          "6 004 11500 11000 4 "}));
    QCOMPARE(preview.oscillators, programme::Oscillators({"9750", "10600", "5150", "10000"}));
}

void ImportTest::a_later_line_may_bring_the_oscillator() {
    // Alone the first program has no range yet; with the second one it has.
    const QByteArray header = "pg_num\tfrequenza\tloc_osc\tloc_osc0\toscillator\n";
    QCOMPARE(one_line_each(into_empty_plan(header + "1\t10773\t0\t1\t\n")),
             QStringList{QStringLiteral("2 001 10773  added ")});
    const ImportPreview preview =
        into_empty_plan(header + "1\t10773\t0\t1\t\n2\t11778\t0\t1\t10600\n");
    QCOMPARE(one_line_each(preview),
             (QStringList{
                 QStringLiteral("2 001 11520 10600 added frequenza: 10773 → 11520"),
                 QStringLiteral("3 002 11778 10600 added "),
             }));
}

void ImportTest::an_entry_that_is_not_there_is_the_first_one() {
    // The frequency has to fit the oscillator that the program is stored with.
    const ImportPreview preview = into_empty_plan(
        "frequenza\tloc_osc\tloc_osc0\toscillator\n"
        "1000\t0\t3\t3070\n12000\t0\t0\t10600\n04\t0\t45\t\n");
    QCOMPARE(preview.rows[2].record.loc_osc0, 0);
    QCOMPARE(preview.rows[2].oscillator, QStringLiteral("10600"));
    QCOMPARE(preview.rows[2].record.frequenza, QStringLiteral("11520"));
}

void ImportTest::an_exported_plan_is_in_the_plan_already() {
    std::vector<programme::ProgramRecord> plan = two_programs();
    // What was never set stays so.
    plan[1].chber_min.clear();
    plan[1].lev_max.clear();
    const ImportPreview preview = replacing(exported(plan), plan);
    for (const ImportRow& row : preview.rows) QCOMPARE(row.problem, ImportProblem::as_in_plan);
    QCOMPARE(preview.rows.size(), std::size_t(2));
    QCOMPARE(preview.added(), 0);
}

void ImportTest::what_was_edited_replaces_the_program_of_its_number() {
    const std::vector<programme::ProgramRecord> plan = two_programs();
    const QByteArray edited = exported(plan).replace("\t11778\t", "\t11798\t");
    QCOMPARE(preview_import(parsed(edited), plan, ku_, 0).added(), 0);
    const ImportPreview preview = replacing(edited, plan);
    QCOMPARE(preview.added(), 1);
    QCOMPARE(preview.replaced(), 1);
    QCOMPARE(preview.rows[0].changes, QStringList{"frequenza: 11778 → 11798"});
    QCOMPARE(*preview.rows[0].replaces, plan[0]);
    programme::ProgramRecord after = plan[0];
    after.frequenza = QStringLiteral("11798");
    QCOMPARE(preview.rows[0].record, after);
    QCOMPARE(preview.oscillators, ku_);
}

void ImportTest::programs_may_change_their_logger_lines() {
    const std::vector<programme::ProgramRecord> plan = two_programs();
    std::vector<programme::ProgramRecord> swapped = plan;
    std::swap(swapped[0].logger_pos, swapped[1].logger_pos);
    const ImportPreview preview = replacing(exported(swapped), plan);
    QCOMPARE(preview.replaced(), 2);
    QCOMPARE(preview.rows[1].record, swapped[1]);
}

void ImportTest::a_column_that_the_file_lacks_stays_as_it_is() {
    const std::vector<programme::ProgramRecord> plan = two_programs();
    const ImportPreview preview =
        replacing("pg_num,frequenza,mer_min\n7,11800,12\n9,1000,\n", plan);
    programme::ProgramRecord after = plan[0];
    after.frequenza = QStringLiteral("11800");
    after.mer_min = QStringLiteral("12");
    QCOMPARE(preview.rows[0].record, after);
    // A program that is new has the usual values there.
    QCOMPARE(preview.rows[1].record.loc_osc, true);
    QVERIFY(preview.rows[1].added() && !preview.rows[1].replaces);
}

void ImportTest::limits_that_nobody_edited_stay_in_their_unit() {
    std::vector<programme::ProgramRecord> plan = two_programs();
    plan[0].lev_max = QStringLiteral("90");
    const ImportPreview preview =
        preview_import(parsed(exported(plan).replace("\t11778\t", "\t11798\t")), plan, ku_, 109,
                       TakenNumbers::replace);
    QCOMPARE(preview.rows[0].changes, QStringList{"frequenza: 11778 → 11798"});
    QCOMPARE(preview.rows[1].problem, ImportProblem::as_in_plan);
}

void ImportTest::a_program_whose_successor_does_not_fit_stays() {
    const std::vector<programme::ProgramRecord> plan = two_programs();
    const programme::Oscillators full{"9750", "10600", "5150", "10000"};
    // The first one has no oscillator, so that the second one's new line is not free.
    const ImportPreview preview = preview_import(
        parsed("pg_num,frequenza,oscillator,logger_pos\n7,11800,10700,09\n8,11000,9750,03\n"), plan,
        full, 0, TakenNumbers::replace);
    QCOMPARE(preview.rows[0].problem, ImportProblem::no_oscillator);
    QCOMPARE(preview.rows[1].problem, ImportProblem::position_taken);
    QCOMPARE(preview.added(), 0);
}

void ImportTest::a_number_that_had_to_be_corrected_replaces_nothing() {
    std::vector<programme::ProgramRecord> plan = two_programs();
    plan[0].pg_num = QStringLiteral("099");
    const ImportPreview preview = replacing("pg_num,frequenza\n150,1000\n8,1000\n8,1001\n", plan);
    QCOMPARE(preview.rows[0].problem, ImportProblem::number_out_of_range);
    QVERIFY(preview.rows[1].added());
    QCOMPARE(preview.rows[2].problem, ImportProblem::number_twice);
    // Nor does it take the place of the program whose number that is.
    const ImportPreview fresh = into_empty_plan("pg_num,frequenza\n150,1000\n99,1001\n");
    QCOMPARE(fresh.rows[0].problem, ImportProblem::number_out_of_range);
    QVERIFY(fresh.rows[1].added());
}

void ImportTest::what_is_not_ticked_takes_no_place() {
    std::vector<ImportCandidate> candidates =
        parsed("frequenza,oscillator\n11000,9750\n11000,10000\n12000,10600\n");
    candidates[1].wanted = false;
    const ImportPreview preview = preview_import(candidates, {}, {}, 0);
    QCOMPARE(
        one_line_each(preview),
        QStringList(
            {"2 000 11000 9750 added ",
             QStringLiteral("3  11000 10000 %1 ").arg(static_cast<int>(ImportProblem::unwanted)),
             "4 001 12000 10600 added "}));
    QCOMPARE(preview.oscillators, programme::Oscillators({"9750", "10600"}));
}

void ImportTest::a_long_file_is_previewed_at_once() {
    QByteArray bytes = "frequenza\n";
    while (bytes.size() < 100 * 1024) bytes += "1000\n";
    // Of this process: what else the machine does is nobody's concern.
    const std::clock_t start = std::clock();
    const ImportPreview preview = into_empty_plan(bytes);
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    QVERIFY2(seconds < 4, qPrintable(QString::number(seconds)));
    QCOMPARE(preview.added(), 100);
    QVERIFY(preview.rows.size() > 20000);
}

void ImportTest::a_wide_plan_stops_at_a_hundred() {
    QByteArray text = "frequenza\n";
    for (int k = 0; k < 103; ++k) text += QByteArray::number(1000 + k) + "\n";
    const ImportPreview preview = into_empty_plan(text);
    QCOMPARE(preview.added(), 100);
    QCOMPARE(preview.rows[0].record.pg_num, QStringLiteral("000"));
    QCOMPARE(preview.rows[99].record.pg_num, QStringLiteral("099"));
    QCOMPARE(preview.rows[100].problem, ImportProblem::no_number);
    QCOMPARE(preview.rows[102].line, 104);
}

void ImportTest::a_number_that_is_not_free_is_skipped() {
    programme::ProgramRecord zero = full_program();
    zero.pg_num = QStringLiteral("000");
    programme::ProgramRecord two = full_program();
    two.pg_num = QStringLiteral("2");
    const ImportPreview preview =
        preview_import(parsed("frequenza\n1000\n1001\n"), {zero, two}, ku_, 0);
    QCOMPARE(preview.rows[0].record.pg_num, QStringLiteral("001"));
    QCOMPARE(preview.rows[1].record.pg_num, QStringLiteral("003"));
}

void ImportTest::nothing_to_add_leaves_the_empty_program() {
    QVERIFY(!into_empty_plan("frequenza\n").replaces_blank);
    QVERIFY(!into_empty_plan("S 1000 V 27500000 3/4\n").replaces_blank);
}

void ImportTest::lines_and_the_monitored_tick_are_given_by_choice() {
    std::vector<programme::ProgramRecord> plan = two_programs();
    plan[0].monitor_state = false;
    const auto with = [&](const QByteArray& file, const ImportChoices& choices) {
        QStringList rows;
        const ImportPreview preview =
            preview_import(with_choices(parsed(file), plan, choices), plan, ku_, 0, choices.taken);
        for (const ImportRow& row : preview.rows)
            if (row.added())
                rows += QStringLiteral("%1 %2 %3 %4")
                            .arg(row.record.pg_num, row.record.logger_pos)
                            .arg(row.record.logger_state)
                            .arg(row.record.monitor_state);
        return rows;
    };
    const QByteArray file = "pg_num,frequenza,logger_pos\n1,1000,\n2,1001,09\n7,1002,\n";
    QCOMPARE(with(file, {}), QStringList({"001  0 0", "002 09 0 0"}));
    QCOMPARE(with(file, {TakenNumbers::leave_out, true, true}),
             QStringList({"001 10 1 1", "002 09 1 1"}));
    // The program of the plan that is replaced keeps its line where the file has none.
    QCOMPARE(with("pg_num,frequenza\n7,1002\n1,1000\n", {TakenNumbers::replace, true, true}),
             QStringList({"007 03 1 1", "001 05 1 1"}));
    QCOMPARE(with("pg_num,frequenza\n7,1002\n", {TakenNumbers::replace, false, true}),
             QStringList({"007 03 1 1"}));
}

void ImportTest::where_the_logger_table_is_full_the_rest_come_without_a_line() {
    QByteArray file = "frequenza\n";
    for (int k = 0; k < 50; ++k) file += QByteArray::number(1000 + k) + '\n';
    const ImportPreview preview = preview_import(
        with_choices(parsed(file), {}, {TakenNumbers::leave_out, true, false}), {}, ku_, 0);
    QStringList lines;
    for (const ImportRow& row : preview.rows) {
        QVERIFY(row.added());
        QCOMPARE(row.record.logger_state, !row.record.logger_pos.isEmpty());
        if (row.record.logger_state) lines += row.record.logger_pos;
    }
    QCOMPARE(lines.size(), 42);
    QCOMPARE(QSet<QString>(lines.begin(), lines.end()).size(), 42);
    QCOMPARE(lines.constFirst(), QStringLiteral("01"));
}

}  // namespace m47::plans
