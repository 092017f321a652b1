// SPDX-License-Identifier: GPL-3.0-or-later
#include "store_file.h"

#include "database_check.h"
#include "own_file.h"
#include "site_schema.h"

namespace m47::sites {
namespace {

/// Damage of the tables that every use reads, and a file that is too short. The measurements, of
/// which there may be millions, are checked where they are read.
std::optional<StoreError> fault_of_lists(const QSqlDatabase& database, const QString& path) {
    const auto fault = db::damage_of(database, path,
                                     {QStringLiteral("sites"), QStringLiteral("visits"),
                                      QStringLiteral("programs"), QStringLiteral("limits")});
    return fault ? std::optional(db::own_file_error(*fault)) : std::nullopt;
}

}  // namespace

std::optional<StoreError> make_site_file(const QString& path) {
    return db::make_own_file(path, {kApplicationId, current_version()}, make_tables);
}

std::optional<StoreError> prepare_site_file(const QSqlDatabase& database, const QString& path) {
    for (const char* setting :
         {"PRAGMA foreign_keys = ON", "PRAGMA cell_size_check = ON", "PRAGMA synchronous = FULL"})
        db::Query(database, QString::fromUtf8(setting));
    if (auto fault = fault_of_lists(database, path)) return fault;
    db::Query(database, QStringLiteral("PRAGMA journal_mode = DELETE"));
    bring_up_to_date(database, migrations());
    return std::nullopt;
}

}  // namespace m47::sites
