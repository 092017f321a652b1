// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include "db_support.h"

namespace m47::db {
namespace {

// Until the child's first row is stored it only opens the file.
constexpr unsigned kLongestRun = 40000;

}  // namespace

/// The program's process dies while it stores.
class KillTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    int journals_ = 0;

    QString path() const { return database_in(folder_->path()); }

    // Runs a child for a random time and gives back the last number it had stored for certain.
    int killed_after_a_while(const char* role, QRandomGenerator& random) {
        Child child({QString::fromLatin1(role), path()});
        int stored = child.line().toInt();
        QThread::usleep(random.bounded(kLongestRun));
        child.kill_now();
        const QStringList lines = child.rest().split(u'\n', Qt::SkipEmptyParts);
        if (!lines.isEmpty()) stored = lines.last().toInt();
        if (QFile::exists(path() + QStringLiteral("-journal"))) ++journals_;
        return stored;
    }

    // In turn the program itself and another one are the first to open the file again.
    void verify_whole(int round) {
        if (round % 2 == 0) opened(path());
        QCOMPARE(run_sql(path(), {QStringLiteral("PRAGMA integrity_check")}),
                 QStringList{QStringLiteral("ok")});
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
        made_in(folder_->path());
        journals_ = 0;
    }

    void cleanup() { qInfo("%d of the kills left a journal", journals_); }

    void a_row_is_the_old_one_or_the_new_one() {
        QRandomGenerator random(3847);
        int highest = 0;
        for (int round = 0; round < 40; ++round) {
            const int stored = killed_after_a_while("store", random);
            QVERIFY(stored > highest);
            highest = stored;
            verify_whole(round);
            const auto row = row_of(path(), QStringLiteral("programmi"), 1);
            const int number = row.value(QStringLiteral("frequenza")).toInt();
            QVERIFY2(number == stored || number == stored + 1,
                     qPrintable(QStringLiteral("%1 after %2").arg(number).arg(stored)));
            const QString padded = QString::number(number).rightJustified(3000, u'0');
            QCOMPARE(row.value(QStringLiteral("pg_num")), padded);
            QCOMPARE(row.value(QStringLiteral("lev_min")), padded);
            QCOMPARE(row.value(QStringLiteral("mer_max")), padded);
            QCOMPARE(row.value(QStringLiteral("nome")), QStringLiteral("PLAN 1"));
        }
    }

    void rows_are_added_and_removed_whole() {
        QRandomGenerator random(1147);
        for (int round = 0; round < 20; ++round) {
            run_sql(path(), {QStringLiteral("DELETE FROM asl")});
            const int stored = killed_after_a_while("add-and-remove", random);
            verify_whole(round);
            const QStringList broken = run_sql(
                path(), {QStringLiteral("SELECT nome FROM asl WHERE length(dati) <> 6000 OR "
                                        "CAST(dati AS INTEGER) <> CAST(nome AS INTEGER)")});
            QVERIFY(broken.isEmpty());
            const QStringList names = run_sql(
                path(), {QStringLiteral("SELECT nome FROM asl WHERE CAST(nome AS INTEGER) <= %1 "
                                        "ORDER BY id")
                             .arg(stored)});
            QStringList expected;
            for (int number = 1; number <= stored; number += 2) expected += QString::number(number);
            QCOMPARE(names, expected);
        }
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::KillTest)
#include "kill_test.moc"
