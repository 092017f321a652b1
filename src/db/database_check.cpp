// SPDX-License-Identifier: GPL-3.0-or-later
#include "database_check.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <filesystem>

#include "file_place.h"
#include "plain_file.h"
#include "schema.h"

namespace m47::db {
namespace {

// How the files of the two engines begin.
const QByteArray kSqliteMark("SQLite format 3\0", 16);
const QByteArray kOldEngineMark("Standard Jet DB");
constexpr int kOldEngineMarkAt = 4;

struct Meaning {
    int code;
    DatabaseFault fault;
};

// The engine's primary result codes, by the numbers of its own header.
constexpr Meaning kMeanings[] = {
    {1, DatabaseFault::refused},         // ERROR: the statement does not suit the tables
    {3, DatabaseFault::no_permission},   // PERM
    {4, DatabaseFault::interrupted},     // ABORT
    {5, DatabaseFault::locked},          // BUSY
    {6, DatabaseFault::locked},          // LOCKED
    {7, DatabaseFault::no_memory},       // NOMEM
    {8, DatabaseFault::read_only},       // READONLY
    {9, DatabaseFault::interrupted},     // INTERRUPT
    {10, DatabaseFault::io_error},       // IOERR
    {11, DatabaseFault::damaged},        // CORRUPT
    {13, DatabaseFault::full},           // FULL
    {14, DatabaseFault::cannot_open},    // CANTOPEN
    {15, DatabaseFault::crowded},        // PROTOCOL
    {17, DatabaseFault::changing},       // SCHEMA
    {18, DatabaseFault::too_big},        // TOOBIG
    {19, DatabaseFault::constraint},     // CONSTRAINT
    {20, DatabaseFault::constraint},     // MISMATCH
    {22, DatabaseFault::too_big},        // NOLFS: the disk takes no file of that size
    {23, DatabaseFault::no_permission},  // AUTH
    {26, DatabaseFault::damaged},        // NOTADB
};

/// An extended result code keeps the primary one in its low byte.
constexpr int kPrimaryCode = 0xff;
// READONLY_DBMOVED
constexpr int kMoved = 8 | (4 << 8);

DatabaseFault meaning_of(int code) {
    if (code == kMoved) return DatabaseFault::moved;
    for (const Meaning& meaning : kMeanings)
        if (meaning.code == (code & kPrimaryCode)) return meaning.fault;
    return DatabaseFault::other;
}

/// A journal that cannot be opened beside the file: the folder takes none.
bool folder_is_read_only(const QString& path) {
    return platform::refuses_new_files(QFileInfo(path).absolutePath());
}

std::optional<DatabaseError> fault_of_place(const QString& path) {
    std::error_code error;
    const std::filesystem::file_status about =
        std::filesystem::status(QFile::encodeName(path).toStdString(), error);
    if (error) {
        const bool absent = about.type() == std::filesystem::file_type::not_found;
        return DatabaseError{absent ? DatabaseFault::missing : DatabaseFault::unreadable, path,
                             QString::fromLocal8Bit(error.message().c_str())};
    }
    // A pipe would never answer.
    if (!std::filesystem::is_regular_file(about))
        return DatabaseError{DatabaseFault::unreadable, path, QString()};
    return std::nullopt;
}

std::optional<DatabaseError> fault_of_kind(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return DatabaseError{DatabaseFault::unreadable, path, file.errorString()};
    const QByteArray start = file.read(kOldEngineMarkAt + kOldEngineMark.size());
    if (start.mid(kOldEngineMarkAt) == kOldEngineMark)
        return DatabaseError{DatabaseFault::old_engine, path, QString()};
    if (!start.startsWith(kSqliteMark))
        return DatabaseError{DatabaseFault::foreign, path, QString()};
    return std::nullopt;
}

/// The engine opens what stands in the place of a journal, and waits for the other end of a pipe.
std::optional<DatabaseError> fault_of_journals(const QString& path) {
    const QString file = QFileInfo(path).canonicalFilePath();
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        const QString beside = file + QLatin1String(suffix);
        if (platform::something_else_at(beside, platform::Links::refused))
            return DatabaseError{DatabaseFault::cannot_open, path,
                                 QStringLiteral("%1 is no plain file").arg(beside)};
    }
    return std::nullopt;
}

QVariant single_answer(const QSqlDatabase& database, const QString& statement) {
    Query query(database, statement);
    return query.next() ? query.value(0) : QVariant();
}

/// The first finding of the engine's check of that name, of all or of what `asked` names; empty
/// where it has none.
QString finding_of(const QSqlDatabase& database, const char* check, const QString& asked) {
    const QString statement = QStringLiteral("PRAGMA %1(%2)").arg(QLatin1String(check), asked);
    const QString finding = single_answer(database, statement).toString();
    return finding == QLatin1String("ok") ? QString() : finding;
}

/// The quick check leaves out whether each index knows each row, and that alone: a program that an
/// index has lost would be missing in silence.
DatabaseFault fault_of_check(const QSqlDatabase& database, const QString& finding,
                             const QString& asked) {
    const QString structure = finding_of(database, "quick_check", asked);
    return structure.isEmpty() ? DatabaseFault::index_damaged : fault_of_finding(finding);
}

/// The engine takes the missing part of the last page for zeros.
std::optional<DatabaseError> shortness_of(const QSqlDatabase& database, const QString& path) {
    const qint64 whole =
        single_answer(database, QStringLiteral("SELECT page_count * page_size "
                                               "FROM pragma_page_count, pragma_page_size"))
            .toLongLong();
    const qint64 size = QFileInfo(path).size();
    if (size >= whole) return std::nullopt;
    return DatabaseError{DatabaseFault::damaged, path,
                         QStringLiteral("%1 < %2 bytes").arg(size).arg(whole)};
}

/// The fields of each table of the file. The engine does not tell capitals from small letters in
/// names: all are in small ones.
QHash<QString, QSet<QString>> fields_of_tables(const QSqlDatabase& database) {
    QHash<QString, QSet<QString>> fields;
    Query query(database,
                QStringLiteral("SELECT known.name, field.name FROM sqlite_master AS known, "
                               "pragma_table_info(known.name) AS field "
                               "WHERE known.type = 'table'"));
    while (query.next())
        fields[query.value(0).toString().toLower()] += query.value(1).toString().toLower();
    return fields;
}

std::optional<DatabaseError> fault_of_tables(const QSqlDatabase& database, const QString& path) {
    const QHash<QString, QSet<QString>> found = fields_of_tables(database);
    QStringList missing;
    qsizetype missing_tables = 0;
    for (const Table& table : schema()) {
        const QString name = QString::fromLatin1(table.name);
        const auto fields = found.constFind(name);
        if (fields == found.cend()) {
            missing += name;
            ++missing_tables;
            continue;
        }
        for (const Field& field : table.fields) {
            const QString field_name = QString::fromLatin1(field.name);
            if (!fields->contains(field_name.toLower())) missing += name + u'.' + field_name;
        }
    }
    if (missing.isEmpty()) return std::nullopt;
    const bool none_is_ours = missing_tables == static_cast<qsizetype>(schema().size());
    return DatabaseError{none_is_ours ? DatabaseFault::foreign : DatabaseFault::table_missing, path,
                         missing.join(QStringLiteral(", "))};
}

}  // namespace

