// SPDX-License-Identifier: GPL-3.0-or-later
// How what comes from an old database meets what is there already, and arrives whole or not at all.
#include <QTemporaryDir>

#include "database_transaction.h"
#include "db_support.h"
#include "import_apply.h"
#include "import_report.h"
#include "import_test.h"

namespace m47::olddb {

void ImportTest::an_import_that_is_told_to_end_says_so_between_two_plans() {
    QTemporaryDir folder;
    const auto database = db::made_in(folder.path());
    ImportPlan plan = import_plan_of(old_database({plans({"A", "B"})}));
    int asked = 0;
    Texts texts;
    QCOMPARE(apply_import(plan, *database, texts, [&] { return ++asked > 1; }),
             QStringLiteral("the program was told to end"));
    QCOMPARE(db::run_sql(db::database_in(folder.path()), {"SELECT nome FROM gruppo ORDER BY id"}),
             (QStringList{"PLAN 1", "A"}));
    QVERIFY(plan.plans[0].arrival == Arrival::came && plan.plans[1].arrival == Arrival::open);
}

void ImportTest::a_satellite_that_differs_in_letter_case_is_another_one() {
    QTemporaryDir folder;
    const auto database = db::made_in(folder.path());
    const QString path = db::database_in(folder.path());
    db::run_sql(path, {"INSERT INTO asl (nome, dati) VALUES ('Astra', 'first'), ('astra', 'small'),"
                       " ('ASTRA', 'third')"});
    ImportPlan plan = import_plan_of(one_plan());
    mark_clashes(plan, *database);
    QVERIFY(plan.satellites[0].clashes);
    plan.satellites[0].choice = ClashChoice::replace;
    QCOMPARE(apply_import(plan, *database), QString());
    QCOMPARE(db::run_sql(path, {"SELECT nome || ' ' || substr(dati, 1, 5) FROM asl ORDER BY id"}),
             QStringList({"Astra first", "astra small", "ASTRA S1\rS9"}));
}

void ImportTest::everything_arrives_in_the_database() {
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
    QCOMPARE(db::run_sql(path, {"SELECT pg_num || frequenza || (lev_min IS NULL) FROM programmi "
                                "WHERE nome = 'A'"}),
             QStringList{"0011200.01"});
    QCOMPARE(db::run_sql(path, {"SELECT hex(dati) FROM asl WHERE nome = 'ASTRA'"}),
             QStringList{QString::fromLatin1(QByteArray("S1\rS9030000FC").toHex().toUpper())});
}

void ImportTest::clashes_are_kept_replaced_or_renamed_data() {
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

void ImportTest::clashes_are_kept_replaced_or_renamed() {
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
    QTEST(db::run_sql(path, {"SELECT nome || ' ' || frequenza FROM programmi WHERE nome <> 'PLAN "
                             "1' ORDER BY nome"}),
          "frequencies");
    QTEST(db::run_sql(path, {"SELECT nome || ' ' || dati FROM asl ORDER BY nome"}), "satellites");
    // One row a plan, whatever became of it.
    for (const char* table : {"gruppo", "configurazione"})
        QCOMPARE(db::run_sql(path, {QStringLiteral("SELECT count(*) - count(DISTINCT nome) FROM %1")
                                        .arg(QLatin1String(table))}),
                 QStringList{"0"});
    QFETCH(QString, line);
    QVERIFY2(said(plan).contains(line), qPrintable(said(plan)));
}

void ImportTest::a_plan_clashes_in_whatever_letters_its_name_stands_there() {
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

void ImportTest::a_new_name_is_none_that_is_still_to_come() {
    QTemporaryDir folder;
    const auto database = db::made_in(folder.path());
    ImportPlan plan = import_plan_of(one_plan());
    QCOMPARE(apply_import(plan, *database), QString());
    plan = import_plan_of(old_database({plans({"A", "A-2"})}));
    mark_clashes(plan, *database);
    plan.plans[0].choice = ClashChoice::rename;
    QCOMPARE(apply_import(plan, *database), QString());
    QCOMPARE(db::run_sql(db::database_in(folder.path()), {"SELECT nome FROM gruppo ORDER BY nome"}),
             (QStringList{"A", "A-2", "A-3", "PLAN 1"}));
}

void ImportTest::a_plan_that_cannot_be_written_whole_is_not_written_at_all() {
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

void ImportTest::a_replaced_plan_that_fails_stays_as_it_was() {
    QTemporaryDir folder;
    const auto database = db::made_in(folder.path());
    ImportPlan plan = import_plan_of(one_plan());
    QCOMPARE(apply_import(plan, *database), QString());
    const QString path = db::database_in(folder.path());
    db::run_sql(path, {"CREATE TRIGGER full BEFORE INSERT ON programmi BEGIN SELECT RAISE(ABORT, "
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

void ImportTest::a_transaction_is_kept_only_by_its_commit() {
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

}  // namespace m47::olddb
