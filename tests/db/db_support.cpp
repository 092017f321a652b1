// SPDX-License-Identifier: GPL-3.0-or-later
#include "db_support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace m47::db {
namespace {

constexpr int kChildLimit = 30000;

template <typename Use>
void with_connection(const QString& path, Use use) {
    static int count = 0;
    const QString name = QStringLiteral("test-%1").arg(++count);
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(path);
        if (!database.open()) qFatal("cannot open %s", qPrintable(path));
        use(database);
    }
    QSqlDatabase::removeDatabase(name);
}

}  // namespace

QString database_in(const QString& folder) {
    return folder + u'/' + QString::fromLatin1(kDatabaseFile);
}

std::unique_ptr<Database> opened(const QString& path) {
    DatabaseError error{};
    auto database = Database::open(path, error);
    if (!database)
        qFatal("not opened: fault %d, %s", static_cast<int>(error.fault), qPrintable(error.detail));
    return database;
}

std::unique_ptr<Database> made_in(const QString& folder) {
    DatabaseError error{};
    if (!Database::create(database_in(folder), error))
        qFatal("not created: %s", qPrintable(error.detail));
    return opened(database_in(folder));
}

void add_row(Recordset& set, const QMap<QString, QVariant>& fields) {
    set.add_new();
    for (auto field = fields.begin(); field != fields.end(); ++field)
        set.set(field.key(), field.value());
    set.update();
}

QMap<QString, QByteArray> files_in(const QString& folder) {
    QMap<QString, QByteArray> files;
    const auto kinds = QDir::Files | QDir::Hidden | QDir::System;
    for (const QFileInfo& about : QDir(folder).entryInfoList(kinds))
        files.insert(about.fileName(), content_of(about.filePath()));
    return files;
}

QByteArray content_of(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", qPrintable(path));
    return file.readAll();
}

void write_file(const QString& path, const QByteArray& content) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        qFatal("cannot write %s", qPrintable(path));
}

QStringList run_sql(const QString& path, const QStringList& statements) {
    QStringList answer;
    with_connection(path, [&](const QSqlDatabase& database) {
        for (const QString& statement : statements) {
            QSqlQuery query(database);
            if (!query.exec(statement))
                qFatal("%s: %s", qPrintable(statement), qPrintable(query.lastError().text()));
            answer.clear();
            while (query.next()) answer += query.value(0).toString();
        }
    });
    return answer;
}

QMap<QString, QString> row_of(const QString& path, const QString& table, qint64 id) {
    QMap<QString, QString> row;
    with_connection(path, [&](const QSqlDatabase& database) {
        QSqlQuery query(QStringLiteral("SELECT * FROM %1 WHERE id = %2").arg(table).arg(id),
                        database);
        if (!query.next()) return;
        const QSqlRecord record = query.record();
        for (int k = 0; k < record.count(); ++k)
            if (!record.isNull(k)) row.insert(record.fieldName(k), record.value(k).toString());
    });
    return row;
}

Child::Child(const QStringList& arguments, bool ordinary_user) {
    QStringList all{QStringLiteral("--child")};
    if (ordinary_user) all += QString::fromLatin1(kOrdinaryUser);
    all += arguments;
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(QCoreApplication::applicationFilePath(), all);
    if (!process_.waitForStarted(kChildLimit)) qFatal("the child does not start");
}

Child::~Child() {
    kill_now();
}

QString Child::line() {
    while (!process_.canReadLine())
        if (!process_.waitForReadyRead(kChildLimit)) qFatal("the child does not answer");
    return QString::fromUtf8(process_.readLine()).trimmed();
}

void Child::kill_now() {
    if (process_.state() == QProcess::NotRunning) return;
    process_.kill();
    process_.waitForFinished(kChildLimit);
}

QString Child::rest() {
    if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(kChildLimit))
        qFatal("the child does not end");
    return QString::fromUtf8(process_.readAll());
}

}  // namespace m47::db
