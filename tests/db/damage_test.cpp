// SPDX-License-Identifier: GPL-3.0-or-later
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "db_support.h"
#include "fault.h"

namespace m47::db {
namespace {

constexpr qsizetype kPage = 4096;
constexpr int kPlans = 12;
constexpr int kPrograms = 30;
constexpr int kRounds = 3;
// How such a page of the file begins.
constexpr char kLeafOfIndex = 0x0a;

using Rows = QMap<QString, QString>;

const std::array kFields{"nome", "pg_num", "frequenza", "lev_min", "mer_max"};

QString key_of(Recordset& set) {
    return set.text(QStringLiteral("nome")) + u'/' + set.text(QStringLiteral("pg_num"));
}

QString content_of_row(Recordset& set) {
    QStringList values;
    for (const char* field : kFields) values += set.text(QString::fromLatin1(field));
    return values.join(u'|');
}

Rows programs_of(Database& database) {
    Rows rows;
    Recordset& set = database.programmi();
    for (set.move_first(); !set.end_of_set(); set.move_next())
        rows.insert(key_of(set), content_of_row(set));
    return rows;
}

}  // namespace

/// A file that was damaged on its medium.
class DamageTest : public QObject {
    Q_OBJECT

    QTemporaryDir folder_;
    QByteArray sound_;
    Rows programs_;
    int free_pages_ = 0;
    int refused_ = 0;
    int faulted_ = 0;
    int read_ = 0;

    QString path() const { return database_in(folder_.path()); }

    void populate(Database& database) {
        for (int plan = 0; plan < kPlans; ++plan) {
            const QString name = QStringLiteral("PLAN %1").arg(plan + 2);
            add_row(database.gruppo(), {{QStringLiteral("nome"), name}});
            add_row(database.configurazione(), {{QStringLiteral("nome"), name}});
            add_row(database.asl(),
                    {{QStringLiteral("nome"), name}, {QStringLiteral("dati"), QString(180, u'S')}});
            for (int number = 0; number < kPrograms; ++number)
                add_row(
                    database.programmi(),
                    {{QStringLiteral("nome"), name},
                     {QStringLiteral("pg_num"), QString::number(number).rightJustified(3, u'0')},
                     {QStringLiteral("frequenza"), 950 + number},
                     {QStringLiteral("lev_min"), QString::number(plan * number)},
                     {QStringLiteral("mer_max"), QStringLiteral("40")}});
        }
    }

    // Pages that are free hold nothing of value: damage there does no harm.
    void leave_free_pages(Database& database) {
        add_row(database.asl(), {{QStringLiteral("nome"), QStringLiteral("LONG")},
                                 {QStringLiteral("dati"), QString(20000, u'S')}});
        QVERIFY(database.asl().find_first(QStringLiteral("nome"), QStringLiteral("LONG")));
        database.asl().remove();
    }

    // Refused and untouched, or every row right, or a fault: never a wrong row.
    void verify_harmless(const QByteArray& damaged) {
        write_file(path(), damaged);
        DatabaseError error{};
        const auto database = Database::open(path(), error);
        if (!database) {
            ++refused_;
            QVERIFY(error.fault == DatabaseFault::damaged ||
                    error.fault == DatabaseFault::index_damaged ||
                    error.fault == DatabaseFault::foreign);
            QCOMPARE(files_in(folder_.path()).keys(),
                     QStringList{QString::fromLatin1(kDatabaseFile)});
            QVERIFY(content_of(path()) == damaged);
            return;
        }
        try {
            const Rows rows = programs_of(*database);
            QCOMPARE(rows, programs_);
            QVERIFY(
                database->gruppo().find_first(QStringLiteral("nome"), QStringLiteral("PLAN 9")));
            QCOMPARE(
                database->of_plan(QStringLiteral("programmi"), QStringLiteral("PLAN 9")).count(),
                kPrograms);
            ++read_;
        } catch (const Fault&) {
            ++faulted_;
        }
    }

