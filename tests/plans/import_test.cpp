// SPDX-License-Identifier: GPL-3.0-or-later
// Plan files and scan tables, and what an import of them will do.
#include <QSet>
#include <QTest>
#include <ctime>

#include "diseqc_commands.h"
#include "import_choices.h"
#include "oscillators.h"
#include "plan_file.h"
#include "plan_import.h"

namespace m47::plans {
namespace {

const QByteArray kHeader =
    "nome\tpg_num\tfrequenza\tloc_osc\tloc_osc0\tsat_ad\tqpsk_symbolrate\tsatchbw\tdiseqc_cmd\t"
    "diseqc_cmd2\tlnb_volt\tK22\tlogger_pos\tlogger_state\tmonitor_state\tlev_min\tlev_max\t"
    "noise_min\tnoise_max\tchber_min\tchber_max\tmer_min\tmer_max\toscillator\n";

programme::ProgramRecord full_program() {
    programme::ProgramRecord program = import_defaults(0);
    program.pg_num = QStringLiteral("007");
    program.frequenza = QStringLiteral("11778");
    program.loc_osc = false;
    program.loc_osc0 = 1;
    program.sat_ad = true;
    program.qpsk_symbolrate = QStringLiteral("29900");
    program.satchbw = QStringLiteral("08");
    program.diseqc_cmd = 5;
    program.lnb_volt = 2;
    program.K22 = 1;
    program.logger_pos = QStringLiteral("03");
    program.logger_state = true;
    program.monitor_state = true;
    program.lev_min = QStringLiteral("45");
    return program;
}

QStringList one_line_each(const ImportPreview& preview) {
    QStringList lines;
    for (const ImportRow& row : preview.rows)
        lines += QStringLiteral("%1 %2 %3 %4 %5 %6")
                     .arg(row.line)
                     .arg(row.record.pg_num, row.record.frequenza, row.oscillator,
                          row.added() ? QStringLiteral("added")
                                      : QString::number(static_cast<int>(row.problem)),
                          row.corrections.join(u','));
    return lines;
}

}  // namespace

class ImportTest : public QObject {
    Q_OBJECT

  private:
    const programme::Oscillators ku_{QStringLiteral("9750"), QStringLiteral("10600"), QString(),
                                     QString()};

    static std::vector<ImportCandidate> parsed(const QByteArray& bytes) {
        return parse_import_file(bytes, 0).candidates;
    }
    ImportPreview into_empty_plan(const QByteArray& bytes) const {
        return preview_import(parsed(bytes), {programme::ProgramRecord()}, programme::Oscillators(),
                              0);
    }

    /// Numbers 7 and 8, each with a logger line.
    static std::vector<programme::ProgramRecord> two_programs() {
        std::vector<programme::ProgramRecord> plan{full_program(), full_program()};
        plan[1].pg_num = QStringLiteral("008");
        plan[1].frequenza = QStringLiteral("11000");
        plan[1].loc_osc0 = 0;
        plan[1].logger_pos = QStringLiteral("04");
        return plan;
    }
    QByteArray exported(const std::vector<programme::ProgramRecord>& plan) const {
        return plan_file_text(QStringLiteral("P"), plan, ku_, u'\t').toUtf8();
    }
    ImportPreview replacing(const QByteArray& file,
                            const std::vector<programme::ProgramRecord>& plan) const {
        return preview_import(parsed(file), plan, ku_, 0, TakenNumbers::replace);
    }

  private Q_SLOTS:
    void a_plan_file_names_every_field() {
        const QString text =
            plan_file_text(QStringLiteral("HOT BIRD"), {full_program()}, ku_, u'\t');
        QCOMPARE(text.toUtf8(),
                 kHeader +
                     "HOT BIRD\t007\t11778\t0\t1\t1\t29900\t08\t5\t73\t2\t1\t03\t1\t1\t45\t"
                     "120\t1\t40\t1E-8\t3E-2\t1\t40\t10600\n");
    }

