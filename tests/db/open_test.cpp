// SPDX-License-Identifier: GPL-3.0-or-later
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>

#include "db_support.h"
#include "engine.h"
#include "fault.h"

namespace m47::db {
namespace {

const QString kNome = QStringLiteral("nome");

// The first bytes of every file of the old engine.
const QByteArray kOldEngineStart("\x00\x01\x00\x00Standard Jet DB", 19);

}  // namespace

/// Opening the database file, and every reason not to.
class OpenTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> folder_;

    QString path() const { return database_in(folder_->path()); }

    // Not opened, for this reason, and the folder as it was.
    void verify_refused(DatabaseFault fault, const QString& detail = {}) {
        const auto before = files_in(folder_->path());
        DatabaseError error{};
        QVERIFY(!Database::open(path(), error));
        QCOMPARE(static_cast<int>(error.fault), static_cast<int>(fault));
        QCOMPARE(error.path, path());
        if (!detail.isEmpty()) QCOMPARE(error.detail, detail);
        QCOMPARE(files_in(folder_->path()), before);
    }

    // The same in the eyes of a user without the rights of root.
    void verify_refused_to_ordinary_user(DatabaseFault fault) {
        Child child({QStringLiteral("open"), path()}, true);
        const QString answer = child.line();
        child.rest();
        const QString expected = QStringLiteral("fault %1 ").arg(static_cast<int>(fault));
        QVERIFY2(answer.startsWith(expected), qPrintable(answer));
    }

    void set_modes(mode_t folder, mode_t file) {
        QCOMPARE(::chmod(QFile::encodeName(path()).constData(), file), 0);
        QCOMPARE(::chmod(QFile::encodeName(folder_->path()).constData(), folder), 0);
    }

