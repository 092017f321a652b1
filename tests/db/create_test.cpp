// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>

#include "db_support.h"

namespace m47::db {

/// Making a new database file.
class CreateTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;

    QString path() const { return database_in(folder_->path()); }

    void verify_fields(const char* table, const QStringList& expected) {
        const QStringList found = run_sql(
            path(), {QStringLiteral("SELECT name || ' ' || type FROM pragma_table_info('%1') "
                                    "WHERE name <> 'id'")
                         .arg(QLatin1String(table))});
        QCOMPARE(found, expected);
    }

    QString plan_of_look_up(const char* table, const char* condition) {
        QStringList plan;
        {
            QSqlDatabase database =
                QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("plan"));
            database.setDatabaseName(path());
            database.open();
            QSqlQuery query(QStringLiteral("EXPLAIN QUERY PLAN SELECT rowid FROM %1 WHERE %2")
                                .arg(QLatin1String(table), QLatin1String(condition)),
                            database);
            while (query.next()) plan += query.value(3).toString();
        }
        QSqlDatabase::removeDatabase(QStringLiteral("plan"));
        return plan.join(u'\n');
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
    }

    void makes_one_plan_with_one_empty_program() {
        DatabaseError error{};
        QVERIFY(Database::create(path(), error));
        QCOMPARE(files_in(folder_->path()).keys(), QStringList{QString::fromLatin1(kDatabaseFile)});
        for (const char* table : {"gruppo", "configurazione", "programmi"}) {
            const auto row = row_of(path(), QString::fromLatin1(table), 1);
            QCOMPARE(row.size(), 2);
            QCOMPARE(row.value(QStringLiteral("nome")), QStringLiteral("PLAN 1"));
            QCOMPARE(
                run_sql(path(), {QStringLiteral("SELECT count(*) FROM ") + QLatin1String(table)}),
                QStringList{QStringLiteral("1")});
        }
        QCOMPARE(run_sql(path(), {QStringLiteral("SELECT count(*) FROM asl")}),
                 QStringList{QStringLiteral("0")});
    }

    void the_fields_are_those_of_the_records() {
        made_in(folder_->path());
        verify_fields("gruppo", {QStringLiteral("nome TEXT")});
        verify_fields("asl", {QStringLiteral("nome TEXT"), QStringLiteral("dati TEXT")});
        verify_fields("configurazione",
                      QStringLiteral("nome TEXT,loc_osc1 REAL,loc_osc2 REAL,loc_osc3 REAL,"
                                     "loc_osc4 REAL,user_sc0 TEXT,user_sc1 TEXT,user_sc2 TEXT,"
                                     "user_sc3 TEXT")
                          .split(u','));
        verify_fields("programmi",
                      QStringLiteral("nome TEXT,pg_num TEXT,frequenza REAL,loc_osc INTEGER,"
                                     "loc_osc0 INTEGER,sat_ad INTEGER,qpsk_symbolrate TEXT,"
                                     "satchbw REAL,diseqc_cmd INTEGER,diseqc_cmd2 INTEGER,"
                                     "lnb_volt INTEGER,K22 INTEGER,logger_pos TEXT,"
                                     "logger_state INTEGER,monitor_state INTEGER,lev_min TEXT,"
                                     "lev_max TEXT,noise_min TEXT,noise_max TEXT,chber_min TEXT,"
                                     "chber_max TEXT,mer_min TEXT,mer_max TEXT")
                          .split(u','));
    }

    void the_look_ups_have_their_indices() {
        made_in(folder_->path());
        for (const char* table : {"gruppo", "configurazione", "programmi", "asl"})
            QVERIFY(plan_of_look_up(table, "nome = 'A'").contains(QLatin1String("(nome=?")));
        QVERIFY(plan_of_look_up("programmi", "pg_num = '1' AND nome = 'A'")
                    .contains(QLatin1String("(nome=? AND pg_num=?")));
        QVERIFY(plan_of_look_up("programmi", "logger_pos = '1' AND nome = 'A'")
                    .contains(QLatin1String("(nome=? AND logger_pos=?")));
    }

    void the_file_has_the_rights_of_any_new_file() {
        write_file(folder_->path() + QStringLiteral("/other"), QByteArray("x"));
        made_in(folder_->path());
        QCOMPARE(QFile::permissions(path()),
                 QFile::permissions(folder_->path() + QStringLiteral("/other")));
    }

    void an_existing_file_is_left_alone() {
        write_file(path(), QByteArray("anything"));
        const auto before = files_in(folder_->path());
        DatabaseError error{};
        QVERIFY(Database::create(path(), error));
        QCOMPARE(files_in(folder_->path()), before);
    }

    void an_existing_file_in_a_read_only_folder_is_success() {
        write_file(path(), QByteArray("anything"));
        QCOMPARE(::chmod(QFile::encodeName(folder_->path()).constData(), 0555), 0);
        Child child({QStringLiteral("create"), path()}, true);
        const QString answer = child.line();
        child.rest();
        ::chmod(QFile::encodeName(folder_->path()).constData(), 0700);
        QCOMPARE(answer, QStringLiteral("created"));
    }

    void a_second_create_keeps_what_was_stored() {
        {
            const auto database = made_in(folder_->path());
            add_row(database->gruppo(), {{QStringLiteral("nome"), QStringLiteral("PLAN 2")}});
        }
        QCOMPARE(made_in(folder_->path())->gruppo().count(), 2);
    }

    void a_missing_folder_is_not_made() {
        const QString none = folder_->path() + QStringLiteral("/none");
        DatabaseError error{};
        QVERIFY(!Database::create(database_in(none), error));
        QCOMPARE(error.fault, DatabaseFault::cannot_create);
        QCOMPARE(error.path, database_in(none));
        QVERIFY(!error.detail.isEmpty());
        QVERIFY(!QFile::exists(none));
    }

    void a_read_only_folder_stays_empty() {
        QCOMPARE(::chmod(QFile::encodeName(folder_->path()).constData(), 0555), 0);
        Child child({QStringLiteral("create"), path()}, true);
        const QString answer = child.line();
        child.rest();
        ::chmod(QFile::encodeName(folder_->path()).constData(), 0700);
        const QString expected =
            QStringLiteral("fault %1 ").arg(static_cast<int>(DatabaseFault::cannot_create));
        QVERIFY2(answer.startsWith(expected), qPrintable(answer));
        QVERIFY(files_in(folder_->path()).isEmpty());
    }

    void a_full_disk_leaves_nothing_behind() {
        const QString expected =
            QStringLiteral("fault %1 ").arg(static_cast<int>(DatabaseFault::cannot_create));
        for (int bytes = 0; bytes < 40960; bytes += 4000) {
            Child child({QStringLiteral("create-full"), path(), QString::number(bytes)});
            const QString answer = child.line();
            child.rest();
            QVERIFY2(answer.startsWith(expected), qPrintable(answer));
            QVERIFY(files_in(folder_->path()).isEmpty());
        }
    }

    void what_another_process_left_half_made_is_not_taken_for_the_own() {
        // The system gives a process number again, once its process has been killed.
        const QString left = QStringLiteral("%1/.%2.%3-1")
                                 .arg(folder_->path(), QLatin1String(kDatabaseFile))
                                 .arg(QCoreApplication::applicationPid());
        write_file(left, "half");
        DatabaseError error{};
        QVERIFY(Database::create(path(), error));
        QVERIFY(opened(path()));
        QCOMPARE(content_of(left), QByteArray("half"));
    }

    void making_a_file_leaves_nothing_open() {
        const auto open_files = [] {
            return QDir(QStringLiteral("/proc/self/fd"))
                .entryList(QDir::Files | QDir::System)
                .size();
        };
        made_in(folder_->path());
        const auto before = open_files();
        DatabaseError error{};
        QVERIFY(Database::create(path() + QStringLiteral("-2"), error));
        QCOMPARE(open_files(), before);
    }

    void two_at_once_make_one_file() {
        for (int round = 0; round < 5; ++round) {
            Child first({QStringLiteral("create"), path()});
            Child second({QStringLiteral("create"), path()});
            QCOMPARE(first.line(), QStringLiteral("created"));
            QCOMPARE(second.line(), QStringLiteral("created"));
            first.rest();
            second.rest();
            QCOMPARE(files_in(folder_->path()).size(), 1);
            QCOMPARE(opened(path())->gruppo().count(), 1);
            QVERIFY(QFile::remove(path()));
        }
    }

    void killed_at_any_instant_the_file_is_whole_or_absent() {
        QRandomGenerator random(47);
        int absent = 0;
        for (int round = 0; round < 30; ++round) {
            Child child({QStringLiteral("create"), path()});
            QThread::usleep(random.bounded(60000u));
            child.kill_now();
            if (QFile::exists(path())) {
                QCOMPARE(opened(path())->programmi().count(), 1);
                QVERIFY(QFile::remove(path()));
            } else {
                ++absent;
            }
        }
        qInfo("absent after %d of 30 kills", absent);
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::CreateTest)
#include "create_test.moc"
