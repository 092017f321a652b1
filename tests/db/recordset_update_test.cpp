// SPDX-License-Identifier: GPL-3.0-or-later
#include <QRegularExpression>
#include <QTemporaryDir>

#include "database_transaction.h"
#include "db_support.h"
#include "fault.h"

namespace m47::db {
namespace {

const QString kNome = QStringLiteral("nome");
const QString kNumber = QStringLiteral("pg_num");
const QString kDati = QStringLiteral("dati");

}  // namespace

/// Adding, editing and deleting rows.
class RecordsetUpdateTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Database> database_;

    QString path() const { return database_in(folder_->path()); }

    void add_satellites(const QStringList& names) {
        for (const QString& name : names) add_row(database_->asl(), {{kNome, name}});
        database_->asl().requery();
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
        database_ = made_in(folder_->path());
    }

    void cleanup() { database_.reset(); }

    void each_kind_comes_back_as_it_was_stored() {
        Recordset& set = database_->programmi();
        set.edit();
        set.set(kNumber, QStringLiteral("007"));
        set.set(QStringLiteral("frequenza"), 10714.3);
        set.set(QStringLiteral("loc_osc"), true);
        set.set(QStringLiteral("loc_osc0"), 3);
        set.set(QStringLiteral("satchbw"), 36);
        set.set(QStringLiteral("K22"), false);
        set.set(QStringLiteral("chber_min"), QStringLiteral("1E-8"));
        set.set(QStringLiteral("logger_pos"), QString());
        set.update();
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(set.text(kNumber), QStringLiteral("007"));
            QCOMPARE(set.value(QStringLiteral("frequenza")).toDouble(), 10714.3);
            QCOMPARE(set.text(QStringLiteral("loc_osc")), QStringLiteral("1"));
            QVERIFY(set.value(QStringLiteral("loc_osc")).toBool());
            QCOMPARE(set.value(QStringLiteral("loc_osc0")).toInt(), 3);
            QCOMPARE(set.text(QStringLiteral("satchbw")), QStringLiteral("36"));
            QVERIFY(!set.value(QStringLiteral("K22")).toBool());
            QCOMPARE(set.text(QStringLiteral("chber_min")), QStringLiteral("1E-8"));
            QVERIFY(!set.value(QStringLiteral("logger_pos")).isNull());
            QVERIFY(set.value(QStringLiteral("mer_min")).isNull());
            set.move_first();
        }
        const QStringList kinds = run_sql(
            path(), {QStringLiteral("SELECT typeof(pg_num) || typeof(frequenza) || typeof(loc_osc)"
                                    " || typeof(satchbw) || typeof(mer_min) FROM programmi")});
        QCOMPARE(kinds, QStringList{QStringLiteral("textrealintegerrealnull")});
    }

    void empty_fields_read_as_null_and_empty_text() {
        const Recordset& set = database_->programmi();
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 1"));
        for (const char* field : {"pg_num", "frequenza", "loc_osc", "K22", "mer_max"}) {
            QVERIFY(set.value(QString::fromLatin1(field)).isNull());
            QCOMPARE(set.text(QString::fromLatin1(field)), QString());
            QCOMPARE(set.value(QString::fromLatin1(field)).toDouble(), 0.0);
        }
    }

    void a_field_can_be_unset_again() {
        Recordset& set = database_->programmi();
        set.edit();
        set.set(kNumber, QStringLiteral("001"));
        set.update();
        set.edit();
        set.set(kNumber, QVariant());
        set.update();
        QVERIFY(set.value(kNumber).isNull());
        set.move_first();
        QVERIFY(set.value(kNumber).isNull());
    }

    void an_update_leaves_the_other_fields_alone() {
        Recordset& set = database_->asl();
        add_row(set, {{kNome, QStringLiteral("A")}, {kDati, QStringLiteral("S1")}});
        set.move_first();
        run_sql(path(), {QStringLiteral("UPDATE asl SET dati = 'S2'")});
        set.edit();
        set.set(kNome, QStringLiteral("B"));
        set.update();
        QCOMPARE(set.text(kDati), QStringLiteral("S2"));
        QCOMPARE(row_of(path(), QStringLiteral("asl"), set.bookmark()).value(kDati),
                 QStringLiteral("S2"));
    }

    void a_new_row_joins_at_the_end_without_becoming_current() {
        add_satellites({QStringLiteral("A"), QStringLiteral("B")});
        Recordset& set = database_->asl();
        add_row(set, {{kNome, QStringLiteral("C")}});
        QCOMPARE(set.text(kNome), QStringLiteral("A"));
        QCOMPARE(set.count(), 3);
        set.move_last();
        QCOMPARE(set.text(kNome), QStringLiteral("C"));
        QCOMPARE(set.bookmark(), set.last_added());
        set.move_next();
        add_row(set, {{kNome, QStringLiteral("D")}});
        QVERIFY(set.end_of_set());
        set.move_previous();
        QCOMPARE(set.text(kNome), QStringLiteral("D"));
    }

    void the_first_row_of_an_empty_set() {
        Recordset& set = database_->asl();
        QCOMPARE(set.last_added(), Bookmark{0});
        set.add_new();
        set.update();
        QCOMPARE(set.count(), 1);
        QVERIFY(!set.empty());
        M47_VERIFY_FAULT(set.text(kNome), "no current record");
        QVERIFY(set.begin_of_set());
        set.move_next();
        QVERIFY(set.value(kNome).isNull());
        set.move_first();
        QVERIFY(set.value(kNome).isNull());
    }

    void only_an_open_row_takes_values() {
        add_satellites({QStringLiteral("A")});
        Recordset& set = database_->asl();
        M47_VERIFY_FAULT(set.set(kNome, 1), "open for writing");
        M47_VERIFY_FAULT(set.update(), "open for writing");
        set.edit();
        set.set(kNome, QStringLiteral("B"));
        QCOMPARE(set.text(kNome), QStringLiteral("A"));
        set.cancel();
        M47_VERIFY_FAULT(set.update(), "open for writing");
        set.edit();
        set.set(kNome, QStringLiteral("B"));
        set.move_first();
        M47_VERIFY_FAULT(set.update(), "open for writing");
        QCOMPARE(set.text(kNome), QStringLiteral("A"));
        set.edit();
        set.update();
        QCOMPARE(set.text(kNome), QStringLiteral("A"));
        M47_VERIFY_FAULT(set.update(), "open for writing");
    }

    void what_was_set_does_not_reach_the_next_row() {
        add_satellites({QStringLiteral("A"), QStringLiteral("B")});
        Recordset& set = database_->asl();
        set.add_new();
        set.set(kDati, QStringLiteral("S1"));
        set.edit();
        set.set(kNome, QStringLiteral("C"));
        set.update();
        QVERIFY(set.value(kDati).isNull());
        set.edit();
        set.set(kDati, QStringLiteral("S2"));
        set.add_new();
        set.set(kNome, QStringLiteral("D"));
        set.update();
        set.move_last();
        QCOMPARE(set.text(kNome), QStringLiteral("D"));
        QVERIFY(set.value(kDati).isNull());
    }

    void removing_leaves_no_current_row_until_the_next_move() {
        add_satellites({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
        Recordset& set = database_->asl();
        set.move_next();
        set.remove();
        QCOMPARE(set.count(), 2);
        M47_VERIFY_FAULT(set.text(kNome), "no current record");
        M47_VERIFY_FAULT(set.remove(), "no current record");
        set.move_next();
        QCOMPARE(set.text(kNome), QStringLiteral("C"));
        set.remove();
        QVERIFY(!set.end_of_set());
        set.move_next();
        QVERIFY(set.end_of_set());
        set.move_last();
        QCOMPARE(set.text(kNome), QStringLiteral("A"));
        set.remove();
        QVERIFY(set.empty());
        QVERIFY(set.begin_of_set());
        QVERIFY(set.end_of_set());
        QCOMPARE(run_sql(path(), {QStringLiteral("SELECT count(*) FROM asl")}),
                 QStringList{QStringLiteral("0")});
    }

    void removing_and_moving_on_empties_a_set() {
        add_satellites({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
        Recordset& set = database_->asl();
        int removed = 0;
        for (; !set.end_of_set(); set.move_next(), ++removed) set.remove();
        QCOMPARE(removed, 3);
        QVERIFY(set.empty());
    }

    void removing_and_moving_back() {
        add_satellites({QStringLiteral("A"), QStringLiteral("B")});
        Recordset& set = database_->asl();
        set.move_last();
        set.remove();
        add_row(set, {{kNome, QStringLiteral("C")}});
        set.move_previous();
        QCOMPARE(set.text(kNome), QStringLiteral("A"));
        set.remove();
        set.move_previous();
        QVERIFY(set.begin_of_set());
        set.move_next();
        QCOMPARE(set.text(kNome), QStringLiteral("C"));
    }

    void find_and_remove_until_none_is_left() {
        for (int number = 0; number < 5; ++number)
            add_row(database_->programmi(), {{kNome, QStringLiteral("PLAN 1")}});
        Recordset set = database_->of_plan(QStringLiteral("programmi"), QStringLiteral("PLAN 1"));
        int removed = 0;
        for (; set.find_first(kNome, QStringLiteral("PLAN 1")); ++removed) set.remove();
        QCOMPARE(removed, 6);
        QVERIFY(set.empty());
    }

    void a_row_deleted_elsewhere_takes_no_update() {
        add_satellites({QStringLiteral("A"), QStringLiteral("B")});
        Recordset& set = database_->asl();
        set.edit();
        set.set(kNome, QStringLiteral("NEW"));
        run_sql(path(), {QStringLiteral("DELETE FROM asl WHERE nome = 'A'")});
        M47_VERIFY_FAULT(set.update(), "has been deleted");
        M47_VERIFY_FAULT(set.update(), "has been deleted");
        set.cancel();
        M47_VERIFY_FAULT(set.edit(), "has been deleted");
        M47_VERIFY_FAULT(set.remove(), "has been deleted");
        set.move_next();
        QCOMPARE(set.text(kNome), QStringLiteral("B"));
        QCOMPARE(run_sql(path(), {QStringLiteral("SELECT nome FROM asl")}),
                 QStringList{QStringLiteral("B")});
    }

    void an_update_the_engine_refuses_stays_open() {
        Recordset& set = database_->gruppo();
        add_row(set, {{kNome, QStringLiteral("PLAN 2")}});
        set.add_new();
        set.set(kNome, QStringLiteral("PLAN 1"));
        M47_VERIFY_FAULT(set.update(), "UNIQUE constraint failed");
        QCOMPARE(set.count(), 2);
        set.set(kNome, QStringLiteral("PLAN 3"));
        set.update();
        QCOMPARE(set.count(), 3);

        set.edit();
        set.set(kNome, QStringLiteral("PLAN 2"));
        M47_VERIFY_FAULT(set.update(), "UNIQUE constraint failed");
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 1"));
        set.cancel();
        QCOMPARE(run_sql(path(), {QStringLiteral("SELECT nome FROM gruppo ORDER BY id")}),
                 (QStringList{QStringLiteral("PLAN 1"), QStringLiteral("PLAN 2"),
                              QStringLiteral("PLAN 3")}));
    }

    void programs_of_the_same_number_are_not_refused() {
        Recordset& set = database_->programmi();
        for (int k = 0; k < 2; ++k)
            add_row(set, {{kNome, QStringLiteral("A")}, {kNumber, QStringLiteral("001")}});
        QCOMPARE(database_->of_plan(QStringLiteral("programmi"), QStringLiteral("A")).count(), 2);
    }

    void a_row_number_that_is_given_again_stands_for_one_row() {
        // In tables that another program has made the engine gives the last number once more.
        database_.reset();
        run_sql(path(), {QStringLiteral("DROP TABLE asl"),
                         QStringLiteral("CREATE TABLE asl (nome TEXT, dati TEXT)")});
        database_ = opened(path());
        add_satellites({QStringLiteral("A"), QStringLiteral("B")});
        Recordset& set = database_->asl();
        run_sql(path(), {QStringLiteral("DELETE FROM asl WHERE nome = 'B'")});
        add_row(set, {{kNome, QStringLiteral("C")}});
        QCOMPARE(set.count(), 2);
        set.move_next();
        QCOMPARE(set.text(kNome), QStringLiteral("C"));
        set.move_next();
        QVERIFY(set.end_of_set());
    }

    void a_transaction_that_is_not_committed_leaves_nothing() {
        const auto names = [this] {
            return run_sql(path(), {QStringLiteral("SELECT nome FROM asl ORDER BY id")});
        };
        {
            const DatabaseTransaction dropped(database_->connection());
            add_row(database_->asl(), {{kNome, QStringLiteral("A")}});
        }
        QCOMPARE(names(), QStringList());
        {
            DatabaseTransaction kept(database_->connection());
            add_row(database_->asl(), {{kNome, QStringLiteral("B")}});
            QCOMPARE(names(), QStringList());
            kept.commit();
        }
        QCOMPARE(names(), QStringList{QStringLiteral("B")});
        // Nothing is left open: another one begins.
        DatabaseTransaction(database_->connection()).commit();
    }

    void a_full_disk_keeps_the_row_open_and_the_file_whole() {
        database_.reset();
        Child child({QStringLiteral("update-full"), path()});
        const QString words = child.line();
        QVERIFY2(words.startsWith(QLatin1String("fault ")), qPrintable(words));
        QCOMPARE(child.line(), QStringLiteral("grown by 0"));
        QCOMPARE(child.line(), QStringLiteral("grown by 1"));
        child.rest();
        QCOMPARE(run_sql(path(), {QStringLiteral("PRAGMA integrity_check")}),
                 QStringList{QStringLiteral("ok")});
        QCOMPARE(run_sql(path(), {QStringLiteral("SELECT length(dati) FROM asl")}),
                 QStringList{QStringLiteral("200000")});
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::RecordsetUpdateTest)
#include "recordset_update_test.moc"
