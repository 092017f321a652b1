// SPDX-License-Identifier: GPL-3.0-or-later
#include "database.h"

#include <QScopeGuard>
#include <utility>

#include "database_check.h"
#include "engine.h"
#include "fields.h"
#include "tables.h"

namespace m47::db {
namespace {

DatabaseError opening_error(const EngineFault& fault, const QString& path) {
    DatabaseError error = error_of(fault);
    error.path = path;
    // Our statements do not suit the tables: they are not made as ours.
    if (error.fault == DatabaseFault::refused) error.fault = DatabaseFault::foreign;
    return error;
}

}  // namespace

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
    auto database = open_unchecked(path, error);
    if (!database) return nullptr;
    if (const auto fault = database->check()) {
        error = *fault;
        return nullptr;
    }
    return database;
}

std::unique_ptr<Database> Database::open_unchecked(const QString& path, DatabaseError& error) {
    if (const auto fault = fault_of_file(path)) {
        error = *fault;
        return nullptr;
    }
    try {
        return std::unique_ptr<Database>(new Database(path));
    } catch (const EngineFault& fault) {
        error = opening_error(fault, path);
        return nullptr;
    }
}

std::optional<DatabaseError> Database::fault_of_reading() {
    // In one go: each reading by itself would look for the journals of a program that died.
    Query(connection(), QStringLiteral("BEGIN"));
    const auto over = qScopeGuard([this] { QSqlQuery(QStringLiteral("COMMIT"), connection()); });
    if (auto fault = fault_of_content(connection(), path_)) return fault;
    // Tables whose rows cannot be told apart show here.
    for (const Recordset* set : {&programmi(), &configurazione(), &gruppo(), &asl()})
        static_cast<void>(set->count());
    return std::nullopt;
}

std::optional<DatabaseError> Database::check() {
    try {
        if (const auto fault = fault_of_reading()) return fault;
        probe_write(connection());
        // EXTRA: what has been stored stays so even where the power goes at once. With FULL the
        // journal could be back then, and would undo the last transaction. The check, which stores
        // nothing, does not have to wait for the medium.
        Query(connection(), QStringLiteral("PRAGMA synchronous = EXTRA"));
        Query(connection(), QStringLiteral("PRAGMA journal_mode = DELETE"));
        return std::nullopt;
    } catch (const EngineFault& fault) {
        return opening_error(fault, path_);
    }
}

Database::Database(const QString& path)
    : path_(path), connection_(std::make_unique<Connection>(path)) {
    // Damage inside a page is met where the page is read, not rows later.
    Query(connection(), QStringLiteral("PRAGMA cell_size_check = ON"));
}

Database::~Database() = default;

Recordset& Database::read_once(std::optional<Recordset>& set, const char* table) {
    if (!set) set = Recordset::table(connection(), QLatin1String(table));
    return *set;
}

Recordset& Database::programmi() {
    return read_once(programmi_, table::kProgrammi);
}

Recordset& Database::configurazione() {
    return read_once(configurazione_, table::kConfigurazione);
}

Recordset& Database::gruppo() {
    return read_once(gruppo_, table::kGruppo);
}

Recordset& Database::asl() {
    return read_once(asl_, table::kAsl);
}

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
