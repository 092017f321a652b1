// SPDX-License-Identifier: GPL-3.0-or-later
// What comes from an old database, in which form, and how it meets what is there already.
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include "database_transaction.h"
#include "db_support.h"
#include "engine.h"
#include "import_apply.h"
#include "import_plan.h"
#include "import_report.h"
#include "import_values.h"

namespace m47::olddb {

class ImportTest : public QObject {
    Q_OBJECT

    static OldTable plans(const QStringList& names) {
        OldTable table{QStringLiteral("gruppo"), {QStringLiteral("nome")}, {}};
        for (const QString& name : names) table.rows += QVariantList{name};
        return table;
    }
    static OldTable table(const QString& name, const QStringList& fields,
                          const QList<QVariantList>& rows) {
        return {name, fields, rows};
    }
    /// Each table as it would be without rows.
    static OldDatabase old_database(const QList<OldTable>& tables) { return {4, tables, {}}; }

    static QStringList names_of(const ImportPlan& plan) {
        QStringList names;
        for (const ImportedPlan& one : plan.plans) names += one.name;
        return names;
    }
    static QString said(const ImportPlan& plan) {
        Texts texts;
        return import_report(plan, QStringLiteral("OLD.mdb"), QString(), texts);
    }

    /// One plan "A" of one program.
    static OldDatabase one_plan(const QString& frequency = QStringLiteral("1200")) {
        return old_database(
            {plans({"A"}),
             table("configurazione", {"nome", "loc_osc1", "user_sc3"}, {{"A", 9750.0, "SW D"}}),
             table("programmi", {"nome", "pg_num", "frequenza"}, {{"A", "001", frequency}}),
             table("asl", {"nome", "dati"}, {{"ASTRA", "S1\rS9030000FC"}})});
    }

    static ImportedValue value(const char* table, const char* name, const QVariant& old) {
        for (const db::Field& field : db::table_named(QLatin1String(table)).fields)
            if (qstrcmp(field.name, name) == 0) return value_for(field, old);
        qFatal("no field %s", name);
    }

  private Q_SLOTS:
    void plan_names_take_their_form_data() {
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
        QTest::newRow("no half character")
            << QString::fromUtf8("ABCDEFGHI\U0001F4E1") << "ABCDEFGHI";
    }
    void plan_names_take_their_form() {
        QFETCH(QString, old);
        QFETCH(QString, now);
        QCOMPARE(names_of(import_plan_of(old_database({plans({old})}))), QStringList{now});
    }

    void a_corrected_name_is_reported_and_its_rows_follow() {
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

    void long_names_that_begin_alike_stay_two_plans() {
        OldDatabase old =
            old_database({plans({"CAROUSEL 13 EAST", "CAROUSEL 13 WEST"}),
                          table("programmi", {"nome", "pg_num"},
                                {{"CAROUSEL 13 WEST", "007"}, {"CAROUSEL 13 EAST", "001"}})});
        const ImportPlan plan = import_plan_of(old);
        QCOMPARE(names_of(plan), (QStringList{"CAROUSEL 1", "CAROUSEL-2"}));
        QCOMPARE(plan.plans[1].programs[0].value("pg_num").toString(), QStringLiteral("007"));
    }

    void free_names_stay_within_ten_characters() {
        QCOMPARE(free_name("A", {"A"}), QStringLiteral("A-2"));
        QCOMPARE(free_name("HOTBIRD13E", {}), QStringLiteral("HOTBIRD1-2"));
        QStringList taken;
        for (int k = 2; k < 10; ++k) taken += QStringLiteral("HOTBIRD1-%1").arg(k);
        QCOMPARE(free_name("HOTBIRD13E", taken), QStringLiteral("HOTBIRD-10"));
    }

    void texts_come_through_as_they_stand_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("blanks around a number") << " 22000 ";
        QTest::newRow("empty") << "";
        QTest::newRow("accents") << QString::fromUtf8("perché È così €");
        QTest::newRow("lines") << "a\rb\r\nc\n";
        QTest::newRow("tab and quotes") << "\t\"x\" 'y'";
    }
    void texts_come_through_as_they_stand() {
        QFETCH(QString, text);
        for (const char* field : {"qpsk_symbolrate", "lev_min", "chber_max"}) {
            const ImportedValue now = value("programmi", field, text);
            QCOMPARE(now.value, QVariant(text));
            QCOMPARE(now.verdict, ImportedValue::Verdict::as_it_was);
        }
        QCOMPARE(value("configurazione", "user_sc0", text).value, QVariant(text));
    }