    void a_plan_comes_back_as_it_was_data() {
        QTest::addColumn<QChar>("separator");
        QTest::newRow("tab") << QChar(u'\t');
        QTest::newRow("comma") << QChar(u',');
        QTest::newRow("semicolon") << QChar(u';');
    }
    void a_plan_comes_back_as_it_was() {
        QFETCH(QChar, separator);
        programme::ProgramRecord direct = import_defaults(0);
        direct.pg_num = QStringLiteral("008");
        direct.frequenza = QStringLiteral("1234.5");
        const std::vector<programme::ProgramRecord> programs{full_program(), direct};
        const QString text =
            plan_file_text(QStringLiteral("A \"B\",;\t"), programs, ku_, separator);
        const ImportPreview preview = preview_import(
            parsed(text.toUtf8()), {programme::ProgramRecord()}, programme::Oscillators(), 0);
        QCOMPARE(preview.added(), 2);
        QCOMPARE(preview.rows[0].record, programs[0]);
        QCOMPARE(preview.rows[1].record, programs[1]);
        QCOMPARE(preview.rows[0].corrections, QStringList());
        QCOMPARE(preview.oscillators, programme::Oscillators({QString(), QStringLiteral("10600"),
                                                              QString(), QString()}));
        QVERIFY(preview.replaces_blank);
    }

    void an_export_comes_back_to_the_byte_data() {
        QTest::addColumn<std::vector<programme::ProgramRecord>>("plan");
        programme::ProgramRecord program = full_program();
        QTest::newRow("nothing stored yet")
            << std::vector<programme::ProgramRecord>{programme::ProgramRecord()};
        QTest::newRow("nothing stored in the first")
            << std::vector<programme::ProgramRecord>{programme::ProgramRecord(), program};
        for (const programme::ProgramField& field : programme::program_fields()) {
            if (!std::holds_alternative<QString programme::ProgramRecord::*>(field.member) ||
                QLatin1String(field.name) == QLatin1String("pg_num"))
                continue;
            program = full_program();
            programme::set_field(program, field, QString());
            QTest::addRow("no %s", field.name)
                << std::vector<programme::ProgramRecord>{program, two_programs()[1]};
        }
        program = full_program();
        for (auto limit : {&programme::ProgramRecord::noise_min, &programme::ProgramRecord::mer_max,
                           &programme::ProgramRecord::lev_min, &programme::ProgramRecord::lev_max})
            (program.*limit).clear();
        program.noise_max = QStringLiteral("0.5");
        QTest::newRow("one of two limits") << std::vector<programme::ProgramRecord>{program};
        std::vector<programme::ProgramRecord> three = two_programs();
        three[0].loc_osc0 = 3;
        three.push_back(three[0]);
        three[2].pg_num = QStringLiteral("099");
        three[2].logger_pos.clear();
        three[2].loc_osc0 = 2;
        QTest::newRow("an oscillator that is not set and one twice") << three;
    }
    /// Into a new plan, with the unit of the screen and without one as on the command line, and
    /// over the plan itself.
    void an_export_comes_back_to_the_byte() {
        QFETCH(std::vector<programme::ProgramRecord>, plan);
        const programme::Oscillators set{"9750", "10600", "", "9750"};
        for (const QChar separator : {QChar(u'\t'), QChar(u','), QChar(u';')}) {
            const auto text_of = [&](const std::vector<programme::ProgramRecord>& programs,
                                     const programme::Oscillators& oscillators) {
                return plan_file_text(QStringLiteral("P"), programs, oscillators, separator);
            };
            const QString text = text_of(plan, set);
            for (const std::optional<double> unit :
                 {std::optional<double>(0.0), std::optional<double>()}) {
                const ImportPreview preview =
                    preview_import(parsed(text.toUtf8()), {programme::ProgramRecord()},
                                   programme::Oscillators(), unit);
                std::vector<programme::ProgramRecord> back;
                for (const ImportRow& row : preview.rows) {
                    QVERIFY(row.added());
                    QCOMPARE(row.corrections, QStringList());
                    back.push_back(row.record);
                }
                QCOMPARE(text_of(back, preview.oscillators), text);
            }
            for (const ImportRow& row :
                 preview_import(parsed(text.toUtf8()), plan, set, 0, TakenNumbers::replace).rows)
                QVERIFY(row.problem == ImportProblem::as_in_plan ||
                        programme::is_blank(row.record));
        }
    }