    QStringList indices_of_sound() {
        write_file(path(), sound_);
        return run_sql(path(), {QStringLiteral("SELECT name FROM sqlite_master WHERE type = "
                                               "'index' ORDER BY name")});
    }
    /// Takes the entries of the plan `name` out of `index`; the rows themselves stay.
    void take_from_index(const QString& index, const QString& name) {
        const QString writable = QStringLiteral("PRAGMA writable_schema = ON");
        const QString rest = QStringLiteral(" WHERE nome <> ''%1''").arg(name);
        const QString whose = QStringLiteral(" WHERE name = '%1'").arg(index);
        run_sql(path(),
                {writable,
                 QStringLiteral("UPDATE sqlite_master SET sql = sql || '%1'").arg(rest) + whose});
        run_sql(path(), {QStringLiteral("REINDEX %1").arg(index)});
        run_sql(path(), {writable, QStringLiteral("UPDATE sqlite_master SET sql = replace(sql, "
                                                  "'%1', '')")
                                           .arg(rest) +
                                       whose});
    }

  private Q_SLOTS:
    void initTestCase() {
        {
            const auto database = made_in(folder_.path());
            populate(*database);
            leave_free_pages(*database);
            programs_ = programs_of(*database);
            QCOMPARE(programs_.size(), kPlans * kPrograms + 1);
        }
        free_pages_ = run_sql(path(), {QStringLiteral("PRAGMA freelist_count")}).value(0).toInt();
        sound_ = content_of(path());
        QVERIFY(sound_.size() > 20 * kPage);
    }

    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        refused_ = faulted_ = read_ = 0;
    }

    void cleanup() {
        qInfo("%d refused, %d faulted while reading, %d read right", refused_, faulted_, read_);
    }

    void noise_in_any_page() {
        QRandomGenerator random(472);
        for (int round = 0; round < kRounds; ++round)
            for (qsizetype at = 0; at < sound_.size(); at += kPage) {
                QByteArray damaged = sound_;
                for (qsizetype k = at; k < at + kPage; ++k)
                    damaged[k] = static_cast<char>(random.bounded(256));
                verify_harmless(damaged);
                if (QTest::currentTestFailed()) return;
            }
        // Whatever is in use is found at the start, indices too.
        QVERIFY(refused_ > 0);
        QCOMPARE(faulted_, 0);
        QVERIFY(free_pages_ > 0);
        QVERIFY(read_ <= kRounds * free_pages_);
    }

    void zeros_in_any_page() {
        for (qsizetype at = 0; at < sound_.size(); at += kPage) {
            QByteArray damaged = sound_;
            damaged.replace(at, kPage, QByteArray(kPage, '\0'));
            verify_harmless(damaged);
            if (QTest::currentTestFailed()) return;
        }
        QVERIFY(refused_ > 0);
    }

    /// The pages stay sound, but what is looked up through the index is not all there.
    void a_row_that_its_index_lacks() {
        const QStringList indices = indices_of_sound();
        QCOMPARE(indices.size(), 6);
        for (const QString& index : indices) {
            write_file(path(), sound_);
            take_from_index(index, QStringLiteral("PLAN 9"));
            DatabaseError error{};
            QVERIFY2(!Database::open(path(), error), qPrintable(index));
            QCOMPARE(error.fault, DatabaseFault::index_damaged);
            QVERIFY2(error.detail.contains(index), qPrintable(error.detail));
        }
    }

    /// The same by bytes: what a failing medium makes of an index, page by page.
    void a_changed_letter_in_an_index() {
        int pages = 0;
        for (qsizetype at = kPage; at < sound_.size(); at += kPage) {
            const qsizetype place = sound_.indexOf("PLAN 9", at);
            const bool is_leaf_of_index = sound_[at] == kLeafOfIndex;
            if (!is_leaf_of_index || place < 0 || place >= at + kPage) continue;
            ++pages;
            QByteArray damaged = sound_;
            damaged[place] = 'Q';
            verify_harmless(damaged);
            if (QTest::currentTestFailed()) return;
        }
        QVERIFY(pages >= 4);
        QCOMPARE(refused_, pages);
    }

    void a_file_cut_short() {
        QRandomGenerator random(7);
        for (qsizetype size = 0; size < sound_.size(); size += kPage) {
            verify_harmless(sound_.left(size));
            verify_harmless(sound_.left(size + random.bounded(1, int{kPage})));
            if (QTest::currentTestFailed()) return;
        }
        QCOMPARE(read_, 0);
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::DamageTest)
#include "damage_test.moc"