    void unset_fields_stay_unset() {
        for (const db::Field& field : db::table_named("programmi").fields) {
            const ImportedValue now = value_for(field, QVariant());
            QVERIFY(now.value.isNull());
            QCOMPARE(now.verdict, ImportedValue::Verdict::as_it_was);
        }
    }

    void values_take_their_form_data() {
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
    void values_take_their_form() {
        QFETCH(QByteArray, field);
        QFETCH(QVariant, old);
        QFETCH(QVariant, now);
        QFETCH(int, verdict);
        const ImportedValue found = value("programmi", field.constData(), old);
        QCOMPARE(found.value, now);
        QCOMPARE(found.value.typeId(), now.typeId());
        QCOMPARE(static_cast<int>(found.verdict), verdict);
    }

    void what_is_changed_and_what_is_doubtful_is_reported() {
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

    void rows_that_belong_nowhere() {
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
              "A row of table programmi has no name",
              "The plan 'A' had oscillators and switches twice", "The plan 'C' was not in the list",
              "The plan 'B' was not in the list", "The plan 'B' had no oscillators and switches",
              "The plan 'A' had no program", "The plan 'C' had no program",
              "An entry '**********' is no satellite", "The satellite 'S' stands twice",
              "The data of satellite 'S-2' do not end"})
            QVERIFY2(report.contains(QLatin1String(line)), line);
    }

    void what_stands_twice_is_told_once() {
        const ImportPlan plan = import_plan_of(old_database(
            {plans({"A"}), table("programmi", {"nome", "pg_num", "logger_pos"},
                                 {{"A", "001", ""}, {"A", "001", ""}, {"A", "001", "07"}})}));
        QCOMPARE(said(plan).count("stands twice"), 1);
    }

    void plans_without_a_list_are_no_correction() {
        const ImportPlan plan = import_plan_of(old_database(
            {table("configurazione", {"nome"}, {{"A"}}), table("programmi", {"nome"}, {{"A"}})}));
        QCOMPARE(names_of(plan), QStringList{"A"});
        QVERIFY2(plan.corrected.isEmpty(), qPrintable(said(plan)));
    }