    void a_row_added_to_an_export_has_the_usual_values() {
        QByteArray text = exported(two_programs());
        text += "P\t\t1000" + QByteArray(21, '\t') + "\n" + QByteArray(23, '\t') + "\n";
        const ImportPreview preview = into_empty_plan(text);
        QCOMPARE(preview.added(), 3);
        QCOMPARE(preview.rows[2].record.pg_num, QStringLiteral("000"));
        QCOMPARE(preview.rows[2].record.lev_max, QStringLiteral("120"));
        QCOMPARE(preview.rows[2].record.qpsk_symbolrate, QStringLiteral("27500"));
        // A line of a spreadsheet in which nothing stands is no program.
        QCOMPARE(preview.rows[3].problem, ImportProblem::unreadable);
        // An empty program comes with a new plan alone.
        const QByteArray blank = exported({programme::ProgramRecord()});
        QCOMPARE(preview_import(parsed(blank), two_programs(), ku_, 0).rows[0].problem,
                 ImportProblem::empty_program);
    }

    void a_decimal_comma_of_the_user_goes_out_as_a_full_stop() {
        programme::ProgramRecord program = full_program();
        program.lev_min = QStringLiteral("45,5");
        const QString text = plan_file_text(QStringLiteral("P"), {program}, ku_, u',');
        QVERIFY(text.contains(QStringLiteral(",45.5,")));
    }

    void semicolons_and_decimal_commas_are_understood() {
        const ImportPreview preview = into_empty_plan(
            "\xef\xbb\xbfpg_num;frequenza;loc_osc;lev_min\r\n7;1234,5;1;45,5\r\n\r\n8;950;1;\r\n");
        QCOMPARE(one_line_each(preview),
                 QStringList({"2 007 1234.5  added ", "4 008 950  added "}));
        QCOMPARE(preview.rows[0].record.lev_min, QStringLiteral("45.5"));
        QCOMPARE(preview.rows[1].record.lev_min, QStringLiteral("20"));
    }

    void a_file_may_begin_with_a_byte_order_mark() {
        const std::vector<ImportCandidate> candidates = parsed(
            "\xEF\xBB\xBF"
            "frequenza\n1000\n");
        QCOMPARE(candidates.size(), std::size_t(1));
        QCOMPARE(candidates[0].record.frequenza, QStringLiteral("1000"));
    }

    void gaps_are_filled_in_the_unit_in_force() {
        const programme::ProgramRecord dbmv = import_defaults(60);
        QCOMPARE(dbmv.lev_min + u' ' + dbmv.lev_max, QStringLiteral("-40 60"));
        const programme::ProgramRecord dbuv = import_defaults(0);
        QCOMPARE(dbuv.lev_min + u' ' + dbuv.lev_max, QStringLiteral("20 120"));
    }

    void a_cell_in_quotes_may_hold_anything() {
        const std::vector<ImportCandidate> candidates =
            parsed("nome,frequenza,pg_num\n\"a,\"\"b\"\"\nc\",\"1000\",5\nx,1001,6\n");
        QCOMPARE(candidates.size(), std::size_t(2));
        QCOMPARE(candidates[0].record.pg_num, QStringLiteral("5"));
        QCOMPARE(candidates[0].line, 2);
        QCOMPARE(candidates[1].line, 4);
        // As it stands, to the last quote, where it is named as no number.
        const std::vector<ImportCandidate> quoted =
            parsed("frequenza,pg_num\r\n1000,\"5\"\"\"\r\n\"1\r\n\",6\r\n1001,7\r\n");
        QCOMPARE(quoted.size(), std::size_t(3));
        QCOMPARE(quoted[0].record.pg_num, QStringLiteral("5\""));
        QCOMPARE(quoted[1].line, 3);
        QCOMPARE(quoted[2].line, 5);
        QCOMPARE(quoted[2].record.pg_num, QStringLiteral("7"));
        QCOMPARE(parsed("frequenza,nome\n1000,\"never closed\n1001,x\n").size(), std::size_t(1));
    }

