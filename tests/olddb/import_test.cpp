// SPDX-License-Identifier: GPL-3.0-or-later
// What comes from an old database, in which form, and what is reported of it.
#include "import_test.h"

#include <QSet>

#include "import_report.h"

namespace m47::olddb {

OldTable ImportTest::plans(const QStringList& names) {
    OldTable table{QStringLiteral("gruppo"), {QStringLiteral("nome")}, {}};
    for (const QString& name : names) table.rows += QVariantList{name};
    return table;
}

OldTable ImportTest::table(const QString& name, const QStringList& fields,
                           const QList<QVariantList>& rows) {
    return {name, fields, rows};
}

OldDatabase ImportTest::old_database(const QList<OldTable>& tables) {
    return {4, tables, {}};
}

QStringList ImportTest::names_of(const ImportPlan& plan) {
    QStringList names;
    for (const ImportedPlan& one : plan.plans) names += one.name;
    return names;
}

QString ImportTest::said(const ImportPlan& plan) {
    Texts texts;
    return import_report(plan, QStringLiteral("OLD.mdb"), QString(), texts);
}

OldDatabase ImportTest::one_plan(const QString& frequency) {
    return old_database(
        {plans({"A"}),
         table("configurazione", {"nome", "loc_osc1", "user_sc3"}, {{"A", 9750.0, "SW D"}}),
         table("programmi", {"nome", "pg_num", "frequenza"}, {{"A", "001", frequency}}),
         table("asl", {"nome", "dati"}, {{"ASTRA", "S1\rS9030000FC"}})});
}

ImportedValue ImportTest::value(const char* table, const char* name, const QVariant& old) {
    for (const db::Field& field : db::table_named(QLatin1String(table)).fields)
        if (qstrcmp(field.name, name) == 0) return value_for(field, old);
    qFatal("no field %s", name);
}

void ImportTest::plan_names_take_their_form_data() {
    QTest::addColumn<QString>("old");
    QTest::addColumn<QString>("now");
    QTest::newRow("good") << "HOTBIRD13E"
                          << "HOTBIRD13E";
    QTest::newRow("small letters") << "città"
                                   << "CITTÀ";
    QTest::newRow("blanks around") << "  ABC \t"
                                   << "ABC";
    QTest::newRow("blanks around a long one") << "  ABCDEFGHIJK "
                                              << "ABCDEFGHIJ";
    QTest::newRow("blank at the cut") << "ABCDEFGHI JK"
                                      << "ABCDEFGHI";
    QTest::newRow("longer in capitals") << QString::fromUtf8("straßestr1") << "STRASSESTR";
    QTest::newRow("no half character") << QString::fromUtf8("ABCDEFGHI\U0001F4E1") << "ABCDEFGHI";
}

void ImportTest::plan_names_take_their_form() {
    QFETCH(QString, old);
    QFETCH(QString, now);
    QCOMPARE(names_of(import_plan_of(old_database({plans({old})}))), QStringList{now});
}

void ImportTest::a_corrected_name_is_reported_and_its_rows_follow() {
    OldDatabase old = one_plan();
    old.tables[0] = plans({" a"});
    old.tables[2].rows[0][0] = QStringLiteral("a ");
    const ImportPlan plan = import_plan_of(old);
    QCOMPARE(names_of(plan), QStringList{"A"});
    QCOMPARE(plan.plans[0].programs.size(), 1);
    QCOMPARE(plan.plans[0].programs[0].value("pg_num").toString(), QStringLiteral("001"));
    QCOMPARE(plan.corrected.size(), 1);
    QVERIFY(said(plan).contains("The plan ' a' is named 'A'."));
}

void ImportTest::long_names_that_begin_alike_stay_two_plans() {
    OldDatabase old =
        old_database({plans({"CAROUSEL 13 EAST", "CAROUSEL 13 WEST"}),
                      table("programmi", {"nome", "pg_num"},
                            {{"CAROUSEL 13 WEST", "007"}, {"CAROUSEL 13 EAST", "001"}})});
    const ImportPlan plan = import_plan_of(old);
    QCOMPARE(names_of(plan), (QStringList{"CAROUSEL 1", "CAROUSEL-2"}));
    QCOMPARE(plan.plans[1].programs[0].value("pg_num").toString(), QStringLiteral("007"));
}

void ImportTest::free_names_stay_within_ten_characters() {
    QCOMPARE(free_name("A", {"A"}), QStringLiteral("A-2"));
    QCOMPARE(free_name("HOTBIRD13E", {}), QStringLiteral("HOTBIRD1-2"));
    QStringList taken;
    for (int k = 2; k < 10; ++k) taken += QStringLiteral("HOTBIRD1-%1").arg(k);
    QCOMPARE(free_name("HOTBIRD13E", taken), QStringLiteral("HOTBIRD-10"));
}

void ImportTest::texts_come_through_as_they_stand_data() {
    QTest::addColumn<QString>("text");
    QTest::newRow("blanks around a number") << " 22000 ";
    QTest::newRow("empty") << "";
    QTest::newRow("accents") << QString::fromUtf8("perché È così €");
    QTest::newRow("lines") << "a\rb\r\nc\n";
    QTest::newRow("tab and quotes") << "\t\"x\" 'y'";
}

void ImportTest::texts_come_through_as_they_stand() {
    QFETCH(QString, text);
    for (const char* field : {"qpsk_symbolrate", "lev_min", "chber_max"}) {
        const ImportedValue now = value("programmi", field, text);
        QCOMPARE(now.value, QVariant(text));
        QCOMPARE(now.verdict, ImportedValue::Verdict::as_it_was);
    }
    QCOMPARE(value("configurazione", "user_sc0", text).value, QVariant(text));
}

void ImportTest::unset_fields_stay_unset() {
    for (const db::Field& field : db::table_named("programmi").fields) {
        const ImportedValue now = value_for(field, QVariant());
        QVERIFY(now.value.isNull());
        QCOMPARE(now.verdict, ImportedValue::Verdict::as_it_was);
    }
}

void ImportTest::values_take_their_form_data() {
    using Verdict = ImportedValue::Verdict;
    QTest::addColumn<QByteArray>("field");
    QTest::addColumn<QVariant>("old");
    QTest::addColumn<QVariant>("now");
    QTest::addColumn<int>("verdict");
    int count = 0;
    const auto row = [&](const char* field, const QVariant& old, const QVariant& now,
                         Verdict verdict) {
        QTest::addRow("%s %d", field, ++count)
            << QByteArray(field) << old << now << static_cast<int>(verdict);
    };
    constexpr auto kSame = Verdict::as_it_was;
    constexpr auto kChanged = Verdict::corrected;
    row("pg_num", "007", "007", kSame);
    row("pg_num", " 7 ", "007", kChanged);
    row("pg_num", 7LL, "007", kChanged);
    row("pg_num", "99", "099", kChanged);
    row("pg_num", "100", "100", Verdict::doubtful);
    row("pg_num", "-1", "-1", Verdict::doubtful);
    row("pg_num", "x", "x", Verdict::doubtful);
    row("pg_num", "", "", kSame);
    row("logger_pos", "3", "03", kChanged);
    row("logger_pos", "41", "41", kSame);
    row("logger_pos", "42", "42", Verdict::doubtful);
    row("logger_pos", "  ", "", kChanged);
    row("frequenza", 1234.5, 1234.5, kSame);
    row("frequenza", 10719LL, 10719.0, kSame);
    row("frequenza", 1234.56, 1234.6, kChanged);
    row("frequenza", " 1234,5 ", 1234.5, kSame);
    row("frequenza", "none", QVariant(), kChanged);
    row("satchbw", 36.25, 36.25, kSame);
    row("loc_osc", true, true, kSame);
    row("loc_osc", -1LL, true, kSame);
    row("loc_osc", 0LL, false, kSame);
    row("loc_osc0", 3LL, 3LL, kSame);
    row("loc_osc0", 4LL, 0LL, kChanged);
    row("loc_osc0", -1LL, 0LL, kChanged);
    row("loc_osc0", "2", 2LL, kSame);
    row("diseqc_cmd", 73LL, 73LL, kSame);
    row("diseqc_cmd2", 74LL, 0LL, kChanged);
    row("lnb_volt", 2LL, 2LL, kSame);
    row("lnb_volt", 3LL, 0LL, kChanged);
    row("K22", -1LL, 1LL, kChanged);
    row("K22", true, 1LL, kSame);
    row("sat_ad", 1LL, 1LL, kSame);
    row("monitor_state", 5LL, 1LL, kChanged);
    row("logger_state", "x", 0LL, kChanged);
    row("lev_min", 45LL, "45", kSame);
    row("lev_min", 45.5, "45.5", kSame);
    row("lev_min", true, "1", kSame);
    row("pg_num", "0", "000", kChanged);
    row("logger_pos", "1", "01", kChanged);
    row("logger_pos", "0", "0", Verdict::doubtful);
    row("frequenza", "inf", QVariant(), kChanged);
    row("satchbw", "nan", QVariant(), kChanged);
    row("loc_osc", "x", false, kChanged);
    row("loc_osc", "1", true, kSame);
    row("loc_osc0", 1.5, 1LL, kChanged);
    row("diseqc_cmd", 0LL, 0LL, kSame);
    row("monitor_state", 0LL, 0LL, kSame);
}

void ImportTest::values_take_their_form() {
    QFETCH(QByteArray, field);
    QFETCH(QVariant, old);
    QFETCH(QVariant, now);
    QFETCH(int, verdict);
    const ImportedValue found = value("programmi", field.constData(), old);
    QCOMPARE(found.value, now);
    QCOMPARE(found.value.typeId(), now.typeId());
    QCOMPARE(static_cast<int>(found.verdict), verdict);
}

void ImportTest::what_is_changed_and_what_is_doubtful_is_reported() {
    OldDatabase old = one_plan();
    old.tables[2] = table("programmi", {"nome", "pg_num", "loc_osc0"},
                          {{"A", "1", 9LL}, {"A", "abc", 0LL}, {"A", "001", 0LL}});
    const QString report = said(import_plan_of(old));
    QVERIFY(report.contains("Plan 'A', program '1': pg_num '1' became '001'."));
    QVERIFY(report.contains("Plan 'A', program '1': loc_osc0 '9' became '0'."));
    QVERIFY(report.contains("Plan 'A', program 'abc': pg_num 'abc' is left as it is."));
    QVERIFY(report.contains("Plan 'A': pg_num '001' stands twice."));
    QVERIFY(report.contains("Corrections: 2."));
}

void ImportTest::rows_that_belong_nowhere() {
    const ImportPlan plan = import_plan_of(old_database(
        {plans({"A", "A ", ""}),
         table("configurazione", {"nome", "loc_osc1"}, {{"A", 1.0}, {"a", 2.0}, {"C", 3.0}}),
         table("programmi", {"nome"}, {{QVariant()}, {"B"}}),
         table("asl", {"nome", "dati"},
               {{"**********", "x"}, {"S", "S9030000FC"}, {"S", QVariant()}})}));
    QCOMPARE(names_of(plan), (QStringList{"A", "C", "B"}));
    QCOMPARE(plan.plans[0].configuration.value("loc_osc1"), QVariant(1.0));
    QCOMPARE(plan.plans[0].programs.size(), 1);
    QCOMPARE(plan.satellites.size(), 2);
    QCOMPARE(plan.satellites[1].name, QStringLiteral("S-2"));
    const QString report = said(plan);
    for (const char* line :
         {"The plan 'A' stands twice in the list of plans", "A row of table gruppo has no name",
          "A row of table programmi has no name", "The plan 'A' had oscillators and switches twice",
          "The plan 'C' was not in the list", "The plan 'B' was not in the list",
          "The plan 'B' had no oscillators and switches", "The plan 'A' had no program",
          "The plan 'C' had no program", "An entry '**********' is no satellite",
          "The satellite 'S' stands twice", "The data of satellite 'S-2' do not end"})
        QVERIFY2(report.contains(QLatin1String(line)), line);
}

void ImportTest::what_stands_twice_is_told_once() {
    const ImportPlan plan = import_plan_of(old_database(
        {plans({"A"}), table("programmi", {"nome", "pg_num", "logger_pos"},
                             {{"A", "001", ""}, {"A", "001", ""}, {"A", "001", "07"}})}));
    QCOMPARE(said(plan).count("stands twice"), 1);
}

void ImportTest::plans_without_a_list_are_no_correction() {
    const ImportPlan plan = import_plan_of(old_database(
        {table("configurazione", {"nome"}, {{"A"}}), table("programmi", {"nome"}, {{"A"}})}));
    QCOMPARE(names_of(plan), QStringList{"A"});
    QVERIFY2(plan.corrected.isEmpty(), qPrintable(said(plan)));
}

void ImportTest::satellites_take_their_form() {
    const ImportPlan plan = import_plan_of(old_database(
        {table("asl", {"nome", "dati"},
               {{" Astra 19.2E ", "S9030000FC\r"}, {"Astra 19.2E", "S9030000FC"}, {"X", {}}})}));
    QCOMPARE(plan.satellites.size(), 3);
    QCOMPARE(plan.satellites[0].name, QStringLiteral("Astra 19.2"));
    QCOMPARE(plan.satellites[0].data, QVariant(QStringLiteral("S9030000FC\r")));
    QCOMPARE(plan.satellites[1].name, QStringLiteral("Astra 19-2"));
    QVERIFY(plan.satellites[2].data.isNull());
    QCOMPARE(plan.corrected.size(), 2);
    QCOMPARE(plan.to_check.size(), 1);
    QVERIFY(said(plan).contains("The satellite ' Astra 19.2E ' is named 'Astra 19.2'."));
    QVERIFY(said(plan).contains("The data of satellite 'X' do not end as they should."));
    QCOMPARE(free_name("ABCDEFG XYZ", {}), QStringLiteral("ABCDEFG-2"));
}

void ImportTest::the_report_line_by_line() {
    ImportPlan plan;
    plan.version = 3;
    plan.plans.resize(3);
    plan.plans[0].name = "A";
    plan.plans[0].programs.resize(2);
    plan.plans[0].arrival = Arrival::kept;
    plan.plans[1].name = "B";
    plan.plans[1].arrival = Arrival::renamed;
    plan.plans[1].new_name = "B-2";
    plan.plans[2].name = "C";
    plan.missing = {"asl"};
    Texts texts;
    const QString report = QStringLiteral(
        "Import of 'OLD.mdb' (Jet 3)\n\nPlans:\n"
        "  A (programs: 2): clashed: the present one is kept\n"
        "  B (programs: 0): clashed: came as 'B-2'\n"
        "  C (programs: 0): not imported\n"
        "\nSatellites:\n  none\n\nCorrected:\n  none\n"
        "\nNot in the old database:\n  asl\n"
        "\nCame: 0. Replaced: 0. Renamed: 1. Kept: 1. Corrections: 0.\n");
    QCOMPARE(import_report(plan, "OLD.mdb", {}, texts), report);
    QCOMPARE(import_report(plan, "OLD.mdb", "no room", texts),
             report + "The database could not be written any further: no room\n");
    QCOMPARE(old_file_error_text({OldFileFault::damaged, "OLD.mdb", "12 bytes"}, texts),
             QStringLiteral("The old database 'OLD.mdb' is damaged. Use a backup copy of it. "
                            "Nothing has been imported. (12 bytes)"));
}

void ImportTest::missing_and_unknown_tables_and_fields_are_reported() {
    OldDatabase old = old_database({plans({"A"}), table("PROGRAMMI", {"NOME", "note"}, {})});
    old.others = {"clienti"};
    const ImportPlan plan = import_plan_of(old);
    QVERIFY(plan.missing.contains("asl"));
    QVERIFY(plan.missing.contains("configurazione"));
    QVERIFY(plan.missing.contains("programmi.pg_num"));
    QVERIFY(!plan.missing.contains("programmi.nome"));
    QCOMPARE(plan.ignored, (QStringList{"clienti", "programmi.note"}));
    const QString report = said(plan);
    QVERIFY(report.contains("clienti"));
    QVERIFY(report.contains("programmi.pg_num"));
}

void ImportTest::names_with_percent_signs_do_not_mix_up_the_report() {
    const ImportPlan plan = import_plan_of(old_database({plans({"%2 a"})}));
    QVERIFY(said(plan).contains("The plan '%2 a' is named '%2 A'."));
}

void ImportTest::the_report_speaks_both_languages() {
    ImportPlan plan = import_plan_of(one_plan());
    Texts texts;
    texts.language = kItalian;
    QVERIFY(import_report(plan, "OLD.mdb", {}, texts).startsWith("Importazione di 'OLD.mdb'"));
    QSet<QString> errors;
    for (const int language : {int{kEnglish}, int{kItalian}}) {
        texts.language = language;
        for (int fault = 0; fault <= static_cast<int>(OldFileFault::no_reader); ++fault) {
            const QString text = old_file_error_text(
                {static_cast<OldFileFault>(fault), QStringLiteral("O%1.mdb"), {}}, texts);
            QVERIFY(text.contains("O%1.mdb"));
            QVERIFY(!text.contains(u'\n'));
            errors += text;
        }
    }
    QCOMPARE(errors.size(), 12);
}

}  // namespace m47::olddb

QTEST_GUILESS_MAIN(m47::olddb::ImportTest)