  private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        folder_ = std::make_unique<QTemporaryDir>();
    }

    void cleanup() { ::chmod(QFile::encodeName(folder_->path()).constData(), 0700); }

    void opens_and_leaves_nothing_behind() {
        made_in(folder_->path());
        const auto before = files_in(folder_->path());
        QCOMPARE(before.keys(), QStringList{QString::fromLatin1(kDatabaseFile)});
        const auto database = opened(path());
        QCOMPARE(files_in(folder_->path()), before);
        QCOMPARE(database->gruppo().count(), 1);
        QCOMPARE(database->programmi().count(), 1);
        QCOMPARE(database->configurazione().count(), 1);
        QCOMPARE(database->asl().count(), 0);
    }

    void settles_every_write_on_the_medium() {
        const auto database = made_in(folder_->path());
        const auto setting = [&](const char* name) {
            QSqlQuery query(QStringLiteral("PRAGMA ") + QLatin1String(name),
                            database->connection());
            return query.next() ? query.value(0).toString() : QString();
        };
        QCOMPARE(setting("journal_mode"), QStringLiteral("delete"));
        QCOMPARE(setting("synchronous"), QStringLiteral("3"));
        QCOMPARE(setting("locking_mode"), QStringLiteral("normal"));
        QCOMPARE(setting("busy_timeout"), QStringLiteral("3000"));
        QCOMPARE(setting("cell_size_check"), QStringLiteral("1"));
    }

    void brings_a_file_with_a_log_back_to_the_journal() {
        made_in(folder_->path());
        run_sql(path(), {QStringLiteral("PRAGMA journal_mode = WAL")});
        const auto database = opened(path());
        add_row(database->asl(), {{kNome, QStringLiteral("A")}});
        QCOMPARE(files_in(folder_->path()).keys(), QStringList{QString::fromLatin1(kDatabaseFile)});
    }

    void opens_in_a_folder_of_any_name() {
        const QString name = folder_->path() + QStringLiteral("/l'été? #1 %20&a=b;c \"x\"");
        QVERIFY(QDir().mkdir(name));
        const auto database = made_in(name);
        add_row(database->asl(), {{kNome, QStringLiteral("A")}});
        QCOMPARE(files_in(name).keys(), QStringList{QString::fromLatin1(kDatabaseFile)});
        QVERIFY(files_in(folder_->path()).isEmpty());
    }

    void opens_by_a_relative_path() {
        made_in(folder_->path());
        const QString before = QDir::currentPath();
        QVERIFY(QDir::setCurrent(folder_->path()));
        DatabaseError error{};
        QVERIFY(Database::open(QString::fromLatin1(kDatabaseFile), error));
        QVERIFY(QDir::setCurrent(before));
    }

    void opens_tables_another_program_has_made() {
        made_in(folder_->path());
        QStringList statements;
        for (const char* table : {"programmi", "configurazione", "gruppo", "asl"})
            statements << QStringLiteral("ALTER TABLE %1 RENAME TO old").arg(QLatin1String(table))
                       << QStringLiteral("CREATE TABLE %1 AS SELECT * FROM old")
                              .arg(QString::fromLatin1(table).toUpper())
                       << QStringLiteral("DROP TABLE old")
                       << QStringLiteral("ALTER TABLE %1 DROP COLUMN id").arg(QLatin1String(table));
        run_sql(path(), statements);
        const auto database = opened(path());
        Recordset& set = database->gruppo();
        QCOMPARE(set.text(kNome), QStringLiteral("PLAN 1"));
        add_row(set, {{kNome, QStringLiteral("PLAN 2")}});
        QVERIFY(set.find_first(kNome, QStringLiteral("PLAN 2")));
        set.remove();
        QCOMPARE(set.count(), 1);
    }

    void two_objects_share_one_file() {
        const auto writer = made_in(folder_->path());
        const auto reader = opened(path());
        add_row(writer->asl(), {{kNome, QStringLiteral("A")}});
        QVERIFY(reader->asl().empty());
        reader->asl().requery();
        QCOMPARE(reader->asl().text(kNome), QStringLiteral("A"));
        reader->asl().edit();
        reader->asl().set(kNome, QStringLiteral("B"));
        reader->asl().update();
        writer->asl().move_first();
        QCOMPARE(writer->asl().text(kNome), QStringLiteral("B"));
        QVERIFY(writer->connection().connectionName() != reader->connection().connectionName());
    }

    void another_program_reads_meanwhile() {
        const auto database = made_in(folder_->path());
        add_row(database->asl(), {{kNome, QStringLiteral("A")}});
        Child child({QStringLiteral("open"), path()});
        QCOMPARE(child.line(), QStringLiteral("opened"));
        child.rest();
    }

    void connections_are_forgotten() {
        const QStringList before = QSqlDatabase::connectionNames();
        {
            auto database = made_in(folder_->path());
            Recordset set = database->of_plan(QStringLiteral("gruppo"), QStringLiteral("PLAN 1"));
            database.reset();
            QCOMPARE(set.count(), 1);
        }
        write_file(path(), QByteArray("SQLite format 3\0", 16) + QByteArray(5000, 'x'));
        DatabaseError error{};
        QVERIFY(!Database::open(path(), error));
        QCOMPARE(QSqlDatabase::connectionNames(), before);
        QVERIFY(QFile::remove(path()));
        M47_VERIFY_FAULT(Connection{path()}, "unable to open");
        QCOMPARE(QSqlDatabase::connectionNames(), before);
        QVERIFY(!QFile::exists(path()));
    }

    void refuses_a_missing_file() { verify_refused(DatabaseFault::missing); }

    void refuses_a_missing_folder() {
        DatabaseError error{};
        QVERIFY(!Database::open(database_in(folder_->path() + QStringLiteral("/none")), error));
        QCOMPARE(error.fault, DatabaseFault::missing);
        QVERIFY(!QFile::exists(folder_->path() + QStringLiteral("/none")));
    }

    void refuses_what_is_no_regular_file() {
        QVERIFY(QDir().mkdir(path()));
        verify_refused(DatabaseFault::unreadable);
        QVERIFY(QDir().rmdir(path()));
        QCOMPARE(::mkfifo(QFile::encodeName(path()).constData(), 0666), 0);
        DatabaseError error{};
        QVERIFY(!Database::open(path(), error));
        QCOMPARE(error.fault, DatabaseFault::unreadable);
    }

    /// The engine would wait for the other end of a pipe for ever.
    void refuses_a_pipe_in_the_place_of_its_journal() {
        made_in(folder_->path()).reset();
        const QString link = folder_->filePath(QStringLiteral("link.mdb"));
        QVERIFY(QFile::link(path(), link));
        for (const char* suffix : {"-journal", "-wal", "-shm"}) {
            const QString beside = path() + QLatin1String(suffix);
            QCOMPARE(::mkfifo(QFile::encodeName(beside).constData(), 0666), 0);
            ::alarm(10);
            for (const QString& name : {path(), link}) {
                DatabaseError error{};
                QVERIFY(!Database::open(name, error));
                QCOMPARE(error.fault, DatabaseFault::cannot_open);
                QVERIFY(error.detail.contains(QFileInfo(beside).fileName()));
            }
            ::alarm(0);
            QVERIFY(QFile::remove(beside));
        }
        DatabaseError error{};
        QVERIFY(Database::open(path(), error));
    }

    void refuses_a_file_of_the_old_engine() {
        write_file(path(), kOldEngineStart + QByteArray(4096 - 19, '\x7e'));
        verify_refused(DatabaseFault::old_engine);
        write_file(path(), kOldEngineStart);
        verify_refused(DatabaseFault::old_engine);
    }

    void refuses_a_file_of_another_kind() {
        write_file(path(), QByteArray("nome;dati\nA;S1\n"));
        verify_refused(DatabaseFault::foreign);
        write_file(path(), QByteArray());
        verify_refused(DatabaseFault::foreign);
    }

    void refuses_another_programs_database() {
        run_sql(path(), {QStringLiteral("CREATE TABLE bookmarks (url)"),
                         QStringLiteral("INSERT INTO bookmarks VALUES ('a')")});
        verify_refused(DatabaseFault::foreign);
    }

    void refuses_a_missing_table() {
        made_in(folder_->path());
        run_sql(path(), {QStringLiteral("DROP TABLE asl")});
        verify_refused(DatabaseFault::table_missing, QStringLiteral("asl"));
    }

    void refuses_a_view_in_place_of_a_table() {
        made_in(folder_->path());
        run_sql(path(),
                {QStringLiteral("DROP TABLE asl"),
                 QStringLiteral("CREATE VIEW asl AS SELECT nome, nome AS dati FROM gruppo")});
        verify_refused(DatabaseFault::table_missing, QStringLiteral("asl"));
    }

    void refuses_tables_whose_rows_have_no_number() {
        made_in(folder_->path());
        run_sql(path(),
                {QStringLiteral("DROP TABLE asl"),
                 QStringLiteral("CREATE TABLE asl (nome PRIMARY KEY, dati) WITHOUT ROWID")});
        verify_refused(DatabaseFault::foreign);
    }

    void refuses_missing_fields() {
        made_in(folder_->path());
        run_sql(path(), {QStringLiteral("ALTER TABLE programmi DROP COLUMN mer_max"),
                         QStringLiteral("ALTER TABLE asl DROP COLUMN dati")});
        verify_refused(DatabaseFault::table_missing, QStringLiteral("programmi.mer_max, asl.dati"));
    }

    void refuses_an_unreadable_file() {
        made_in(folder_->path());
        set_modes(0755, 0);
        verify_refused_to_ordinary_user(DatabaseFault::unreadable);
        set_modes(0, 0644);
        verify_refused_to_ordinary_user(DatabaseFault::unreadable);
    }

    void refuses_a_read_only_file() {
        made_in(folder_->path());
        set_modes(0777, 0444);
        const auto before = files_in(folder_->path());
        verify_refused_to_ordinary_user(DatabaseFault::read_only);
        QCOMPARE(files_in(folder_->path()), before);
    }

    void refuses_a_read_only_folder() {
        made_in(folder_->path());
        set_modes(0555, 0666);
        const auto before = files_in(folder_->path());
        verify_refused_to_ordinary_user(DatabaseFault::read_only);
        QCOMPARE(files_in(folder_->path()), before);
    }

    void an_ordinary_user_opens_what_can_be_written() {
        made_in(folder_->path());
        set_modes(0777, 0666);
        Child child({QStringLiteral("open"), path()}, true);
        QCOMPARE(child.line(), QStringLiteral("opened"));
        child.rest();
    }

    void refuses_a_file_that_lacks_the_end_of_its_last_page() {
        made_in(folder_->path());
        const QByteArray whole = content_of(path());
        write_file(path(), whole.chopped(100));
        verify_refused(DatabaseFault::damaged,
                       QStringLiteral("%1 < %2 bytes").arg(whole.size() - 100).arg(whole.size()));
        write_file(path(), whole);
        QVERIFY(opened(path()));
    }

    void a_refused_file_is_not_even_touched() {
        made_in(folder_->path());
        run_sql(path(), {QStringLiteral("DROP TABLE asl")});
        struct stat before {};
        QCOMPARE(::stat(QFile::encodeName(path()).constData(), &before), 0);
        QThread::msleep(20);
        verify_refused(DatabaseFault::table_missing);
        struct stat after {};
        QCOMPARE(::stat(QFile::encodeName(path()).constData(), &after), 0);
        QCOMPARE(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
        QCOMPARE(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    }
};

}  // namespace m47::db

M47_DB_TEST_MAIN(m47::db::OpenTest)
#include "open_test.moc"