    void what_is_out_of_range_is_corrected_and_named() {
        const ImportPreview preview = into_empty_plan(
            "pg_num,frequenza,loc_osc,qpsk_symbolrate,sat_ad,satchbw,logger_pos,logger_state,"
            "noise_min\n150,500,1,60000,1,45,42,1,45\n");
        QCOMPARE(preview.rows[0].corrections,
                 QStringList({"pg_num: 150 → 099", "frequenza: 500 → 920.0",
                              "qpsk_symbolrate: 60000 → 45000", "satchbw: 45 → 40",
                              "logger_pos: 42 → ", "logger_state: 1 → 0", "noise_min: 45 → 1"}));
        QVERIFY(preview.rows[0].added());
    }

    void words_for_yes_and_no_are_understood() {
        const std::vector<ImportCandidate> rows = parsed(
            "frequenza,loc_osc,logger_state,monitor_state,sat_ad\n1000,True,TRUE,true,True\n"
            "11000,False,FALSE,false,False\n");
        for (std::size_t k : {0U, 1U}) {
            QCOMPARE(rows[k].problem, ImportProblem::none);
            const programme::ProgramRecord& record = rows[k].record;
            QCOMPARE(record.loc_osc, k == 0);
            QCOMPARE(record.logger_state, k == 0);
            QCOMPARE(record.monitor_state, k == 0);
            QCOMPARE(record.sat_ad, k == 0);
        }
    }

    void a_row_that_cannot_be_meant_so_is_left_out_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("a flag") << QByteArray("frequenza,loc_osc\n1000,maybe\n");
        QTest::newRow("a choice") << QByteArray("frequenza,lnb_volt\n1000,18V\n");
        QTest::newRow("a number") << QByteArray("pg_num,frequenza\nabc,1000\n");
        QTest::newRow("a frequency") << QByteArray("pg_num,frequenza\n1,abc\n");
        QTest::newRow("no frequency") << QByteArray("pg_num,frequenza\n1,\n");
        QTest::newRow("thousands") << QByteArray("pg_num;frequenza\n1;11.778,5\n");
        QTest::newRow("a limit") << QByteArray("frequenza,lev_min\n1000,45dB\n");
        QTest::newRow("an oscillator") << QByteArray("frequenza,oscillator\n11000,9750 MHz\n");
        QTest::newRow("decimal comma between commas") << QByteArray("frequenza,pg_num\n1234,5,7\n");
    }
    void a_row_that_cannot_be_meant_so_is_left_out() {
        QFETCH(QByteArray, text);
        const ImportPreview preview = into_empty_plan(text);
        QCOMPARE(preview.rows.size(), std::size_t(1));
        QCOMPARE(preview.rows[0].problem, ImportProblem::unreadable);
    }

    void a_number_that_the_file_names_is_left_to_its_program() {
        const ImportPreview preview =
            into_empty_plan("pg_num,frequenza\n,1000\n0,1001\n001,1002\n,1003\n");
        QCOMPARE(one_line_each(preview), QStringList({"2 002 1000  added ", "3 000 1001  added ",
                                                      "4 001 1002  added ", "5 003 1003  added "}));
    }

