// SPDX-License-Identifier: GPL-3.0-or-later
#include <QRegularExpression>
#include <QTemporaryDir>

#include "db_support.h"
#include "fault.h"

namespace m47::db {
namespace {

const QString kNome = QStringLiteral("nome");
const QString kNumber = QStringLiteral("pg_num");

}  // namespace

/// Moving, finding and counting in a record set.
class RecordsetTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Database> database_;

    // Plans A and B with the programs 001 to 003 each, added in turn.
    void add_programs() {
        database_->programmi().remove();
        for (const char* number : {"001", "002", "003"})
            for (const char* plan : {"A", "B"})
                add_row(database_->programmi(), {{kNome, QString::fromLatin1(plan)},
                                                 {kNumber, QString::fromLatin1(number)}});
    }

    void delete_elsewhere(const char* condition) {
        run_sql(database_in(folder_->path()),
                {QStringLiteral("DELETE FROM programmi WHERE ") + QLatin1String(condition)});
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
        database_ = made_in(folder_->path());
    }

    void cleanup() { database_.reset(); }

    void a_plan_is_found_in_whatever_letters() {
        Recordset& plans = database_->gruppo();
        add_row(plans, {{kNome, QStringLiteral(" roof ")}});
        add_row(plans, {{kNome, QStringLiteral("CELLAR")}});
        QVERIFY(find_plan(plans, QStringLiteral("Roof")));
        QCOMPARE(plans.text(kNome), QStringLiteral(" roof "));
        QVERIFY(find_plan(plans, QStringLiteral("cellar ")));
        QCOMPARE(plans.text(kNome), QStringLiteral("CELLAR"));
        QVERIFY(find_plan(plans, QStringLiteral("PLAN 1")));
        QVERIFY(!find_plan(plans, QStringLiteral("ATTIC")));
        run_sql(database_in(folder_->path()), {QStringLiteral("DELETE FROM gruppo")});
        plans.requery();
        QVERIFY(!find_plan(plans, QStringLiteral("PLAN 1")));
    }