    void satellites_take_their_form() {
        const ImportPlan plan = import_plan_of(old_database({table(
            "asl", {"nome", "dati"},
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

    void an_import_that_is_told_to_end_says_so_between_two_plans() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        ImportPlan plan = import_plan_of(old_database({plans({"A", "B"})}));
        int asked = 0;
        Texts texts;
        QCOMPARE(apply_import(plan, *database, texts, [&] { return ++asked > 1; }),
                 QStringLiteral("the program was told to end"));
        QCOMPARE(
            db::run_sql(db::database_in(folder.path()), {"SELECT nome FROM gruppo ORDER BY id"}),
            (QStringList{"PLAN 1", "A"}));
        QVERIFY(plan.plans[0].arrival == Arrival::came && plan.plans[1].arrival == Arrival::open);
    }

    void the_report_line_by_line() {
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

    void missing_and_unknown_tables_and_fields_are_reported() {
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

    void a_satellite_that_differs_in_letter_case_is_another_one() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        const QString path = db::database_in(folder.path());
        db::run_sql(path,
                    {"INSERT INTO asl (nome, dati) VALUES ('Astra', 'first'), ('astra', 'small'),"
                     " ('ASTRA', 'third')"});
        ImportPlan plan = import_plan_of(one_plan());
        mark_clashes(plan, *database);
        QVERIFY(plan.satellites[0].clashes);
        plan.satellites[0].choice = ClashChoice::replace;
        QCOMPARE(apply_import(plan, *database), QString());
        QCOMPARE(
            db::run_sql(path, {"SELECT nome || ' ' || substr(dati, 1, 5) FROM asl ORDER BY id"}),
            QStringList({"Astra first", "astra small", "ASTRA S1\rS9"}));
    }

    void everything_arrives_in_the_database() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        ImportPlan plan = import_plan_of(one_plan());
        QCOMPARE(apply_import(plan, *database), QString());
        const QString path = db::database_in(folder.path());
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM gruppo ORDER BY id"}),
                 (QStringList{"PLAN 1", "A"}));
        QCOMPARE(db::run_sql(path, {"SELECT loc_osc1 || user_sc3 || (loc_osc2 IS NULL) FROM "
                                    "configurazione WHERE nome = 'A'"}),
                 QStringList{"9750.0SW D1"});
        QCOMPARE(
            db::run_sql(path, {"SELECT pg_num || frequenza || (lev_min IS NULL) FROM programmi "
                               "WHERE nome = 'A'"}),
            QStringList{"0011200.01"});
        QCOMPARE(db::run_sql(path, {"SELECT hex(dati) FROM asl WHERE nome = 'ASTRA'"}),
                 QStringList{QString::fromLatin1(QByteArray("S1\rS9030000FC").toHex().toUpper())});
    }

    void clashes_are_kept_replaced_or_renamed_data() {
        QTest::addColumn<int>("choice");
        QTest::addColumn<QStringList>("frequencies");
        QTest::addColumn<QStringList>("satellites");
        QTest::addColumn<QString>("line");
        QTest::newRow("keep") << int(ClashChoice::keep) << QStringList{"A 1200.0"}
                              << QStringList{"ASTRA old"} << "the present one is kept";
        QTest::newRow("replace") << int(ClashChoice::replace) << QStringList{"A 1300.0"}
                                 << QStringList{"ASTRA new"} << "the present one is replaced";
        QTest::newRow("rename") << int(ClashChoice::rename) << QStringList{"A 1200.0", "A-2 1300.0"}
                                << QStringList{"ASTRA old", "ASTRA-2 new"} << "came as 'A-2'";
    }
    void clashes_are_kept_replaced_or_renamed() {
        QFETCH(int, choice);
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        OldDatabase first = one_plan("1200");
        first.tables[3].rows[0][1] = QStringLiteral("old");
        ImportPlan plan = import_plan_of(first);
        QCOMPARE(apply_import(plan, *database), QString());
        OldDatabase second = one_plan("1300");
        second.tables[3].rows[0][1] = QStringLiteral("new");
        plan = import_plan_of(second);
        mark_clashes(plan, *database);
        QVERIFY(plan.plans[0].clashes && plan.satellites[0].clashes);
        plan.plans[0].choice = static_cast<ClashChoice>(choice);
        plan.satellites[0].choice = static_cast<ClashChoice>(choice);
        QCOMPARE(apply_import(plan, *database), QString());
        const QString path = db::database_in(folder.path());
        QTEST(
            db::run_sql(path, {"SELECT nome || ' ' || frequenza FROM programmi WHERE nome <> 'PLAN "
                               "1' ORDER BY nome"}),
            "frequencies");
        QTEST(db::run_sql(path, {"SELECT nome || ' ' || dati FROM asl ORDER BY nome"}),
              "satellites");
        // One row a plan, whatever became of it.
        for (const char* table : {"gruppo", "configurazione"})
            QCOMPARE(
                db::run_sql(path, {QStringLiteral("SELECT count(*) - count(DISTINCT nome) FROM %1")
                                       .arg(QLatin1String(table))}),
                QStringList{"0"});
        QFETCH(QString, line);
        QVERIFY2(said(plan).contains(line), qPrintable(said(plan)));
    }

    void a_plan_clashes_in_whatever_letters_its_name_stands_there() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        const QString path = db::database_in(folder.path());
        db::run_sql(path, {"INSERT INTO gruppo (nome) VALUES ('a ')"});
        ImportPlan plan = import_plan_of(one_plan());
        mark_clashes(plan, *database);
        QVERIFY(plan.plans[0].clashes);
        plan.plans[0].choice = ClashChoice::keep;
        QCOMPARE(apply_import(plan, *database), QString());
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM programmi"}), QStringList{"PLAN 1"});
    }

    void a_new_name_is_none_that_is_still_to_come() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        ImportPlan plan = import_plan_of(one_plan());
        QCOMPARE(apply_import(plan, *database), QString());
        plan = import_plan_of(old_database({plans({"A", "A-2"})}));
        mark_clashes(plan, *database);
        plan.plans[0].choice = ClashChoice::rename;
        QCOMPARE(apply_import(plan, *database), QString());
        QCOMPARE(
            db::run_sql(db::database_in(folder.path()), {"SELECT nome FROM gruppo ORDER BY nome"}),
            (QStringList{"A", "A-2", "A-3", "PLAN 1"}));
    }

    void a_plan_that_cannot_be_written_whole_is_not_written_at_all() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        // The second program of plan B is refused, as on a full disk.
        const QString path = db::database_in(folder.path());
        db::run_sql(path, {"CREATE TRIGGER full BEFORE INSERT ON programmi WHEN NEW.pg_num = '013' "
                           "BEGIN SELECT RAISE(ABORT, 'no room'); END"});
        ImportPlan plan = import_plan_of(
            old_database({plans({"A", "B", "C"}),
                          table("programmi", {"nome", "pg_num"},
                                {{"A", "001"}, {"B", "012"}, {"B", "013"}, {"C", "001"}}),
                          table("asl", {"nome", "dati"}, {{"S", "S9030000FC"}})}));
        const QString words = apply_import(plan, *database);
        QVERIFY2(words.contains("no room"), qPrintable(words));
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM gruppo ORDER BY id"}),
                 (QStringList{"PLAN 1", "A"}));
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM programmi ORDER BY id"}),
                 (QStringList{"PLAN 1", "A"}));
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM configurazione ORDER BY id"}),
                 (QStringList{"PLAN 1", "A"}));
        QCOMPARE(db::run_sql(path, {"SELECT count(*) FROM asl"}), QStringList{"0"});
        Texts texts;
        const QString report = import_report(plan, "OLD.mdb", words, texts);
        QVERIFY(report.contains("A (programs: 1): came"));
        QVERIFY(report.contains("B (programs: 2): not imported"));
        QVERIFY(report.contains("no room"));
        // The database goes on working.
        db::add_row(database->gruppo(), {{"nome", "D"}});
    }

    void a_replaced_plan_that_fails_stays_as_it_was() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        ImportPlan plan = import_plan_of(one_plan());
        QCOMPARE(apply_import(plan, *database), QString());
        const QString path = db::database_in(folder.path());
        db::run_sql(path,
                    {"CREATE TRIGGER full BEFORE INSERT ON programmi BEGIN SELECT RAISE(ABORT, "
                     "'no room'); END"});
        const QStringList before = db::run_sql(path, {"SELECT nome || pg_num FROM programmi"});
        plan = import_plan_of(one_plan("1300"));
        mark_clashes(plan, *database);
        plan.plans[0].choice = ClashChoice::replace;
        QVERIFY(!apply_import(plan, *database).isEmpty());
        QCOMPARE(db::run_sql(path, {"SELECT nome || pg_num FROM programmi"}), before);
        QCOMPARE(db::run_sql(path, {"SELECT loc_osc1 FROM configurazione WHERE nome = 'A'"}),
                 QStringList{"9750"});
    }

    void a_transaction_is_kept_only_by_its_commit() {
        QTemporaryDir folder;
        const auto database = db::made_in(folder.path());
        const QString path = db::database_in(folder.path());
        {
            const db::DatabaseTransaction dropped(database->connection());
            db::add_row(database->gruppo(), {{"nome", "X"}});
        }
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM gruppo ORDER BY id"}), QStringList{"PLAN 1"});
        {
            db::DatabaseTransaction kept(database->connection());
            db::add_row(database->gruppo(), {{"nome", "X"}});
            kept.commit();
        }
        QCOMPARE(db::run_sql(path, {"SELECT nome FROM gruppo ORDER BY id"}),
                 (QStringList{"PLAN 1", "X"}));
    }

    void names_with_percent_signs_do_not_mix_up_the_report() {
        const ImportPlan plan = import_plan_of(old_database({plans({"%2 a"})}));
        QVERIFY(said(plan).contains("The plan '%2 a' is named '%2 A'."));
    }

    void the_report_speaks_both_languages() {
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
};

}  // namespace m47::olddb

QTEST_GUILESS_MAIN(m47::olddb::ImportTest)
#include "import_test.moc"
