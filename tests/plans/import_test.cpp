// SPDX-License-Identifier: GPL-3.0-or-later
// What a file says, and what is understood of it.
#include "import_test.h"

#include "plan_file.h"

namespace m47::plans {
namespace {

const QByteArray kHeader =
    "nome\tpg_num\tfrequenza\tloc_osc\tloc_osc0\tsat_ad\tqpsk_symbolrate\tsatchbw\tdiseqc_cmd\t"
    "diseqc_cmd2\tlnb_volt\tK22\tlogger_pos\tlogger_state\tmonitor_state\tlev_min\tlev_max\t"
    "noise_min\tnoise_max\tchber_min\tchber_max\tmer_min\tmer_max\toscillator\n";

}  // namespace

programme::ProgramRecord ImportTest::full_program() {
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

QStringList ImportTest::one_line_each(const ImportPreview& preview) {
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

std::vector<ImportCandidate> ImportTest::parsed(const QByteArray& bytes) {
    return parse_import_file(bytes, 0).candidates;
}

ImportPreview ImportTest::into_empty_plan(const QByteArray& bytes) const {
    return preview_import(parsed(bytes), {programme::ProgramRecord()}, programme::Oscillators(), 0);
}

std::vector<programme::ProgramRecord> ImportTest::two_programs() {
    std::vector<programme::ProgramRecord> plan{full_program(), full_program()};
    plan[1].pg_num = QStringLiteral("008");
    plan[1].frequenza = QStringLiteral("11000");
    plan[1].loc_osc0 = 0;
    plan[1].logger_pos = QStringLiteral("04");
    return plan;
}

QByteArray ImportTest::exported(const std::vector<programme::ProgramRecord>& plan) const {
    return plan_file_text(QStringLiteral("P"), plan, ku_, u'\t').toUtf8();
}

ImportPreview ImportTest::replacing(const QByteArray& file,
                                    const std::vector<programme::ProgramRecord>& plan) const {
    return preview_import(parsed(file), plan, ku_, 0, TakenNumbers::replace);
}

void ImportTest::a_plan_file_names_every_field() {
    const QString text = plan_file_text(QStringLiteral("HOT BIRD"), {full_program()}, ku_, u'\t');
    QCOMPARE(text.toUtf8(),
             kHeader +
                 "HOT BIRD\t007\t11778\t0\t1\t1\t29900\t08\t5\t73\t2\t1\t03\t1\t1\t45\t"
                 "120\t1\t40\t1E-8\t3E-2\t1\t40\t10600\n");
}

void ImportTest::a_plan_comes_back_as_it_was_data() {
    QTest::addColumn<QChar>("separator");
    QTest::newRow("tab") << QChar(u'\t');
    QTest::newRow("comma") << QChar(u',');
    QTest::newRow("semicolon") << QChar(u';');
}

void ImportTest::a_plan_comes_back_as_it_was() {
    QFETCH(QChar, separator);
    programme::ProgramRecord direct = import_defaults(0);
    direct.pg_num = QStringLiteral("008");
    direct.frequenza = QStringLiteral("1234.5");
    const std::vector<programme::ProgramRecord> programs{full_program(), direct};
    const QString text = plan_file_text(QStringLiteral("A \"B\",;\t"), programs, ku_, separator);
    const ImportPreview preview = preview_import(
        parsed(text.toUtf8()), {programme::ProgramRecord()}, programme::Oscillators(), 0);
    QCOMPARE(preview.added(), 2);
    QCOMPARE(preview.rows[0].record, programs[0]);
    QCOMPARE(preview.rows[1].record, programs[1]);
    QCOMPARE(preview.rows[0].corrections, QStringList());
    QCOMPARE(preview.oscillators,
             programme::Oscillators({QString(), QStringLiteral("10600"), QString(), QString()}));
    QVERIFY(preview.replaces_blank);
}

void ImportTest::an_export_comes_back_to_the_byte_data() {
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
void ImportTest::an_export_comes_back_to_the_byte() {
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
            QVERIFY(row.problem == ImportProblem::as_in_plan || programme::is_blank(row.record));
    }
}

void ImportTest::a_row_added_to_an_export_has_the_usual_values() {
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

void ImportTest::a_decimal_comma_of_the_user_goes_out_as_a_full_stop() {
    programme::ProgramRecord program = full_program();
    program.lev_min = QStringLiteral("45,5");
    const QString text = plan_file_text(QStringLiteral("P"), {program}, ku_, u',');
    QVERIFY(text.contains(QStringLiteral(",45.5,")));
}

void ImportTest::semicolons_and_decimal_commas_are_understood() {
    const ImportPreview preview = into_empty_plan(
        "\xef\xbb\xbfpg_num;frequenza;loc_osc;lev_min\r\n7;1234,5;1;45,5\r\n\r\n8;950;1;\r\n");
    QCOMPARE(one_line_each(preview), QStringList({"2 007 1234.5  added ", "4 008 950  added "}));
    QCOMPARE(preview.rows[0].record.lev_min, QStringLiteral("45.5"));
    QCOMPARE(preview.rows[1].record.lev_min, QStringLiteral("20"));
}

void ImportTest::a_file_may_begin_with_a_byte_order_mark() {
    const std::vector<ImportCandidate> candidates = parsed(
        "\xEF\xBB\xBF"
        "frequenza\n1000\n");
    QCOMPARE(candidates.size(), std::size_t(1));
    QCOMPARE(candidates[0].record.frequenza, QStringLiteral("1000"));
}

void ImportTest::gaps_are_filled_in_the_unit_in_force() {
    const programme::ProgramRecord dbmv = import_defaults(60);
    QCOMPARE(dbmv.lev_min + u' ' + dbmv.lev_max, QStringLiteral("-40 60"));
    const programme::ProgramRecord dbuv = import_defaults(0);
    QCOMPARE(dbuv.lev_min + u' ' + dbuv.lev_max, QStringLiteral("20 120"));
}

void ImportTest::a_cell_in_quotes_may_hold_anything() {
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

void ImportTest::what_is_out_of_range_is_corrected_and_named() {
    const ImportPreview preview = into_empty_plan(
        "pg_num,frequenza,loc_osc,qpsk_symbolrate,sat_ad,satchbw,logger_pos,logger_state,"
        "noise_min\n150,500,1,60000,1,45,42,1,45\n");
    QCOMPARE(preview.rows[0].corrections,
             QStringList({"pg_num: 150 → 099", "frequenza: 500 → 920.0",
                          "qpsk_symbolrate: 60000 → 45000", "satchbw: 45 → 40", "logger_pos: 42 → ",
                          "logger_state: 1 → 0", "noise_min: 45 → 1"}));
    QVERIFY(preview.rows[0].added());
}

void ImportTest::words_for_yes_and_no_are_understood() {
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

void ImportTest::a_row_that_cannot_be_meant_so_is_left_out_data() {
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

void ImportTest::a_row_that_cannot_be_meant_so_is_left_out() {
    QFETCH(QByteArray, text);
    const ImportPreview preview = into_empty_plan(text);
    QCOMPARE(preview.rows.size(), std::size_t(1));
    QCOMPARE(preview.rows[0].problem, ImportProblem::unreadable);
}

void ImportTest::what_is_no_plan_is_told() {
    QVERIFY(!parse_import_file("", 0).understood);
    QVERIFY(!parse_import_file("name;age\nx;3\n", 0).understood);
    QVERIFY(!parse_import_file(QByteArray("\x89PNG\r\n\x1a\n\0\0", 10), 0).understood);
    QVERIFY(!parse_import_file(QByteArray(2 * 1024 * 1024, 'x'), 0).understood);
    const ImportFile file = parse_import_file("frequenza,colour\n1000,red\n", 0);
    QVERIFY(file.understood);
    QCOMPARE(file.unknown_columns, QStringList{"colour"});
}

}  // namespace m47::plans

QTEST_GUILESS_MAIN(m47::plans::ImportTest)