    void opens_on_the_first_row() {
        add_programs();
        const Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("B"));
        QCOMPARE(set.count(), 3);
        QVERIFY(!set.begin_of_set());
        QVERIFY(!set.end_of_set());
        QCOMPARE(set.text(kNome), QStringLiteral("B"));
        QCOMPARE(set.text(kNumber), QStringLiteral("001"));
    }

    void moves_to_both_ends_and_no_further() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        set.move_last();
        QCOMPARE(set.text(kNumber), QStringLiteral("003"));
        set.move_next();
        QVERIFY(set.end_of_set());
        QVERIFY(!set.begin_of_set());
        M47_VERIFY_FAULT(set.text(kNumber), "no current record");
        M47_VERIFY_FAULT(set.edit(), "no current record");
        M47_VERIFY_FAULT(set.remove(), "no current record");
        M47_VERIFY_FAULT(set.bookmark(), "no current record");
        M47_VERIFY_FAULT(set.move_next(), "no current record");
        set.move_previous();
        QCOMPARE(set.text(kNumber), QStringLiteral("003"));
        set.move_first();
        set.move_previous();
        QVERIFY(set.begin_of_set());
        QVERIFY(!set.end_of_set());
        M47_VERIFY_FAULT(set.value(kNumber), "no current record");
        M47_VERIFY_FAULT(set.move_previous(), "no current record");
        set.move_next();
        QCOMPARE(set.text(kNumber), QStringLiteral("001"));
    }

    void an_empty_set_has_no_row_to_move_to() {
        Recordset& set = database_->asl();
        QVERIFY(set.empty());
        QVERIFY(set.begin_of_set());
        QVERIFY(set.end_of_set());
        QCOMPARE(set.count(), 0);
        M47_VERIFY_FAULT(set.move_first(), "no current record");
        M47_VERIFY_FAULT(set.move_last(), "no current record");
        M47_VERIFY_FAULT(set.move_next(), "no current record");
        M47_VERIFY_FAULT(set.move_previous(), "no current record");
        QVERIFY(!set.find_first(kNome, QString()));
    }

    void find_first_takes_the_first_of_the_set() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("B"));
        QVERIFY(set.find_first(kNumber, QStringLiteral("002")));
        QCOMPARE(set.text(kNome), QStringLiteral("B"));
        QVERIFY(!set.find_first(kNumber, QStringLiteral("2")));
        QCOMPARE(set.text(kNumber), QStringLiteral("002"));
        add_row(set, {{kNome, QStringLiteral("B")}, {kNumber, QStringLiteral("002")}});
        const Bookmark second = set.last_added();
        QVERIFY(set.find_first(kNumber, QStringLiteral("002")));
        QVERIFY(set.bookmark() < second);
    }

    void find_first_sees_only_the_rows_of_the_set() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        Recordset other = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        add_row(other, {{kNome, QStringLiteral("A")}, {kNumber, QStringLiteral("050")}});
        QVERIFY(!set.find_first(kNumber, QStringLiteral("050")));
        // Also where a later row has joined the set.
        add_row(set, {{kNome, QStringLiteral("A")}, {kNumber, QStringLiteral("051")}});
        QVERIFY(!set.find_first(kNumber, QStringLiteral("050")));
        QCOMPARE(set.text(kNumber), QStringLiteral("001"));
        set.requery();
        QVERIFY(set.find_first(kNumber, QStringLiteral("050")));
    }

    void quotes_in_a_name_are_characters_data() {
        QTest::addColumn<QString>("name");
        QTest::newRow("double") << QStringLiteral("SAT \"13\" EAST");
        QTest::newRow("single") << QStringLiteral("L'AQUILA");
        QTest::newRow("statement") << QStringLiteral("X'; DROP TABLE programmi; --");
        QTest::newRow("condition") << QStringLiteral("\" OR \"\"=\"");
        QTest::newRow("placeholders") << QStringLiteral("? :a @b $c ?1 %1");
        QTest::newRow("other letters") << QStringLiteral("CAFFÈ 日本 😀");
    }

    void quotes_in_a_name_are_characters() {
        QFETCH(QString, name);
        for (const char* table : {"gruppo", "configurazione", "programmi", "asl"}) {
            const QString table_name = QString::fromLatin1(table);
            Recordset whole = Recordset::table(database_->connection(), table_name);
            const int before = whole.count();
            add_row(whole, {{kNome, name}});
            QVERIFY(whole.find_first(kNome, name));
            const Recordset set = database_->of_plan(table_name, name);
            QCOMPARE(set.count(), 1);
            QCOMPARE(set.text(kNome), name);
            whole.requery();
            QCOMPARE(whole.count(), before + 1);
        }
    }

    void a_name_that_is_no_field_is_a_fault() {
        Recordset& set = database_->gruppo();
        const QString bad = QStringLiteral("nome = nome OR nome");
        M47_VERIFY_FAULT(set.value(bad), "no field");
        M47_VERIFY_FAULT(set.find_first(bad, QString()), "no field");
        set.edit();
        M47_VERIFY_FAULT(set.set(bad, 1), "no field");
        M47_VERIFY_FAULT(set.set(QStringLiteral("id"), 1), "no field");
        M47_VERIFY_FAULT(
            Recordset::where(database_->connection(), QStringLiteral("gruppo"), bad, 1),
            "no field");
        M47_VERIFY_FAULT(Recordset::table(database_->connection(), QStringLiteral("sqlite_master")),
                         "no table");
    }

    void a_move_reads_the_row_anew() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        run_sql(database_in(folder_->path()),
                {QStringLiteral("UPDATE programmi SET lev_min = '42'")});
        QCOMPARE(set.text(QStringLiteral("lev_min")), QString());
        set.move_first();
        QCOMPARE(set.text(QStringLiteral("lev_min")), QStringLiteral("42"));
    }

    void deleted_rows_are_skipped_in_the_direction_of_the_move() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        delete_elsewhere("pg_num = '002'");
        set.move_next();
        QCOMPARE(set.text(kNumber), QStringLiteral("003"));
        QCOMPARE(set.count(), 2);
        set.move_previous();
        QCOMPARE(set.text(kNumber), QStringLiteral("001"));

        set.move_last();
        delete_elsewhere("pg_num = '001'");
        set.move_previous();
        QVERIFY(set.begin_of_set());
        QVERIFY(!set.end_of_set());
        QCOMPARE(set.count(), 1);
        set.move_first();
        QCOMPARE(set.text(kNumber), QStringLiteral("003"));
    }

    void deleted_rows_at_the_ends_are_skipped() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        delete_elsewhere("pg_num = '003'");
        set.move_last();
        QCOMPARE(set.text(kNumber), QStringLiteral("002"));
        delete_elsewhere("pg_num = '001'");
        set.move_first();
        QCOMPARE(set.text(kNumber), QStringLiteral("002"));
        delete_elsewhere("pg_num = '002'");
        QVERIFY(!set.empty());
        set.move_first();
        QVERIFY(set.empty());
        QVERIFY(set.begin_of_set());
        QVERIFY(set.end_of_set());
        M47_VERIFY_FAULT(set.move_first(), "no current record");
    }

    void a_set_read_anew_keeps_no_row_that_is_gone() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        set.edit();
        delete_elsewhere("nome = 'A'");
        set.requery();
        QVERIFY(set.empty());
        M47_VERIFY_FAULT(set.text(kNumber), "no current record");
        M47_VERIFY_FAULT(set.update(), "no record is open");
    }

    void a_bookmark_leads_back() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        set.move_next();
        const Bookmark second = set.bookmark();
        set.move_last();
        set.go_to(second);
        QCOMPARE(set.text(kNumber), QStringLiteral("002"));
        set.move_next();
        QCOMPARE(set.text(kNumber), QStringLiteral("003"));
        const Bookmark foreign =
            database_->of_plan(QStringLiteral("programmi"), QStringLiteral("B")).bookmark();
        M47_VERIFY_FAULT(set.go_to(foreign), "not a record of this set");
        delete_elsewhere("pg_num = '002'");
        M47_VERIFY_FAULT(set.go_to(second), "has been deleted");
        QCOMPARE(set.text(kNumber), QStringLiteral("003"));
    }

    void a_deleted_row_is_never_taken_for_a_new_one() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("B"));
        set.move_last();
        const Bookmark last = set.bookmark();
        Recordset other = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("B"));
        other.go_to(last);
        other.remove();
        add_row(other, {{kNome, QStringLiteral("B")}, {kNumber, QStringLiteral("099")}});
        QVERIFY(other.last_added() != last);
        M47_VERIFY_FAULT(set.edit(), "has been deleted");
    }

    void a_set_that_outlives_its_database_only_faults() {
        add_programs();
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A"));
        database_.reset();
        M47_VERIFY_FAULT(set.move_next(), "closed");
        M47_VERIFY_FAULT(set.requery(), "closed");
        QCOMPARE(set.text(kNumber), QStringLiteral("001"));
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::RecordsetTest)
#include "recordset_test.moc"
