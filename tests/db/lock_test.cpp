// SPDX-License-Identifier: GPL-3.0-or-later
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "database_check.h"
#include "db_support.h"
#include "engine.h"
#include "fault.h"

namespace m47::db {
namespace {

const QString kNome = QStringLiteral("nome");
constexpr qint64 kPatience = 3000;
// The engine's last try may come a little early; a busy machine answers late.
constexpr qint64 kEarly = 300;
constexpr qint64 kLate = 2500;

}  // namespace

/// Another program that holds the file locked.
class LockTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Database> database_;

    QString path() const { return database_in(folder_->path()); }

    std::unique_ptr<Child> locked_for(int milliseconds) {
        auto child = std::make_unique<Child>(
            QStringList{QStringLiteral("hold-lock"), path(), QString::number(milliseconds)});
        if (child->line() != QLatin1String("locked")) qFatal("the child cannot lock");
        return child;
    }

    void verify_waited(qint64 milliseconds) {
        QVERIFY2(milliseconds >= kPatience - kEarly && milliseconds <= kPatience + kLate,
                 qPrintable(QString::number(milliseconds)));
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
        database_ = made_in(folder_->path());
    }

    void cleanup() { database_.reset(); }

    void a_short_lock_is_waited_out() {
        Recordset& set = database_->gruppo();
        const auto child = locked_for(1000);
        set.edit();
        set.set(kNome, QStringLiteral("PLAN 2"));
        set.update();
        set.move_first();
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 2"));
    }

    void a_long_lock_is_a_fault_and_the_row_stays_open() {
        Recordset& set = database_->gruppo();
        set.edit();
        set.set(kNome, QStringLiteral("PLAN 2"));
        const auto child = locked_for(60000);
        QElapsedTimer timer;
        timer.start();
        M47_VERIFY_FAULT(set.update(), "locked");
        verify_waited(timer.elapsed());
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 1"));
        child->kill_now();
        QCOMPARE(row_of(path(), QStringLiteral("gruppo"), set.bookmark()).value(kNome),
                 QStringLiteral("PLAN 1"));
        set.update();
        QCOMPARE(row_of(path(), QStringLiteral("gruppo"), set.bookmark()).value(kNome),
                 QStringLiteral("PLAN 2"));
    }

    void a_row_that_was_read_holds_no_lock() {
        Recordset& set = database_->gruppo();
        add_row(set, {{kNome, QStringLiteral("PLAN 2")}});
        for (int time = 0; time < 2; ++time) {
            set.move_first();
            set.move_next();
            run_sql(path(), {QStringLiteral("BEGIN EXCLUSIVE"), QStringLiteral("COMMIT")});
        }
    }

    void a_set_reads_on_after_a_fault() {
        Recordset& set = database_->gruppo();
        add_row(set, {{kNome, QStringLiteral("PLAN 2")}});
        set.move_first();
        const auto child = locked_for(60000);
        M47_VERIFY_FAULT(set.move_next(), "locked");
        child->kill_now();
        set.move_next();
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 2"));
    }

    void a_move_that_fails_moves_nothing() {
        Recordset& set = database_->gruppo();
        add_row(set, {{kNome, QStringLiteral("PLAN 2")}});
        add_row(set, {{kNome, QStringLiteral("PLAN 3")}});
        run_sql(path(), {QStringLiteral("DELETE FROM gruppo WHERE nome = 'PLAN 2'")});
        const auto child = locked_for(60000);
        M47_VERIFY_FAULT(set.move_next(), "locked");
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 1"));
        QCOMPARE(set.count(), 3);
        child->kill_now();
        set.move_next();
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 3"));
        QCOMPARE(set.count(), 2);
    }

    void a_file_that_was_taken_away_is_told_as_that_data() {
        QTest::addColumn<bool>("replaced");
        QTest::newRow("deleted") << false;
        QTest::newRow("another in its place") << true;
    }
    void a_file_that_was_taken_away_is_told_as_that() {
        QFETCH(bool, replaced);
        const QByteArray content = content_of(path());
        Recordset& set = database_->gruppo();
        QVERIFY(QFile::remove(path()));
        if (replaced) write_file(path(), content);
        set.edit();
        set.set(kNome, QStringLiteral("PLAN 2"));
        try {
            set.update();
            QFAIL("stored nowhere");
        } catch (const EngineFault& fault) {
            QCOMPARE(error_of(fault).fault, DatabaseFault::moved);
        }
    }

    void opening_a_locked_file_says_so() {
        database_.reset();
        const auto child = locked_for(60000);
        const auto before = files_in(folder_->path());
        QElapsedTimer timer;
        timer.start();
        DatabaseError error{};
        QVERIFY(!Database::open(path(), error));
        verify_waited(timer.elapsed());
        QCOMPARE(error.fault, DatabaseFault::locked);
        QVERIFY(error.detail.contains(QLatin1String("locked")));
        QCOMPARE(files_in(folder_->path()), before);
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::LockTest)
#include "lock_test.moc"
