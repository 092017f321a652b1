// SPDX-License-Identifier: GPL-3.0-or-later
#include "disk_job.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

namespace m47 {
namespace {

const QStringList kTables{QStringLiteral("gruppo"), QStringLiteral("configurazione"),
                          QStringLiteral("programmi"), QStringLiteral("asl")};

QString made_folder(const QTemporaryDir& folder, const QString& name) {
    const QString path = folder.filePath(name);
    constexpr auto kPrivate = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkdir(path, kPrivate)) qFatal("cannot make %s", qPrintable(path));
    return path;
}

}  // namespace

DiskJob::DiskJob(const DiskFault& wanted, const QMap<QString, QByteArray>& files, bool meter)
    : fault(wanted),
      remote_(made_folder(folder_, QStringLiteral("work")),
              made_folder(folder_, QStringLiteral("runtime"))) {
    for (auto file = files.begin(); file != files.end(); ++file) {
        QFile written(path(file.key()));
        if (!written.open(QIODevice::WriteOnly) || written.write(file.value()) < 0)
            qFatal("cannot write %s", qPrintable(written.fileName()));
    }
    if (meter)
        meter_ = std::make_unique<MeterProcess>(
            folder_.path(), QStringList{QStringLiteral("--baud-factor"), QStringLiteral("0")});
    const auto set = [this](const char* name, const QString& value) {
        remote_.environment.insert(QString::fromLatin1(name), value);
    };
    set("LD_PRELOAD", QStringLiteral(DISK_SHIM));
    set("M47_DISK_FOLDER", QFileInfo(path(QString())).canonicalFilePath());
    set("M47_DISK_REPORT", folder_.filePath(QStringLiteral("report")));
    set("M47_DISK_FAULT", fault.kind);
    set("M47_DISK_AT", QString::number(fault.at));
}

void DiskJob::record_to(const QString& path) {
    remote_.environment.insert(QStringLiteral("M47_DISK_RECORD"), path);
}

void DiskJob::start(const QStringList& arguments) {
    QStringList given = arguments;
    if (meter_) given.replaceInStrings(QStringLiteral("METER"), meter_->link());
    remote_.start(given);
}

QString DiskJob::path(const QString& name) const {
    return folder_.filePath(QStringLiteral("work/") + name);
}

QList<QByteArray> DiskJob::report() const {
    return content_of(folder_.filePath(QStringLiteral("report"))).split('\n');
}

QByteArray DiskJob::hit() const {
    const QByteArray first = report().constFirst();
    return first.startsWith("calls ") ? QByteArray() : first;
}

long DiskJob::calls() const {
    for (const QByteArray& line : report())
        if (line.startsWith("calls ")) return line.mid(6).toLong();
    return 0;
}

QStringList DiskJob::hidden() const {
    return QDir(path(QString())).entryList({QStringLiteral(".*")}, QDir::Files | QDir::Hidden);
}

QStringList answer(const QString& path, const QString& statement) {
    QStringList rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", "look");
        database.setDatabaseName(path);
        if (!database.open()) return {database.lastError().text()};
        QSqlQuery query(database);
        if (!query.exec(statement)) rows += "damaged: " + query.lastError().text();
        while (query.next()) {
            QStringList cells;
            for (int k = 0; query.value(k).isValid(); ++k)
                cells += query.isNull(k) ? QStringLiteral("NULL") : query.value(k).toString();
            rows += cells.join(u'|');
        }
    }
    QSqlDatabase::removeDatabase("look");
    return rows;
}

QString rows_in(const QString& path, const QStringList& names) {
    const QStringList findings = answer(path, QStringLiteral("PRAGMA integrity_check"));
    if (findings != QStringList{QStringLiteral("ok")})
        return QStringLiteral("damaged: ") + findings.join(u';');
    QString where;
    if (!names.isEmpty())
        where = QStringLiteral(" WHERE nome IN ('%1')").arg(names.join(QStringLiteral("','")));
    QStringList rows;
    for (const QString& table : kTables)
        rows += answer(path, QStringLiteral("SELECT * FROM %1%2 ORDER BY id").arg(table, where));
    return rows.join(u'\n');
}

QStringList names_in(const QString& path) {
    return answer(path, QStringLiteral("SELECT nome FROM gruppo ORDER BY id")) +
           answer(path, QStringLiteral("SELECT nome FROM asl ORDER BY id"));
}

}  // namespace m47