    void clashes_are_left_out_and_named() {
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

    void an_oscillator_takes_the_place_it_is_meant_for_where_that_is_free() {
        const QString mhz = QStringLiteral("9750");
        for (const int preferred : {-1, 0, 4, 99}) {
            programme::Oscillators free;
            QCOMPARE(programme::place_oscillator(free, preferred, mhz), std::optional<int>(0));
            QCOMPARE(free[0], mhz);
        }
        programme::Oscillators free;
        QCOMPARE(programme::place_oscillator(free, 3, mhz), std::optional<int>(3));
        QCOMPARE(programme::place_oscillator(free, 1, mhz), std::optional<int>(3));
        QCOMPARE(programme::place_oscillator(free, 3, QStringLiteral("10600")),
                 std::optional<int>(0));
        programme::Oscillators full{QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"),
                                    QStringLiteral("4")};
        QVERIFY(!programme::place_oscillator(full, 0, mhz));
    }

    void an_oscillator_takes_a_free_place() {
        programme::Oscillators oscillators{QStringLiteral("9750"), QString(),
                                           QStringLiteral("5150"), QString()};
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

    void a_later_line_may_bring_the_oscillator() {
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

    void an_entry_that_is_not_there_is_the_first_one() {
        // The frequency has to fit the oscillator that the program is stored with.
        const ImportPreview preview = into_empty_plan(
            "frequenza\tloc_osc\tloc_osc0\toscillator\n"
            "1000\t0\t3\t3070\n12000\t0\t0\t10600\n04\t0\t45\t\n");
        QCOMPARE(preview.rows[2].record.loc_osc0, 0);
        QCOMPARE(preview.rows[2].oscillator, QStringLiteral("10600"));
        QCOMPARE(preview.rows[2].record.frequenza, QStringLiteral("11520"));
    }

    void an_exported_plan_is_in_the_plan_already() {
        std::vector<programme::ProgramRecord> plan = two_programs();
        // What was never set stays so.
        plan[1].chber_min.clear();
        plan[1].lev_max.clear();
        const ImportPreview preview = replacing(exported(plan), plan);
        for (const ImportRow& row : preview.rows) QCOMPARE(row.problem, ImportProblem::as_in_plan);
        QCOMPARE(preview.rows.size(), std::size_t(2));
        QCOMPARE(preview.added(), 0);
    }

    void what_was_edited_replaces_the_program_of_its_number() {
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

    void programs_may_change_their_logger_lines() {
        const std::vector<programme::ProgramRecord> plan = two_programs();
        std::vector<programme::ProgramRecord> swapped = plan;
        std::swap(swapped[0].logger_pos, swapped[1].logger_pos);
        const ImportPreview preview = replacing(exported(swapped), plan);
        QCOMPARE(preview.replaced(), 2);
        QCOMPARE(preview.rows[1].record, swapped[1]);
    }

    void a_column_that_the_file_lacks_stays_as_it_is() {
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

    void limits_that_nobody_edited_stay_in_their_unit() {
        std::vector<programme::ProgramRecord> plan = two_programs();
        plan[0].lev_max = QStringLiteral("90");
        const ImportPreview preview =
            preview_import(parsed(exported(plan).replace("\t11778\t", "\t11798\t")), plan, ku_, 109,
                           TakenNumbers::replace);
        QCOMPARE(preview.rows[0].changes, QStringList{"frequenza: 11778 → 11798"});
        QCOMPARE(preview.rows[1].problem, ImportProblem::as_in_plan);
    }

    void a_program_whose_successor_does_not_fit_stays() {
        const std::vector<programme::ProgramRecord> plan = two_programs();
        const programme::Oscillators full{"9750", "10600", "5150", "10000"};
        // The first one has no oscillator, so that the second one's new line is not free.
        const ImportPreview preview = preview_import(
            parsed("pg_num,frequenza,oscillator,logger_pos\n7,11800,10700,09\n8,11000,9750,03\n"),
            plan, full, 0, TakenNumbers::replace);
        QCOMPARE(preview.rows[0].problem, ImportProblem::no_oscillator);
        QCOMPARE(preview.rows[1].problem, ImportProblem::position_taken);
        QCOMPARE(preview.added(), 0);
    }

    void a_number_that_had_to_be_corrected_replaces_nothing() {
        std::vector<programme::ProgramRecord> plan = two_programs();
        plan[0].pg_num = QStringLiteral("099");
        const ImportPreview preview =
            replacing("pg_num,frequenza\n150,1000\n8,1000\n8,1001\n", plan);
        QCOMPARE(preview.rows[0].problem, ImportProblem::number_out_of_range);
        QVERIFY(preview.rows[1].added());
        QCOMPARE(preview.rows[2].problem, ImportProblem::number_twice);
        // Nor does it take the place of the program whose number that is.
        const ImportPreview fresh = into_empty_plan("pg_num,frequenza\n150,1000\n99,1001\n");
        QCOMPARE(fresh.rows[0].problem, ImportProblem::number_out_of_range);
        QVERIFY(fresh.rows[1].added());
    }

    void what_is_not_ticked_takes_no_place() {
        std::vector<ImportCandidate> candidates =
            parsed("frequenza,oscillator\n11000,9750\n11000,10000\n12000,10600\n");
        candidates[1].wanted = false;
        const ImportPreview preview = preview_import(candidates, {}, {}, 0);
        QCOMPARE(one_line_each(preview),
                 QStringList({"2 000 11000 9750 added ",
                              QStringLiteral("3  11000 10000 %1 ")
                                  .arg(static_cast<int>(ImportProblem::unwanted)),
                              "4 001 12000 10600 added "}));
        QCOMPARE(preview.oscillators, programme::Oscillators({"9750", "10600"}));
    }

    void a_long_file_is_previewed_at_once() {
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

    void a_wide_plan_stops_at_a_hundred() {
        QByteArray text = "frequenza\n";
        for (int k = 0; k < 103; ++k) text += QByteArray::number(1000 + k) + "\n";
        const ImportPreview preview = into_empty_plan(text);
        QCOMPARE(preview.added(), 100);
        QCOMPARE(preview.rows[0].record.pg_num, QStringLiteral("000"));
        QCOMPARE(preview.rows[99].record.pg_num, QStringLiteral("099"));
        QCOMPARE(preview.rows[100].problem, ImportProblem::no_number);
        QCOMPARE(preview.rows[102].line, 104);
    }

    void a_number_that_is_not_free_is_skipped() {
        programme::ProgramRecord zero = full_program();
        zero.pg_num = QStringLiteral("000");
        programme::ProgramRecord two = full_program();
        two.pg_num = QStringLiteral("2");
        const ImportPreview preview =
            preview_import(parsed("frequenza\n1000\n1001\n"), {zero, two}, ku_, 0);
        QCOMPARE(preview.rows[0].record.pg_num, QStringLiteral("001"));
        QCOMPARE(preview.rows[1].record.pg_num, QStringLiteral("003"));
    }

    void nothing_to_add_leaves_the_empty_program() {
        QVERIFY(!into_empty_plan("frequenza\n").replaces_blank);
        QVERIFY(!into_empty_plan("S 1000 V 27500000 3/4\n").replaces_blank);
    }

    void what_is_no_plan_is_told() {
        QVERIFY(!parse_import_file("", 0).understood);
        QVERIFY(!parse_import_file("name;age\nx;3\n", 0).understood);
        QVERIFY(!parse_import_file(QByteArray("\x89PNG\r\n\x1a\n\0\0", 10), 0).understood);
        QVERIFY(!parse_import_file(QByteArray(2 * 1024 * 1024, 'x'), 0).understood);
        const ImportFile file = parse_import_file("frequenza,colour\n1000,red\n", 0);
        QVERIFY(file.understood);
        QCOMPARE(file.unknown_columns, QStringList{"colour"});
    }

    void lines_and_the_monitored_tick_are_given_by_choice() {
        std::vector<programme::ProgramRecord> plan = two_programs();
        plan[0].monitor_state = false;
        const auto with = [&](const QByteArray& file, const ImportChoices& choices) {
            QStringList rows;
            const ImportPreview preview = preview_import(with_choices(parsed(file), plan, choices),
                                                         plan, ku_, 0, choices.taken);
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

    void where_the_logger_table_is_full_the_rest_come_without_a_line() {
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
};

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::ImportTest)
#include "import_test.moc"
