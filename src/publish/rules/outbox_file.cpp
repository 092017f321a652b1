// SPDX-License-Identifier: GPL-3.0-or-later
#include "outbox_file.h"

#include <QFileInfo>

#include "database_check.h"
#include "database_transaction.h"
#include "engine.h"
#include "own_file.h"

namespace m47::publish {
namespace {

constexpr std::uint32_t kApplicationId = 0x4D34374F;  // "M47O"
constexpr std::uint32_t kVersion = 1;
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

void fill_file(const QSqlDatabase& database) {
    db::Query(database, QStringLiteral("PRAGMA application_id = %1").arg(kApplicationId));
    db::Query(database, QStringLiteral("PRAGMA user_version = %1").arg(kVersion));
    for (const char* statement : kTables) db::Query(database, QString::fromUtf8(statement));
}

}  // namespace

std::optional<OutboxError> make_outbox_file(const QString& path) {
    return db::make_own_file(path, {kApplicationId, kVersion}, fill_file);
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
    if (const auto fault = db::damage_of(database, path, tables)) return db::own_file_error(*fault);
    return std::nullopt;
}

}  // namespace m47::publish
