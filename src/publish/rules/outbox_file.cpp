// SPDX-License-Identifier: GPL-3.0-or-later
#include "outbox_file.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include "database_check.h"
#include "database_transaction.h"
#include "file_place.h"
#include "medium.h"
#include "new_file.h"

namespace m47::publish {
namespace {

using Kind = OutboxError::Kind;

constexpr std::uint32_t kApplicationId = 0x4D34374F;  // "M47O"
constexpr std::uint32_t kVersion = 1;
// Where the two numbers stand in the first bytes of a file of the engine.
constexpr qsizetype kVersionAt = 60;
constexpr qsizetype kApplicationAt = 68;
constexpr qsizetype kHeaderBytes = 100;
/// A file below this size is checked whole: a moment's work, and more only after a long outage.
constexpr qint64 kQuicklyChecked = qint64{16} * 1024 * 1024;

// An id is never given twice, so that what is done to a batch meets no later row. `uncounted` is
// the row that is in the outbox and may not be in the log yet.
constexpr const char* kTables[] = {
    "CREATE TABLE lines (id INTEGER PRIMARY KEY AUTOINCREMENT, kind INTEGER NOT NULL, "
    "ms INTEGER NOT NULL, line BLOB NOT NULL)",
    "CREATE TABLE set_aside (id INTEGER PRIMARY KEY, kind INTEGER NOT NULL, ms INTEGER NOT NULL, "
    "line BLOB NOT NULL)",
    "CREATE TABLE facts (last_ms INTEGER NOT NULL, acknowledged INTEGER NOT NULL, "
    "dropped INTEGER NOT NULL, refused INTEGER NOT NULL, uncounted INTEGER NOT NULL, "
    "log_size INTEGER NOT NULL, log_line BLOB NOT NULL)",
    "INSERT INTO facts VALUES (0, 0, 0, 0, 0, 0, x'')",
};

Kind kind_of(db::DatabaseFault fault) {
    using enum db::DatabaseFault;
    switch (fault) {
        case read_only:
        case no_permission:
            return Kind::read_only;
        case moved:
            return Kind::moved;
        case old_engine:
        case foreign:
        case table_missing:
            return Kind::foreign;
        case damaged:
        case index_damaged:
            return Kind::damaged;
        case locked:
        case crowded:
        case changing:
            return Kind::in_use;
        case full:
            return Kind::full;
        case missing:
        case unreadable:
        case io_error:
        case cannot_open:
            return Kind::unreadable;
        default:
            return Kind::other;
    }
}

OutboxError error_of(const db::DatabaseError& error) {
    return {kind_of(error.fault), error.path, error.detail};
}

void fill_file(const QSqlDatabase& database) {
    db::Query(database, QStringLiteral("PRAGMA application_id = %1").arg(kApplicationId));
    db::Query(database, QStringLiteral("PRAGMA user_version = %1").arg(kVersion));
    for (const char* statement : kTables) db::Query(database, QString::fromUtf8(statement));
}

std::optional<OutboxError> fault_of_header(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return OutboxError{Kind::unreadable, path, file.errorString()};
    const QByteArray header = file.read(kHeaderBytes);
    if (header.size() < kHeaderBytes) return OutboxError{Kind::damaged, path, {}};
    const auto number_at = [&](qsizetype place) {
        return qFromBigEndian<std::uint32_t>(header.constData() + place);
    };
    if (number_at(kApplicationAt) != kApplicationId) return OutboxError{Kind::foreign, path, {}};
    if (number_at(kVersionAt) <= kVersion) return std::nullopt;
    return OutboxError{Kind::newer, path,
                       QStringLiteral("%1 > %2").arg(number_at(kVersionAt)).arg(kVersion)};
}

OutboxError error_of_making(const db::FileFault& fault, const QString& path) {
    const QString folder = QFileInfo(path).absolutePath();
    Kind kind = Kind::unreadable;
    if (platform::is_full(fault.code())) kind = Kind::full;
    if (QFileInfo(folder).isDir() && platform::refuses_new_files(folder)) kind = Kind::read_only;
    return {kind, path, QString::fromStdString(fault.what())};
}

}  // namespace

OutboxError outbox_error_of(const db::EngineFault& fault) {
    return error_of(db::error_of(fault));
}

std::optional<OutboxError> make_outbox_file(const QString& path) {
    const QFileInfo about(path);
    if (about.exists() || about.isSymLink()) {
        if (const auto fault = db::fault_of_file(path)) return error_of(*fault);
        return fault_of_header(path);
    }
    try {
        db::make_database_file(path, fill_file);
        return std::nullopt;
    } catch (const db::FileFault& fault) {
        return error_of_making(fault, path);
    } catch (const db::EngineFault& fault) {
        OutboxError error = outbox_error_of(fault);
        error.path = path;
        return error;
    }
}

std::optional<OutboxError> take_outbox_file(const QSqlDatabase& database, const QString& path) {
    // Nobody else is let in until the file is closed, and a row costs one write to the medium.
    for (const char* setting : {"PRAGMA locking_mode = EXCLUSIVE", "PRAGMA journal_mode = WAL",
                                "PRAGMA synchronous = FULL", "PRAGMA cell_size_check = ON",
                                "PRAGMA cache_size = -256", "PRAGMA wal_autocheckpoint = 256"})
        db::Query(database, QString::fromUtf8(setting));
    db::DatabaseTransaction(database).commit();
    // What a process that was killed has left in the journal: without it the file looks cut short.
    db::Query(database, QStringLiteral("PRAGMA wal_checkpoint(TRUNCATE)")).finish();
    QStringList tables{QStringLiteral("facts")};
    if (QFileInfo(path).size() < kQuicklyChecked) tables.clear();
    if (const auto fault = db::damage_of(database, path, tables)) return error_of(*fault);
    return std::nullopt;
}

}  // namespace m47::publish
