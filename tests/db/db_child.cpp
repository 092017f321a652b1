// SPDX-License-Identifier: GPL-3.0-or-later
#include <grp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QThread>
#include <csignal>
#include <cstdio>

#include "db_support.h"
#include "fault.h"

namespace m47::db {
namespace {

void say(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

void say_error(const DatabaseError& error) {
    say(QStringLiteral("fault %1 %2").arg(static_cast<int>(error.fault)).arg(error.detail));
}

int open_once(const QString& path) {
    DatabaseError error{};
    if (Database::open(path, error))
        say(QStringLiteral("opened"));
    else
        say_error(error);
    return 0;
}

int create_once(const QString& path) {
    DatabaseError error{};
    if (Database::create(path, error))
        say(QStringLiteral("created"));
    else
        say_error(error);
    return 0;
}

// No file of this process may grow beyond `bytes`: what a full disk looks like to it.
void limit_files(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

int create_on_full_disk(const QString& path, rlim_t bytes) {
    limit_files(bytes);
    return create_once(path);
}

// Writes a row that does not fit, then again with space: the open row must have waited.
int update_on_full_disk(const QString& path) {
    const auto database = opened(path);
    Recordset& set = database->asl();
    const int before = set.count();
    set.add_new();
    set.set(QStringLiteral("nome"), QStringLiteral("HOTBIRD"));
    set.set(QStringLiteral("dati"), QString(200000, u'S'));
    limit_files(static_cast<rlim_t>(QFileInfo(path).size()));
    try {
        set.update();
        say(QStringLiteral("stored"));
    } catch (const Fault& fault) {
        say(QStringLiteral("fault ") + QString::fromUtf8(fault.what()));
    }
    say(QStringLiteral("grown by %1").arg(set.count() - before));
    limit_files(RLIM_INFINITY);
    set.update();
    say(QStringLiteral("grown by %1").arg(set.count() - before));
    return 0;
}

int hold_lock(const QString& path, unsigned long milliseconds) {
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    database.setDatabaseName(path);
    if (!database.open()) return 1;
    QSqlQuery query(database);
    if (!query.exec(QStringLiteral("BEGIN EXCLUSIVE"))) return 1;
    say(QStringLiteral("locked"));
    QThread::msleep(milliseconds);
    query.exec(QStringLiteral("ROLLBACK"));
    return 0;
}

// Stores the same number in every text of a program's row, and more with each turn, until killed.
// Each number is said once it is stored.
int store_for_ever(const QString& path) {
    const auto database = opened(path);
    Recordset& set = database->programmi();
    for (int turn = set.text(QStringLiteral("pg_num")).toInt() + 1;; ++turn) {
        // Long enough to reach over several pages.
        const QString padded = QString::number(turn).rightJustified(3000, u'0');
        set.edit();
        for (const char* field : {"pg_num", "lev_min", "mer_max"})
            set.set(QString::fromLatin1(field), padded);
        set.set(QStringLiteral("frequenza"), turn);
        set.update();
        say(QString::number(turn));
    }
}

int add_and_remove_for_ever(const QString& path) {
    const auto database = opened(path);
    Recordset& set = database->asl();
    for (int turn = 1;; ++turn) {
        const QString name = QString::number(turn);
        add_row(set, {{QStringLiteral("nome"), name},
                      {QStringLiteral("dati"), name.rightJustified(6000, u'0')}});
        set.go_to(set.last_added());
        if (turn % 2 == 0) set.remove();
        say(name);
    }
}

// Root passes every permission bit: become a user without any group of this machine. False when
// that fails; who is no root already stays who he is.
bool give_up_rights() {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() != 0) return true;
    if (::setgroups(0, nullptr) != 0 || ::setresgid(kNobody, kNobody, kNobody) != 0 ||
        ::setresuid(kNobody, kNobody, kNobody) != 0)
        return false;
    // The leak check of a sanitized build has to look into this process.
    return ::prctl(PR_SET_DUMPABLE, 1) == 0;
}

}  // namespace

int run_child(QStringList arguments) {
    if (arguments.value(0) == QLatin1String(kOrdinaryUser)) {
        arguments.removeFirst();
        if (!give_up_rights()) return 3;
    }
    const QString role = arguments.value(0);
    const QString path = arguments.value(1);
    const auto number = arguments.value(2).toULong();
    if (role == QLatin1String("open")) return open_once(path);
    if (role == QLatin1String("create")) return create_once(path);
    if (role == QLatin1String("create-full")) return create_on_full_disk(path, number);
    if (role == QLatin1String("update-full")) return update_on_full_disk(path);
    if (role == QLatin1String("hold-lock")) return hold_lock(path, number);
    if (role == QLatin1String("store")) return store_for_ever(path);
    if (role == QLatin1String("add-and-remove")) return add_and_remove_for_ever(path);
    return 2;
}

}  // namespace m47::db
