// SPDX-License-Identifier: GPL-3.0-or-later
#include "site_schema.h"

#include <array>

#include "database_transaction.h"
#include "engine.h"

namespace m47::sites {
namespace {

// Instants are seconds since 1970 with the seconds that the place's wall clock was ahead. The
// number of a row is never given to another one, or what is stored for a visit that was just
// removed could end up at the next.
constexpr std::array kVersion1{
    "CREATE TABLE sites (id INTEGER PRIMARY KEY AUTOINCREMENT, uuid BLOB NOT NULL UNIQUE, "
    "name TEXT NOT NULL, address TEXT NOT NULL, customer TEXT NOT NULL, remarks TEXT NOT NULL)",

    "CREATE TABLE visits (id INTEGER PRIMARY KEY AUTOINCREMENT, uuid BLOB NOT NULL UNIQUE, "
    "site INTEGER NOT NULL REFERENCES sites ON DELETE CASCADE, begun_utc REAL NOT NULL, "
    "begun_offset INTEGER NOT NULL, ended_utc REAL, ended_offset INTEGER, "
    "technician TEXT NOT NULL, instrument TEXT NOT NULL, logo TEXT NOT NULL, plan TEXT NOT NULL, "
    "remarks TEXT NOT NULL)",
    "CREATE INDEX visits_of_site ON visits (site, begun_utc, begun_offset)",

    // Programs and limits come again with every pass, so each stands once.
    "CREATE TABLE programs (id INTEGER PRIMARY KEY, plan TEXT NOT NULL, number TEXT NOT NULL, "
    "UNIQUE (plan, number))",

    // `checked` has a bit for each quantity that was held against limits.
    "CREATE TABLE limits (id INTEGER PRIMARY KEY, checked INTEGER NOT NULL, "
    "level_min REAL, level_max REAL, ber_min REAL, ber_max REAL, mer_min REAL, mer_max REAL, "
    "pvber_min REAL, pvber_max REAL, cfo_min REAL, cfo_max REAL, cn_min REAL, cn_max REAL, "
    "noise_min REAL, noise_max REAL)",
    "CREATE INDEX limits_by_value ON limits (checked, level_min, level_max, mer_min, ber_max)",

    // In the order of visits, and within one as they came, for new ids grow with the time: a visit
    // is one piece of the file, and neither its rows nor a single one take another index. Readings
    // without a value were not measured; `marks` has two bits for each.
    "CREATE TABLE measurements (visit INTEGER NOT NULL REFERENCES visits ON DELETE CASCADE, "
    "uuid BLOB NOT NULL, utc REAL NOT NULL, utc_offset INTEGER NOT NULL, "
    "program INTEGER REFERENCES programs, mode INTEGER NOT NULL, frequency REAL, oscillator REAL, "
    "level REAL, ber REAL, mer REAL, pvber REAL, cfo REAL, cn REAL, noise REAL, "
    "marks INTEGER NOT NULL, unit INTEGER, limits INTEGER REFERENCES limits, "
    "verdict INTEGER NOT NULL, PRIMARY KEY (visit, uuid)) WITHOUT ROWID",
    // Which visits have a row that failed, without going through all of them.
    "CREATE INDEX failed_rows ON measurements (verdict, visit) WHERE verdict = 2",
};

const std::array kMigrations{Migration(kVersion1)};

std::uint32_t version_of(const QSqlDatabase& database) {
    db::Query query(database, QStringLiteral("PRAGMA user_version"));
    return query.next() ? query.value(0).toUInt() : 0;
}

}  // namespace

std::span<const Migration> migrations() {
    return kMigrations;
}

std::uint32_t current_version() {
    return static_cast<std::uint32_t>(kMigrations.size());
}

void bring_up_to_date(const QSqlDatabase& database, std::span<const Migration> steps) {
    db::DatabaseTransaction transaction(database);
    const std::uint32_t version = version_of(database);
    if (version >= steps.size()) return;
    for (const Migration& step : steps.subspan(version))
        for (const char* statement : step) db::Query(database, QString::fromUtf8(statement));
    db::Query(database, QStringLiteral("PRAGMA user_version = %1").arg(steps.size()));
    transaction.commit();
}

void make_tables(const QSqlDatabase& database) {
    db::Query(database, QStringLiteral("PRAGMA application_id = %1").arg(kApplicationId));
    bring_up_to_date(database, migrations());
}

}  // namespace m47::sites