std::optional<DatabaseError> fault_of_file(const QString& path) {
    if (const auto fault = fault_of_place(path)) return fault;
    if (const auto fault = fault_of_kind(path)) return fault;
    if (const auto fault = fault_of_journals(path)) return fault;
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered))
        return DatabaseError{DatabaseFault::read_only, path, file.errorString()};
    return std::nullopt;
}

DatabaseFault fault_of_finding(const QString& finding) {
    static const QRegularExpression kCode(QStringLiteral("error code=(\\d+)"));
    const QRegularExpressionMatch match = kCode.match(finding);
    return match.hasMatch() ? meaning_of(match.captured(1).toInt()) : DatabaseFault::damaged;
}

std::optional<DatabaseError> damage_of(const QSqlDatabase& database, const QString& path,
                                       const QStringList& tables) {
    // Asked for so many findings, it checks all of the file.
    static const QStringList kAll{QStringLiteral("1")};
    for (const QString& asked : tables.isEmpty() ? kAll : tables) {
        const QString finding = finding_of(database, "integrity_check", asked);
        if (!finding.isEmpty())
            return DatabaseError{fault_of_check(database, finding, asked), path, finding};
    }
    return shortness_of(database, path);
}

std::optional<DatabaseError> fault_of_content(const QSqlDatabase& database, const QString& path) {
    if (const auto fault = damage_of(database, path)) return fault;
    return fault_of_tables(database, path);
}

// Permission bits do not tell whether a write passes: the folder has to take the journal, the
// medium may be write-protected. So one is begun, and undone before it reaches the file.
void probe_write(const QSqlDatabase& database) {
    Query(database, QStringLiteral("BEGIN IMMEDIATE"));
    try {
        Query(database, QStringLiteral("CREATE TABLE m47_write_probe (unused)"));
    } catch (const EngineFault& fault) {
        QSqlQuery(QStringLiteral("ROLLBACK"), database);
        // A full disk stands in the way of storing alone, which tells it then.
        if (meaning_of(fault.code()) == DatabaseFault::full) return;
        throw;
    }
    Query(database, QStringLiteral("ROLLBACK"));
}

DatabaseError error_of(const EngineFault& fault) {
    DatabaseFault kind = meaning_of(fault.code());
    if (kind == DatabaseFault::cannot_open && folder_is_read_only(fault.path()))
        kind = DatabaseFault::read_only;
    return {kind, fault.path(), QString::fromUtf8(fault.what())};
}

}  // namespace m47::db
