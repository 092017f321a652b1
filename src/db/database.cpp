// SPDX-License-Identifier: GPL-3.0-or-later
#include "database.h"

#include <utility>

#include "database_check.h"
#include "engine.h"
#include "fields.h"
#include "tables.h"

namespace m47::db {

QString stored_plan_name(const QString& text) {
    return text.trimmed().toUpper();
}

bool find_plan(Recordset& plans, const QString& name) {
    if (plans.empty()) return false;
    const QString wanted = stored_plan_name(name);
    for (plans.move_first(); !plans.end_of_set(); plans.move_next())
        if (stored_plan_name(plans.text(field::kNome)) == wanted) return true;
    return false;
}

std::unique_ptr<Database> Database::open(const QString& path, DatabaseError& error) {
    if (const auto fault = fault_of_file(path)) {
        error = *fault;
        return nullptr;
    }
    try {
        auto connection = std::make_unique<Connection>(path);
        const QSqlDatabase& database = connection->database();
        // Damage inside a page is met where the page is read, not rows later.
        Query(database, QStringLiteral("PRAGMA cell_size_check = ON"));
        if (const auto fault = fault_of_content(database, path)) {
            error = *fault;
            return nullptr;
        }
        // EXTRA: what has been stored stays so even where the power goes at once. With FULL the
        // journal could be back then, and would undo the last transaction. The check, which stores
        // nothing, does not have to wait for the medium.
        Query(database, QStringLiteral("PRAGMA synchronous = EXTRA"));
        Query(database, QStringLiteral("PRAGMA journal_mode = DELETE"));
        return std::unique_ptr<Database>(new Database(std::move(connection)));
    } catch (const EngineFault& fault) {
        error = error_of(fault);
        error.path = path;
        // Our statements do not suit the tables: they are not made as ours.
        if (error.fault == DatabaseFault::refused) error.fault = DatabaseFault::foreign;
        return nullptr;
    }
}

Database::Database(std::unique_ptr<Connection> connection)
    : connection_(std::move(connection)),
      programmi_(Recordset::table(this->connection(), QLatin1String(table::kProgrammi))),
      configurazione_(Recordset::table(this->connection(), QLatin1String(table::kConfigurazione))),
      gruppo_(Recordset::table(this->connection(), QLatin1String(table::kGruppo))),
      asl_(Recordset::table(this->connection(), QLatin1String(table::kAsl))) {}

Database::~Database() = default;

void Database::copy_to(const QString& path) const {
    Query(connection(), QStringLiteral("VACUUM INTO ?"), {path});
}

const QSqlDatabase& Database::connection() const {
    return connection_->database();
}

Recordset Database::of_plan(const QString& table, const QString& plan) const {
    const QString name = stored_plan_name(plan);
    // The engine knows the capitals of ASCII alone. The name itself stands for the rows to come.
    QStringList spellings{name};
    Query query(connection(),
                QStringLiteral("SELECT DISTINCT %1 FROM %2")
                    .arg(QLatin1String(field::kNome), QLatin1String(table_named(table).name)));
    while (query.next()) {
        const QString found = query.value(0).toString();
        if (found != name && stored_plan_name(found) == name) spellings += found;
    }
    return Recordset::where_any(connection(), table, field::kNome, spellings);
}

}  // namespace m47::db
